#include "companions/language/Language.h"
#include "companions/language/LanguageFile.h"
#include "companions/settings/Settings.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

LanguageTexts shippedTexts(const char* fileName)
{
    std::ifstream in(std::filesystem::path((ScratchEnvironment::shippedLanguageFolder() + L"\\").c_str()) / fileName,
                     std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return parseLanguageFile(content.str());
}

void chooseLanguage(ScratchEnvironment& env, const ZString& code,
                    const ZString& folder = ScratchEnvironment::shippedLanguageFolder())
{
    userConfig_setStr(L"language", code);
    env.useLanguageFolder(folder);
}

// The keys in a markup resource of a library, of all four forms ("{lang/KEY}", ...).
std::vector<std::string> markupKeys(const wchar_t* library, const wchar_t* resource)
{
    const HMODULE module = GetModuleHandleW(library);
    const HRSRC found = FindResourceW(module, resource, RT_RCDATA);
    const auto* data = found ? static_cast<const char*>(LockResource(LoadResource(module, found))) : nullptr;
    const std::string markup = data ? std::string(data, SizeofResource(module, found)) : std::string();
    std::vector<std::string> keys;
    const std::regex key(R"(\{lang(?:-esq|-edq|-hsc)?/([^}]*)\})");
    for (std::sregex_iterator at(markup.begin(), markup.end(), key), end; at != end; ++at)
        keys.push_back((*at)[1]);
    return keys;
}

// What lang_getCurrent() says, in one line.
std::string current()
{
    const LanguageInfo l = lang_getCurrent();
    return (l.code + L"|" + l.name + L"|" + l.nativeName + L"|" + l.fileName + L"|" + l.countryCode + L"|" + l.direction)
        .toUtf8();
}

TEST(Language, ShippedLanguagesHaveTheSameKeysAndEveryTextTheModuleAndTheDialogsUse)
{
    const LanguageTexts english = shippedTexts("en.lng");
    const LanguageTexts german = shippedTexts("de.lng");
    EXPECT_EQ(english.size(), german.size());
    for (const auto& entry : english)
        EXPECT_EQ(german.count(entry.first), 1u) << entry.first.toUtf8();

    EXPECT_EQ(english.count(L"general/note"), 1u);
    for (const char* key : {"capture-screen", "~image-copied-to-clipboard", "~info", "start", "filenames/~screen",
                            "filenames/~working-area", "filenames/~window", "filenames/~user-defined-area",
                            "filenames/~clipboard", "mode/user-defined-area", "mode/screen", "mode/working-area",
                            "mode/active-window", "mode/active-window-content", "target/print-on-pdf-printer",
                            "target/copy-to-clipboard", "target/open-with-default-image-editor", "target/save-to-file"})
        EXPECT_EQ(english.count(ZString(L"screen-capture/") + ZString::fromUtf8(key)), 1u) << key;

    // The markup of the companions' dialogs looks keys up in its section first, then as they are.
    for (const auto& [library, markup, section] : {std::tuple(L"About.dll", L"ABOUT.XHTML", "about/"),
                                                   {L"FormatOptions.dll", L"FORMATOPTIONS.XHTML", "format-options/"}}) {
        const std::vector<std::string> keys = markupKeys(library, markup);
        EXPECT_GE(keys.size(), 2u) << section;
        for (const std::string& key : keys)
            EXPECT_TRUE(english.count(ZString::fromUtf8(section + key)) || english.count(ZString::fromUtf8(key)))
                << section << key;
    }
}

TEST(Language, UserValueChoosesTheLanguageWhenItHasAFileElseEnglish)
{
    ScratchEnvironment env;
    chooseLanguage(env, L"de");
    EXPECT_EQ(current(), "de|German|Deutsch|de.lng|DE|ltr");

    // No file for "xx": the UI language (English here) takes over. A path is never a code.
    for (const ZString& code : {ZString(L"xx"), ZString(L"..\\languages\\de")}) {
        chooseLanguage(env, code);
        EXPECT_EQ(current(), "en|English|English|en.lng|US|ltr") << code.toUtf8();
    }
    // Without the folder the built-in English texts serve (their country is US).
    chooseLanguage(env, L"de", env.folder() + L"\\no-such-folder");
    EXPECT_EQ(current(), "en|English|English||US|ltr") << "no file was read";
}

TEST(Language, OwnFileSkipsMalformedLinesAndEnglishFillsItsGaps)
{
    ScratchEnvironment env;
    env.writeFile(L"languages\\fr.lng",
                  "\xEF\xBB\xBF"
                  "language/code = fr\r\n"
                  "language/name = French\r\n"
                  "this line has no equals sign\r\n"
                  "= a text without key\r\n"
                  "# general/note = comment\r\n"
                  "; general/start = comment\r\n"
                  "general/note =  Deux\\nlignes\\tet \\\\ \\q \r\n"
                  "general/empty =\r\n");
    chooseLanguage(env, L"fr", env.folder() + L"\\languages");

    // The BOM does not hide the first key; the native name defaults to the name.
    EXPECT_EQ(current(), "fr|French|French|fr.lng||ltr");
    EXPECT_EQ(lang_getStr(L"general/note"), ZString(L"Deux\nlignes\tet \\ \\q"));
    EXPECT_EQ(lang_getStr(L"screen-capture/start"), ZString(L"Capture")) << "English fills the gaps";
    EXPECT_EQ(lang_getStr(L"general/empty"), ZString());
    for (const wchar_t* key : {L"this line has no equals sign", L"", L"general/start"})
        EXPECT_FALSE(lang_hasStr(key)) << ZString(key).toUtf8();
    EXPECT_EQ(lang_getStr(L"no/such/key"), ZString(L"no/such/key"));
}

} // namespace
