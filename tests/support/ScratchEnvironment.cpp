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
const wchar_t* const kTempVariables[2] = {L"TMP", L"TEMP"};

std::filesystem::path fsPath(const ZString& path)
{
    return std::filesystem::path(path.c_str());
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
    for (int i = 0; i < 2; ++i) {
        std::vector<wchar_t> value(GetEnvironmentVariableW(kTempVariables[i], nullptr, 0) + 1);
        GetEnvironmentVariableW(kTempVariables[i], value.data(), static_cast<DWORD>(value.size()));
        saved_[i] = value.data();
        SetEnvironmentVariableW(kTempVariables[i], tempFolder_.c_str());
    }
    settings_redirect(registryKey_);
    lang_setFolder(shippedLanguageFolder());
}

ScratchEnvironment::~ScratchEnvironment()
{
    lang_setFolder(ZString());
    settings_redirect(ZString());
    for (int i = 0; i < 2; ++i)
        SetEnvironmentVariableW(kTempVariables[i], saved_[i].isEmpty() ? nullptr : saved_[i].c_str());
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
