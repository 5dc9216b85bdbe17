#include "base/win/RegistryKey.h"
#include "companions/settings/Settings.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace {

TEST(Settings, UserValuesRoundTripInEveryTypeUnderTheirOwnName)
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
    for (const ZString& text : {ZString::fromUtf8("C:\\Users\\J\xC3\xBCrgen \xF0\x9F\x93\x84"), ZString()}) {
        EXPECT_TRUE(userConfig_setStr(L"assistant.outputDir", text));
        EXPECT_EQ(userConfig_getStr(L"assistant.outputDir", L"default"), text);
    }
    const RegistryKey user = RegistryKey::openForReading(HKEY_CURRENT_USER, env.registryKey() + L"\\User");
    EXPECT_EQ(user.readDword(L"screenCapture.lastMode"), 5u);
}

TEST(Settings, ReadsTakeTheUserValueThenTheProgramValueThenTheDefault)
{
    ScratchEnvironment env;
    const RegistryKey program = RegistryKey::openForWriting(HKEY_CURRENT_USER, env.registryKey() + L"\\Program");
    ASSERT_TRUE(program.writeDword(L"Img2PdfDpi", 300));
    ASSERT_TRUE(program.writeString(L"BinDir", L"C:\\Pryxa\\"));
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 300u);
    EXPECT_EQ(progConfig_getStr(L"BinDir", ZString()), ZString(L"C:\\Pryxa\\"));
    EXPECT_EQ(userConfig_getDword(L"Img2PdfDpi", 144), 144u) << "user reads never see program values";
    userConfig_setDword(L"Img2PdfDpi", 72);
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 72u);
    EXPECT_EQ(progConfig_getDword(L"Img2PdfDpi", 144), 300u) << "program reads never see user values";

    // A value of another type counts as missing: the next one or the default serves.
    userConfig_setStr(L"Img2PdfDpi", L"72");
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 300u);
    EXPECT_EQ(progConfig_getStr(L"Img2PdfDpi", L"dflt"), ZString(L"dflt"));
    EXPECT_TRUE(config_getBool(L"nothing", true));
    // A binary value of four bytes is still not a DWORD.
    const DWORD four = 4;
    ASSERT_EQ(RegSetValueExW(program.handle(), L"binary", 0, REG_BINARY, reinterpret_cast<const BYTE*>(&four), 4),
              ERROR_SUCCESS);
    EXPECT_EQ(config_getDword(L"binary", 9), 9u);
}

TEST(Settings, FailedWritesKeepThePreviousValueAndScratchValuesStayAway)
{
    ZString scratchKey;
    {
        ScratchEnvironment env;
        scratchKey = env.registryKey();
        ASSERT_TRUE(userConfig_setStr(L"pryxaTests.kept", L"before"));
        // Registry value names are limited to 16383 characters, key names to 255.
        const ZString tooLong(20000, L'k');
        EXPECT_FALSE(userConfig_setStr(tooLong, L"after"));
        EXPECT_FALSE(userConfig_setDword(tooLong, 1));
        settings_redirect(env.registryKey() + L"\\" + ZString(300, L'x'));
        EXPECT_FALSE(userConfig_setStr(L"pryxaTests.kept", L"after"));
        settings_redirect(env.registryKey());
        EXPECT_EQ(userConfig_getStr(L"pryxaTests.kept", ZString()), ZString(L"before"));
    }
    EXPECT_EQ(userConfig_getStr(L"pryxaTests.kept", L"real"), ZString(L"real")) << "back on the real storage";
    EXPECT_FALSE(RegistryKey::openForReading(HKEY_CURRENT_USER, L"Software\\Pryxa\\Creator").readString(L"pryxaTests.kept"));
    EXPECT_FALSE(RegistryKey::openForReading(HKEY_CURRENT_USER, scratchKey).isOpen()) << "scratch key removed";
}

} // namespace
