#include "base/win/RegistryKey.h"
#include "companions/settings/Settings.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace {

ZString userPath(const ScratchEnvironment& env) { return env.registryKey() + L"\\User"; }
ZString programPath(const ScratchEnvironment& env) { return env.registryKey() + L"\\Program"; }

TEST(Settings, UserValuesRoundTripInEveryType)
{
    ScratchEnvironment env;
    for (uint32_t value : {0xFFFFFFFFu, 5u}) {
        EXPECT_TRUE(userConfig_setDword(L"screenCapture.lastMode", value));
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", 7), value);
    }
    for (bool value : {true, false}) {
        EXPECT_TRUE(userConfig_setBool(L"flag", value));
        EXPECT_EQ(userConfig_getBool(L"flag", !value), value);
    }
    for (const ZString& text : {ZString::fromUtf8("C:\\Users\\J\xC3\xBCrgen\\Documents \xF0\x9F\x93\x84"), ZString()}) {
        EXPECT_TRUE(userConfig_setStr(L"assistant.outputDir", text));
        EXPECT_EQ(userConfig_getStr(L"assistant.outputDir", L"default"), text);
    }
    // The key is the value's name as written, directly in the user key.
    EXPECT_EQ(RegistryKey::openForReading(HKEY_CURRENT_USER, userPath(env)).readDword(L"screenCapture.lastMode"), 5u);
}

TEST(Settings, MissingAndMistypedValuesYieldTheDefault)
{
    ScratchEnvironment env;
    EXPECT_EQ(config_getDword(L"nothing", 144), 144u);
    EXPECT_TRUE(config_getBool(L"nothing", true));
    EXPECT_EQ(config_getStr(L"nothing", L"dflt"), ZString(L"dflt"));

    userConfig_setStr(L"aString", L"12");
    userConfig_setDword(L"aDword", 12);
    EXPECT_EQ(userConfig_getDword(L"aString", 3), 3u);
    EXPECT_FALSE(userConfig_getBool(L"aString", false));
    EXPECT_EQ(userConfig_getStr(L"aDword", L"dflt"), ZString(L"dflt"));

    // A binary value of four bytes is still not a DWORD.
    const DWORD four = 4;
    RegistryKey key = RegistryKey::openForWriting(HKEY_CURRENT_USER, userPath(env));
    ASSERT_EQ(RegSetValueExW(key.handle(), L"binary", 0, REG_BINARY, reinterpret_cast<const BYTE*>(&four), 4),
              ERROR_SUCCESS);
    EXPECT_EQ(config_getDword(L"binary", 9), 9u);
}

TEST(Settings, UserValuesComeBeforeProgramValues)
{
    ScratchEnvironment env;
    const RegistryKey program = RegistryKey::openForWriting(HKEY_CURRENT_USER, programPath(env));
    ASSERT_TRUE(program.writeDword(L"Img2PdfDpi", 300));
    ASSERT_TRUE(program.writeString(L"BinDir", L"C:\\Program Files\\Pryxa\\"));
    ASSERT_TRUE(program.writeDword(L"Img2PdfOptForA4", 0));

    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 300u);
    EXPECT_EQ(progConfig_getStr(L"BinDir", ZString()), ZString(L"C:\\Program Files\\Pryxa\\"));
    EXPECT_FALSE(config_getBool(L"Img2PdfOptForA4", true));
    EXPECT_EQ(userConfig_getDword(L"Img2PdfDpi", 144), 144u) << "user reads never see program values";

    userConfig_setDword(L"Img2PdfDpi", 72);
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 72u);
    EXPECT_EQ(progConfig_getDword(L"Img2PdfDpi", 144), 300u) << "program reads never see user values";
    EXPECT_TRUE(progConfig_getBool(L"missing", true));

    // A user value of the wrong type does not hide the program value.
    userConfig_setStr(L"Img2PdfDpi", L"72");
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 300u);
}

TEST(Settings, RedirectionKeepsScratchValuesAwayFromTheRealStorage)
{
    ZString scratchKey;
    {
        ScratchEnvironment env;
        scratchKey = env.registryKey();
        userConfig_setDword(L"pryxaTests.redirected", 42);
        EXPECT_EQ(RegistryKey::openForReading(HKEY_CURRENT_USER, userPath(env)).readDword(L"pryxaTests.redirected"),
                  42u);
    }
    EXPECT_EQ(userConfig_getDword(L"pryxaTests.redirected", 1), 1u) << "back on the real storage";
    EXPECT_FALSE(RegistryKey::openForReading(HKEY_CURRENT_USER, L"Software\\Pryxa\\Creator")
                     .readDword(L"pryxaTests.redirected"));
    EXPECT_FALSE(RegistryKey::openForReading(HKEY_CURRENT_USER, scratchKey).isOpen()) << "scratch key removed";
}

TEST(Settings, FailedWriteReportsFalseAndKeepsThePreviousValue)
{
    ScratchEnvironment env;
    ASSERT_TRUE(userConfig_setStr(L"kept", L"before"));
    // Registry value names are limited to 16383 characters.
    const ZString tooLong(20000, L'k');
    EXPECT_FALSE(userConfig_setStr(tooLong, L"after"));
    EXPECT_FALSE(userConfig_setDword(tooLong, 1));
    EXPECT_EQ(userConfig_getStr(L"kept", ZString()), ZString(L"before"));

    // A user key that cannot be created (a key name over 255 characters) fails every write.
    settings_redirect(env.registryKey() + L"\\" + ZString(300, L'x'));
    EXPECT_FALSE(userConfig_setDword(L"kept", 2));
    settings_redirect(env.registryKey());
    EXPECT_EQ(userConfig_getStr(L"kept", ZString()), ZString(L"before"));
}

} // namespace
