// The facts the in-app pages are told, gathered from the build, the program values, the
// language library and the system, and the query string made of them now.

#include "base/win/RegistryKey.h"
#include "browser/AppInfo.h"
#include "companions/language/Language.h"
#include "pryxa/Version.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

std::string utf8(const ZString& text) { return text.toUtf8(); }

TEST(AppInfo, ComesFromTheBuildTheProgramValuesTheLanguageAndTheSystem)
{
    ScratchEnvironment env;
    const browser::AppInfo unset = browser::gatherAppInfo();
    EXPECT_EQ(utf8(unset.installer + unset.updateMode + unset.installationId + unset.userId + unset.campaignId), "");
    EXPECT_FALSE(unset.customBanner);

    const RegistryKey program = RegistryKey::openForWriting(HKEY_CURRENT_USER, env.registryKey() + ZString(L"\\Program"));
    ASSERT_TRUE(program.writeString(L"Installer", L"web") && program.writeString(L"UpdateMode", L"manual")
                && program.writeString(L"InstallationId", L"I-1") && program.writeString(L"UserId", L"U-2")
                && program.writeString(L"CampaignId", L"C-3") && program.writeDword(L"CustomBanner", 1));
    const browser::AppInfo info = browser::gatherAppInfo();
    EXPECT_EQ(utf8(info.name), PRYXA_PRODUCT_NAME);
    EXPECT_EQ(utf8(info.version), PRYXA_VERSION_TEXT);
    EXPECT_EQ(info.language, lang_getCurrent().code);
    EXPECT_EQ(utf8(info.installer + L"|" + info.updateMode + L"|" + info.installationId + L"|" + info.userId + L"|"
                   + info.campaignId),
              "web|manual|I-1|U-2|C-3");
    EXPECT_TRUE(info.customBanner);
    EXPECT_EQ(utf8(info.architecture), sizeof(void*) == 8 ? "x64" : "x86");
    EXPECT_TRUE(std::regex_match(utf8(info.osVersion), std::regex("[0-9]+\\.[0-9]+\\.[0-9]+"))) << utf8(info.osVersion);
    EXPECT_TRUE(info.osArchitecture == ZString(L"x64") || info.osArchitecture == ZString(L"x86")
                || info.osArchitecture == ZString(L"arm64"));
    EXPECT_EQ(info.lcid, GetUserDefaultLCID());
    EXPECT_EQ(info.userLanguageCode.length(), 2);
    EXPECT_FALSE(info.userCountryCode.isEmpty());
}

TEST(AppInfo, TheQueryNowCarriesTheFactsANewRandomValueAndThePagesOwnParameters)
{
    ScratchEnvironment env;
    const std::regex shape("name=Pryxa%20Creator&version=" PRYXA_VERSION_TEXT "&lang=.*&random=([0-9]+)(.*)");
    std::smatch first, second;
    const std::string withPage = utf8(browser::inAppQuery(L"&page=1"));
    const std::string plain = utf8(browser::inAppQuery(ZString()));
    ASSERT_TRUE(std::regex_match(withPage, first, shape)) << withPage;
    ASSERT_TRUE(std::regex_match(plain, second, shape)) << plain;
    EXPECT_EQ(first[2], "&page=1");
    EXPECT_EQ(second[2], "");
    EXPECT_NE(first[1], second[1]) << "a new random value each time";
}

} // namespace
