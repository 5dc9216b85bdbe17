#include "base/win/RegistryKey.h"
#include "companions/settings/Settings.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace {

TEST(Settings, UserValuesRoundTripInEveryTypeUnderTheirOwnNameOrTheWriteSaysItFailed)
{
    ScratchEnvironment env;
    for (uint32_t value : {0xFFFFFFFFu, 5u}) {
        EXPECT_TRUE(userConfig_setDword(L"screenCapture.lastMode", value));
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", 7), value);
    }
    EXPECT_TRUE(userConfig_setBool(L"flag", true));
    EXPECT_TRUE(userConfig_getBool(L"flag", false));
    for (const ZString& text : {ZString::fromUtf8("C:\\Users\\J\xC3\xBCrgen \xF0\x9F\x93\x84"), ZString()}) {
        EXPECT_TRUE(userConfig_setStr(L"assistant.outputDir", text));
        EXPECT_EQ(userConfig_getStr(L"assistant.outputDir", L"default"), text);
    }
    const RegistryKey user = RegistryKey::openForReading(HKEY_CURRENT_USER, env.registryKey() + L"\\User");
    EXPECT_EQ(user.readDword(L"screenCapture.lastMode"), 5u);

    // Registry key names are limited to 255 characters.
    settings_redirect(env.registryKey() + L"\\" + ZString(300, L'x'));
    EXPECT_FALSE(userConfig_setStr(L"assistant.outputDir", L"after"));
}

TEST(Settings, ReadsTakeTheUserValueThenTheProgramValueThenTheDefault)
{
    ScratchEnvironment env;
    const RegistryKey program = env.programValues();
    ASSERT_TRUE(program.writeDword(L"Img2PdfDpi", 300));
    ASSERT_TRUE(program.writeString(L"BinDir", L"C:\\Pryxa\\"));
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 300u);
    EXPECT_EQ(progConfig_getStr(L"BinDir", ZString()), ZString(L"C:\\Pryxa\\"));
    EXPECT_EQ(userConfig_getDword(L"Img2PdfDpi", 144), 144u) << "user reads never see program values";
    userConfig_setDword(L"Img2PdfDpi", 72);
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 72u);
    EXPECT_EQ(progConfig_getDword(L"Img2PdfDpi", 144), 300u) << "program reads never see user values";

    // A value of another type counts as missing, even one of a DWORD's four bytes ("7" and
    // its terminator): the next one or the default serves.
    userConfig_setStr(L"Img2PdfDpi", L"7");
    EXPECT_EQ(config_getDword(L"Img2PdfDpi", 144), 300u);
    EXPECT_EQ(progConfig_getStr(L"Img2PdfDpi", L"dflt"), ZString(L"dflt"));
}

} // namespace
