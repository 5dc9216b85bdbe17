#include "companions/language/Language.h"
#include "companions/language/LanguageFile.h"
#include "companions/settings/Settings.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace {

LanguageTexts shippedTexts(const char* fileName)
{
    std::ifstream in(std::filesystem::path((ScratchEnvironment::shippedLanguageFolder() + L"\\").c_str()) / fileName,
                     std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return parseLanguageFile(content.str());
}

void chooseLanguage(ScratchEnvironment& env, const ZString& code)
{
    userConfig_setStr(L"language", code);
    env.useLanguageFolder(ScratchEnvironment::shippedLanguageFolder());
}

TEST(Language, ShippedLanguagesHaveTheSameKeysAndEveryTextTheModuleUses)
{
    const LanguageTexts english = shippedTexts("en.lng");
    const LanguageTexts german = shippedTexts("de.lng");
    std::set<ZString> englishKeys, germanKeys;
    for (const auto& entry : english)
        englishKeys.insert(entry.first);
    for (const auto& entry : german)
        germanKeys.insert(entry.first);
    EXPECT_EQ(englishKeys, germanKeys);

    for (const char* key : {"general/note", "screen-capture/capture-screen", "screen-capture/~image-copied-to-clipboard",
                            "screen-capture/~info", "screen-capture/start", "screen-capture/filenames/~screen",
                            "screen-capture/filenames/~working-area", "screen-capture/filenames/~window",
                            "screen-capture/filenames/~user-defined-area", "screen-capture/filenames/~clipboard",
                            "screen-capture/mode/user-defined-area", "screen-capture/mode/screen",
                            "screen-capture/mode/working-area", "screen-capture/mode/active-window",
                            "screen-capture/mode/active-window-content", "screen-capture/target/print-on-pdf-printer",
                            "screen-capture/target/copy-to-clipboard",
                            "screen-capture/target/open-with-default-image-editor",
                            "screen-capture/target/save-to-file"}) {
        EXPECT_FALSE(english.count(ZString::fromUtf8(key)) == 0) << key;
    }
}

TEST(Language, UserValueChoosesTheLanguageWhenItHasAFile)
{
    ScratchEnvironment env;
    chooseLanguage(env, L"de");
    EXPECT_EQ(lang_getStr(L"general/note"), ZString(L"Hinweis"));
    const LanguageInfo german = lang_getCurrent();
    EXPECT_EQ(german.code, ZString(L"de"));
    EXPECT_EQ(german.name, ZString(L"German"));
    EXPECT_EQ(german.nativeName, ZString(L"Deutsch"));
    EXPECT_EQ(german.fileName, ZString(L"de.lng"));
    EXPECT_EQ(german.countryCode, ZString(L"DE"));
    EXPECT_EQ(german.direction, ZString(L"ltr"));

    // No file for "xx": the UI language (English here) takes over. A path is never a code.
    for (const ZString& code : {ZString(L"xx"), ZString(L"..\\languages\\de"), ZString()}) {
        chooseLanguage(env, code);
        EXPECT_EQ(lang_getCurrent().code, ZString(L"en"));
        EXPECT_EQ(lang_getStr(L"general/note"), ZString(L"Note"));
    }
}

TEST(Language, MissingKeysYieldTheKeyAndMissingTextsComeFromEnglish)
{
    ScratchEnvironment env;
    env.writeFile(L"languages\\fr.lng", "language/code = fr\nlanguage/name = French\ngeneral/note = Remarque\n");
    userConfig_setStr(L"language", L"fr");
    env.useLanguageFolder(env.folder() + L"\\languages");

    EXPECT_EQ(lang_getStr(L"general/note"), ZString(L"Remarque"));
    EXPECT_EQ(lang_getStr(L"screen-capture/start"), ZString(L"Capture")) << "English fills the gaps";
    EXPECT_TRUE(lang_hasStr(L"screen-capture/start"));
    EXPECT_FALSE(lang_hasStr(L"no/such/key"));
    EXPECT_EQ(lang_getStr(L"no/such/key"), ZString(L"no/such/key"));
    EXPECT_EQ(lang_getCurrent().nativeName, ZString(L"French")) << "native name defaults to the name";
}

TEST(Language, MalformedLinesAreSkipped)
{
    ScratchEnvironment env;
    env.writeFile(L"languages\\fr.lng",
                  "\xEF\xBB\xBF"
                  "language/code = fr\r\n"
                  "this line has no equals sign\r\n"
                  "= a text without key\r\n"
                  "# general/note = comment\r\n"
                  "; general/start = comment\r\n"
                  "\xFF\xFE broken = bytes\r\n"
                  "general/note =  Deux\\nlignes\\tet \\\\ \\q \r\n"
                  "general/empty =\r\n");
    userConfig_setStr(L"language", L"fr");
    env.useLanguageFolder(env.folder() + L"\\languages");

    EXPECT_EQ(lang_getCurrent().code, ZString(L"fr")) << "the BOM does not hide the first key";
    EXPECT_EQ(lang_getStr(L"general/note"), ZString(L"Deux\nlignes\tet \\ \\q"));
    EXPECT_TRUE(lang_hasStr(L"general/empty"));
    EXPECT_EQ(lang_getStr(L"general/empty"), ZString());
    EXPECT_FALSE(lang_hasStr(L"this line has no equals sign"));
    EXPECT_FALSE(lang_hasStr(ZString()));
    EXPECT_FALSE(lang_hasStr(L"general/start"));
    EXPECT_TRUE(lang_hasStr(ZString::fromUtf8("\xEF\xBF\xBD\xEF\xBF\xBD broken"))) << "bad bytes become U+FFFD";
}

TEST(Language, MissingFolderFallsBackToBuiltInEnglish)
{
    ScratchEnvironment env;
    userConfig_setStr(L"language", L"de");
    env.useLanguageFolder(env.folder() + L"\\no-such-folder");
    EXPECT_EQ(lang_getStr(L"screen-capture/filenames/~screen"), ZString(L"Screen capture"));
    EXPECT_EQ(lang_getCurrent().code, ZString(L"en"));
    EXPECT_EQ(lang_getCurrent().fileName, ZString()) << "no file was read";
}

} // namespace
