// The facts the in-app pages are told, from the build, the program values, the language
// library and the system, and the query string made of them now.

#include "base/win/RegistryKey.h"
#include "browser/AppInfo.h"
#include "companions/language/Language.h"
#include "pryxa/Version.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

std::string utf8(const ZString& text) { return text.toUtf8(); }

TEST(AppInfo, ComesFromTheBuildTheProgramValuesTheLanguageAndTheSystemAndTheQueryCarriesItNow)
{
    ScratchEnvironment env;
    const browser::AppInfo unset = browser::gatherAppInfo();
    EXPECT_EQ(utf8(unset.installer + unset.updateMode + unset.installationId + unset.userId + unset.campaignId), "");
    EXPECT_FALSE(unset.customBanner);

    const RegistryKey values = env.programValues();
    for (const wchar_t* name : {L"Installer", L"UpdateMode", L"InstallationId", L"UserId", L"CampaignId"})
        values.writeString(name, ZString(name) + L"!");
    values.writeDword(L"CustomBanner", 1);
    const browser::AppInfo info = browser::gatherAppInfo();
    EXPECT_EQ(utf8(info.name + L" " + info.version), PRYXA_PRODUCT_NAME " " PRYXA_VERSION_TEXT);
    EXPECT_EQ(info.language, lang_getCurrent().code);
    EXPECT_EQ(utf8(info.installer + info.updateMode + info.installationId + info.userId + info.campaignId),
              "Installer!UpdateMode!InstallationId!UserId!CampaignId!");
    EXPECT_TRUE(info.customBanner);
    EXPECT_EQ(utf8(info.architecture), sizeof(void*) == 8 ? "x64" : "x86");
    EXPECT_TRUE(std::regex_match(utf8(info.osVersion), std::regex("[0-9]+\\.[0-9]+\\.[0-9]+"))) << utf8(info.osVersion);
    EXPECT_TRUE(std::regex_match(utf8(info.osArchitecture), std::regex("x64|x86|arm64")));
    EXPECT_EQ(info.lcid, GetUserDefaultLCID());
    EXPECT_TRUE(std::regex_match(utf8(info.userLanguageCode + L"-" + info.userCountryCode), std::regex("[a-z]{2,3}-[A-Z]+")));

    // The facts as they are now, a new random value each time, and the page's own parameters.
    const std::regex shape("name=Pryxa%20Creator&version=" PRYXA_VERSION_TEXT
                           "&lang=.*&installer=Installer%21&.*&random=([0-9]+)(.*)");
    std::smatch first, second;
    const std::string withPage = utf8(browser::inAppQuery(L"&page=1"));
    const std::string plain = utf8(browser::inAppQuery(ZString()));
    ASSERT_TRUE(std::regex_match(withPage, first, shape)) << withPage;
    ASSERT_TRUE(std::regex_match(plain, second, shape)) << plain;
    EXPECT_EQ(first[2], "&page=1");
    EXPECT_EQ(second[2], "");
    EXPECT_NE(first[1], second[1]);
}

} // namespace
