// What Windows shows in the properties of each shipped file: its version resource.

#include "base/win/ThisModule.h"
#include "pryxa/Version.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cwchar>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// A file's version resource, read as the Explorer reads it.
class VersionResource {
public:
    explicit VersionResource(const std::wstring& path)
    {
        DWORD ignored = 0;
        data_.resize(GetFileVersionInfoSizeW(path.c_str(), &ignored));
        found_ = !data_.empty() && GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data_.size()), data_.data());
    }

    bool found() const { return found_; }

    // A value of the string table that the resource's first translation names.
    std::wstring text(const wchar_t* name)
    {
        struct Translation {
            WORD language;
            WORD codePage;
        };
        const auto* translation = static_cast<const Translation*>(query(L"\\VarFileInfo\\Translation"));
        if (!translation)
            return L"(no translation)";
        wchar_t path[128];
        std::swprintf(path, 128, L"\\StringFileInfo\\%04x%04x\\%ls", translation->language, translation->codePage, name);
        const auto* value = static_cast<const wchar_t*>(query(path));
        return value ? value : L"(missing)";
    }

    const VS_FIXEDFILEINFO* fixed() { return static_cast<const VS_FIXEDFILEINFO*>(query(L"\\")); }

private:
    const void* query(const wchar_t* path)
    {
        void* value = nullptr;
        UINT length = 0;
        return found_ && VerQueryValueW(data_.data(), path, &value, &length) && length > 0 ? value : nullptr;
    }

    std::vector<BYTE> data_;
    bool found_ = false;
};

// Company, product and both versions are the build's, the same in every file.
void expectProductVersion(VersionResource& resource, DWORD fileType)
{
    EXPECT_EQ(resource.text(L"CompanyName"), L"Pryxa");
    EXPECT_EQ(resource.text(L"ProductName"), L"Pryxa Creator");
    EXPECT_EQ(resource.text(L"FileVersion"), PRYXA_VERSION_WTEXT);
    EXPECT_EQ(resource.text(L"ProductVersion"), PRYXA_VERSION_WTEXT);
    const VS_FIXEDFILEINFO* fixed = resource.fixed();
    ASSERT_NE(fixed, nullptr);
    EXPECT_EQ(fixed->dwSignature, VS_FFI_SIGNATURE);
    const DWORD high = MAKELONG(PRYXA_VERSION_MINOR, PRYXA_VERSION_MAJOR), low = MAKELONG(0, PRYXA_VERSION_PATCH);
    EXPECT_EQ(fixed->dwFileVersionMS, high);
    EXPECT_EQ(fixed->dwFileVersionLS, low);
    EXPECT_EQ(fixed->dwProductVersionMS, high);
    EXPECT_EQ(fixed->dwProductVersionLS, low);
    EXPECT_EQ(fixed->dwFileType, fileType);
}

std::wstring besideThisProgram(const std::wstring& name)
{
    return moduleFolder(thisModule()).c_str() + std::wstring(L"\\") + name;
}

TEST(VersionResource, EachShippedFileSaysWhatItIs)
{
    const struct {
        const wchar_t* file;
        const wchar_t* description;
        DWORD type;
    } shipped[] = {
        {L"screencapture.dll", L"Pryxa Creator screen capture", VFT_DLL},
        {L"Settings.dll", L"Pryxa Creator settings", VFT_DLL},
        {L"Language.dll", L"Pryxa Creator localised texts", VFT_DLL},
        {L"NotifyIcon.dll", L"Pryxa Creator tray notes", VFT_DLL},
        {L"About.dll", L"Pryxa Creator About box", VFT_DLL},
        {L"FormatOptions.dll", L"Pryxa Creator image-to-PDF options", VFT_DLL},
        {L"pryxa-capture.exe", L"Pryxa Creator screen capture command line", VFT_APP},
        {L"pryxa-Assistant.exe", L"Pryxa Creator assistant", VFT_APP},
    };
    for (const auto& file : shipped) {
        SCOPED_TRACE(std::filesystem::path(file.file).string());
        VersionResource resource(besideThisProgram(file.file));
        ASSERT_TRUE(resource.found());
        EXPECT_EQ(resource.text(L"FileDescription"), file.description);
        EXPECT_EQ(resource.text(L"OriginalFilename"), file.file);
        expectProductVersion(resource, file.type);
    }
}

// A DLL added later ships too, so it must carry the same resource.
TEST(VersionResource, EveryDllBesideTheProgramsHasOne)
{
    int dlls = 0;
    for (const auto& entry : std::filesystem::directory_iterator(besideThisProgram(L"."))) {
        if (entry.path().extension() != L".dll")
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        ++dlls;
        VersionResource resource(entry.path().wstring());
        ASSERT_TRUE(resource.found());
        EXPECT_NE(resource.text(L"FileDescription"), L"(missing)");
        expectProductVersion(resource, VFT_DLL);
    }
    EXPECT_GE(dlls, 4);
}

} // namespace
