#include "tests/support/ScratchEnvironment.h"

#include "base/win/RegistryKey.h"
#include "base/win/ThisModule.h"
#include "companions/language/Language.h"
#include "companions/settings/Settings.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

int scratchCounter = 0;
const wchar_t* const kTempVariables[3] = {L"TMP", L"TEMP", L"TMPDIR"};

std::filesystem::path fsPath(const ZString& path)
{
    return std::filesystem::path(path.c_str());
}

// An unset variable reads as empty.
ZString variable(const wchar_t* name)
{
    std::vector<wchar_t> value(GetEnvironmentVariableW(name, nullptr, 0) + 1);
    GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
    return value.data();
}

void setVariable(const wchar_t* name, const ZString& value)
{
    SetEnvironmentVariableW(name, value.isEmpty() ? nullptr : value.c_str());
}

ZString currentFolder()
{
    std::vector<wchar_t> folder(GetCurrentDirectoryW(0, nullptr) + 1);
    GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data());
    return folder.data();
}

} // namespace

ScratchEnvironment::ScratchEnvironment()
{
    const ZString unique = ZString::format(L"%lu-%d-%lu", GetCurrentProcessId(), ++scratchCounter, GetTickCount());
    wchar_t realTemp[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, realTemp);
    registryKey_ = L"Software\\PryxaTests\\" + unique;
    folder_ = realTemp + (L"pryxa-tests\\" + unique);
    tempFolder_ = folder_ + L"\\temp";
    std::filesystem::create_directories(fsPath(tempFolder_));
    for (int i = 0; i < 3; ++i)
        savedVariables_[i] = variable(kTempVariables[i]);
    savedCurrentFolder_ = currentFolder();
    setVariable(L"TMP", tempFolder_);
    setVariable(L"TEMP", tempFolder_);
    settings_redirect(registryKey_);
    lang_setFolder(shippedLanguageFolder());
}

ScratchEnvironment::~ScratchEnvironment()
{
    lang_setFolder(ZString());
    settings_redirect(ZString());
    for (int i = 0; i < 3; ++i)
        setVariable(kTempVariables[i], savedVariables_[i]);
    SetCurrentDirectoryW(savedCurrentFolder_.c_str());
    RegistryKey::deleteTree(HKEY_CURRENT_USER, registryKey_);
    std::error_code ignored;
    std::filesystem::remove_all(fsPath(folder_), ignored);
}

ZString ScratchEnvironment::shippedLanguageFolder()
{
    return moduleFolder(GetModuleHandleW(nullptr)) + L"\\languages";
}

void ScratchEnvironment::useLanguageFolder(const ZString& folder)
{
    lang_setFolder(folder);
}

void ScratchEnvironment::setTempVariables(const ZString& tmp, const ZString& temp, const ZString& tmpdir)
{
    setVariable(L"TMP", tmp);
    setVariable(L"TEMP", temp);
    setVariable(L"TMPDIR", tmpdir);
}

bool ScratchEnvironment::useCurrentFolder(const ZString& folder)
{
    return SetCurrentDirectoryW(folder.c_str()) != FALSE;
}

ZString ScratchEnvironment::writeFile(const ZString& relativePath, const std::string& utf8) const
{
    const ZString path = folder_ + L"\\" + relativePath;
    std::filesystem::create_directories(fsPath(path).parent_path());
    std::ofstream(fsPath(path), std::ios::binary) << utf8;
    return path;
}
