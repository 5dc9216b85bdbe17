#include "companions/language/Language.h"

#include "base/win/ThisModule.h"
#include "base/win/SlimLock.h"
#include "companions/language/LanguageFile.h"
#include "companions/settings/Settings.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <sstream>

namespace {

struct Language {
    LanguageInfo info;
    LanguageTexts texts;
};

SlimLock languageMutex;
std::optional<Language> current;
ZString folderOverride;

std::string builtInEnglish()
{
    HMODULE module = thisModule();
    HRSRC resource = FindResourceW(module, L"EN.LNG", MAKEINTRESOURCEW(10) /* RT_RCDATA */);
    HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const void* data = loaded ? LockResource(loaded) : nullptr;
    return data ? std::string(static_cast<const char*>(data), SizeofResource(module, resource)) : std::string();
}

std::optional<std::string> readFile(const ZString& path)
{
    std::ifstream in(std::filesystem::path(path.c_str()), std::ios::binary);
    if (!in)
        return std::nullopt;
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

ZString languageFolder()
{
    if (!folderOverride.isEmpty())
        return folderOverride;
    return moduleFolder(thisModule()) + L"\\languages";
}

// The two-letter code of the user's UI language, such as "de".
ZString uiLanguageCode()
{
    wchar_t code[16] = {};
    const LCID locale = MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT);
    if (GetLocaleInfoW(locale, LOCALE_SISO639LANGNAME, code, 16) == 0)
        return ZString();
    return ZString(code);
}

bool isUsableCode(const ZString& code)
{
    // A code names a file in the folder; never let it reach outside.
    return !code.isEmpty() && code.find(L"\\") == ZString::npos && code.find(L"/") == ZString::npos
        && code.find(L"..") == ZString::npos;
}

std::optional<ZString> chooseFile(const ZString& folder)
{
    for (const ZString& code : {userConfig_getStr(L"language", ZString()), uiLanguageCode(), ZString(L"en")}) {
        if (!isUsableCode(code))
            continue;
        const ZString name = code + L".lng";
        std::error_code error;
        if (std::filesystem::is_regular_file(std::filesystem::path((folder + L"\\" + name).c_str()), error))
            return name;
    }
    return std::nullopt;
}

ZString textOr(const LanguageTexts& texts, const ZString& key, const ZString& fallback)
{
    const auto found = texts.find(key);
    return found == texts.end() ? fallback : found->second;
}

LanguageInfo describe(const LanguageTexts& texts, const ZString& fileName)
{
    LanguageInfo info;
    info.name = textOr(texts, L"language/name", L"English");
    info.code = textOr(texts, L"language/code", L"en");
    info.nativeName = textOr(texts, L"language/nativeName", info.name);
    info.fileName = fileName;
    info.countryCode = textOr(texts, L"language/countryCode", ZString());
    info.direction = textOr(texts, L"language/dir", L"ltr");
    return info;
}

Language load()
{
    Language language;
    language.texts = parseLanguageFile(builtInEnglish());
    language.info = describe(language.texts, ZString());
    const ZString folder = languageFolder();
    const auto name = chooseFile(folder);
    const auto content = name ? readFile(folder + L"\\" + *name) : std::nullopt;
    if (content) {
        // The file describes itself; its texts replace the built-in ones key by key.
        LanguageTexts own = parseLanguageFile(*content);
        language.info = describe(own, *name);
        for (auto& [key, text] : own)
            language.texts[key] = std::move(text);
    }
    return language;
}

const Language& loaded()
{
    if (!current)
        current = load();
    return *current;
}

} // namespace

ZString lang_getStr(const ZString& key)
{
    try {
        std::lock_guard<SlimLock> lock(languageMutex);
        return textOr(loaded().texts, key, key);
    } catch (...) {
        return key;
    }
}

bool lang_hasStr(const ZString& key)
{
    try {
        std::lock_guard<SlimLock> lock(languageMutex);
        return loaded().texts.count(key) != 0;
    } catch (...) {
        return false;
    }
}

LanguageInfo lang_getCurrent()
{
    try {
        std::lock_guard<SlimLock> lock(languageMutex);
        return loaded().info;
    } catch (...) {
        return LanguageInfo{L"English", L"en", L"English", ZString(), ZString(), L"ltr"};
    }
}

void lang_setFolder(const ZString& folder)
{
    try {
        std::lock_guard<SlimLock> lock(languageMutex);
        folderOverride = folder;
        current.reset();
    } catch (...) {
    }
}
