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

ZString environmentVariable(const wchar_t* name)
{
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    if (size == 0)
        return ZString();
    std::vector<wchar_t> buffer(size);
    GetEnvironmentVariableW(name, buffer.data(), size);
    return ZString(buffer.data());
}

ZString realTempFolder()
{
    wchar_t path[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, path);
    return ZString(path);
}

std::filesystem::path fsPath(const ZString& path)
{
    return std::filesystem::path(path.c_str());
}

} // namespace

ScratchEnvironment::ScratchEnvironment()
{
    const ZString unique = ZString::format(L"%lu-%d-%lu", GetCurrentProcessId(), ++scratchCounter, GetTickCount());
    registryKey_ = L"Software\\PryxaTests\\" + unique;
    folder_ = realTempFolder() + L"pryxa-tests\\" + unique;
    tempFolder_ = folder_ + L"\\temp";
    std::filesystem::create_directories(fsPath(tempFolder_));

    savedTmp_ = environmentVariable(L"TMP");
    savedTemp_ = environmentVariable(L"TEMP");
    SetEnvironmentVariableW(L"TMP", tempFolder_.c_str());
    SetEnvironmentVariableW(L"TEMP", tempFolder_.c_str());

    settings_redirect(registryKey_);
    lang_setFolder(shippedLanguageFolder());
}

ScratchEnvironment::~ScratchEnvironment()
{
    lang_setFolder(ZString());
    settings_redirect(ZString());
    SetEnvironmentVariableW(L"TMP", savedTmp_.isEmpty() ? nullptr : savedTmp_.c_str());
    SetEnvironmentVariableW(L"TEMP", savedTemp_.isEmpty() ? nullptr : savedTemp_.c_str());
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

ZString ScratchEnvironment::writeFile(const ZString& relativePath, const std::string& utf8) const
{
    const ZString path = folder_ + L"\\" + relativePath;
    std::filesystem::create_directories(fsPath(path).parent_path());
    std::ofstream(fsPath(path), std::ios::binary) << utf8;
    return path;
}
