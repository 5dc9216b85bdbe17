// The embedded browser's portable rules: URL encoding, the in-app query string, addresses
// of the "pryxa" scheme with their MIME types, and which pages may use the script bridge or
// leave for the default browser.

#include "browser/InAppAddress.h"
#include "browser/PageOrigin.h"
#include "browser/ResourceAddress.h"
#include "browser/UrlEncoding.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::string utf8(const ZString& text) { return text.toUtf8(); }

TEST(UrlEncoding, KeepsUnreservedCharactersAndPercentEncodesUtf8BytesOfTheRest)
{
    const struct {
        const char16_t* text;
        const char* encoded;
    } cases[] = {
        {u"", ""},
        {u"AZaz09-._~", "AZaz09-._~"},
        {u"Pryxa Creator", "Pryxa%20Creator"},
        {u"a&b=c?d/e+f#g%h", "a%26b%3Dc%3Fd%2Fe%2Bf%23g%25h"},
        {u"\u00fc\u20ac", "%C3%BC%E2%82%AC"},      // two and three bytes
        {u"\U0001F600", "%F0%9F%98%80"},           // a surrogate pair is one four-byte character
    };
    for (const auto& c : cases)
        EXPECT_EQ(utf8(browser::urlEncode(c.text)), c.encoded) << utf8(c.text);
}

TEST(InAppQuery, HasTheSixteenParametersInOrderWithEncodedValues)
{
    browser::AppInfo info;
    info.name = u"Pryxa Creator";
    info.version = u"1.0.0";
    info.language = u"de";
    info.installer = u"web&setup";
    info.architecture = u"x86";
    info.updateMode = u"auto";
    info.installationId = u"{A1B2}";
    info.userId = u"u 1";
    info.campaignId = u"sp\u00e4t";
    info.customBanner = true;
    info.osVersion = u"10.0.19045";
    info.osArchitecture = u"x64";
    info.lcid = 1031;
    info.userLanguageCode = u"de";
    info.userCountryCode = u"AT";
    EXPECT_EQ(utf8(browser::inAppQuery(info, u"4711", ZString())),
              "name=Pryxa%20Creator&version=1.0.0&lang=de&installer=web%26setup&arch=x86&updateMode=auto"
              "&iid=%7BA1B2%7D&uid=u%201&cid=sp%C3%A4t&customBanner=true&osVersion=10.0.19045&osArch=x64"
              "&lcid=1031&uLangCode=de&uCountryCode=AT&random=4711");

    // Nothing known: every parameter is still there, the banner says "false".
    EXPECT_EQ(utf8(browser::inAppQuery(browser::AppInfo(), u"1", u"&page=x")),
              "name=&version=&lang=&installer=&arch=&updateMode=&iid=&uid=&cid=&customBanner=false"
              "&osVersion=&osArch=&lcid=0&uLangCode=&uCountryCode=&random=1&page=x");
}

TEST(InAppQuery, RandomValueIsANewDecimalNumberEachTime)
{
    std::set<std::string> seen;
    for (int i = 0; i < 8; ++i) {
        const ZString value = browser::newRandomValue();
        long long number = -1;
        EXPECT_TRUE(value.toInt(number) && number >= 0 && number <= 0xFFFFFFFFLL) << utf8(value);
        seen.insert(utf8(value));
    }
    EXPECT_GT(seen.size(), 1u);
}

TEST(InAppEndpoint, IsTheVendorsUnlessATestPointsItElsewhere)
{
    EXPECT_EQ(utf8(browser::inAppEndpoint()), "https://inapp.pryxa.com");
    browser::setInAppEndpoint(u"http://127.0.0.1:9");
    EXPECT_EQ(utf8(browser::inAppEndpoint()), "http://127.0.0.1:9");
    browser::setInAppEndpoint(ZString());
    EXPECT_EQ(utf8(browser::inAppEndpoint()), "https://inapp.pryxa.com");
}

TEST(ResourceAddress, NamesOnlyResourcesOfTheModule)
{
    const struct {
        ZString address;
        const char* name; // nullptr: not a resource address
    } cases[] = {
        {u"pryxa://res/captureUi.xhtml", "captureUi.xhtml"},
        {u"PRYXA://RES/logo.png", "logo.png"},
        {u"pryxa://res/page-1_a.html?lang=de#top", "page-1_a.html"},
        {u"pryxa://res/a.b.c", "a.b.c"},
        {u"pryxa://res/", nullptr},
        {u"pryxa://res/?x", nullptr},
        {u"pryxa://res/..", nullptr},
        {u"pryxa://res/../secret.txt", nullptr},
        {u"pryxa://res/a..b", nullptr},
        {u"pryxa://res/.hidden", nullptr},
        {u"pryxa://res/%2e%2e/x", nullptr},
        {u"pryxa://res/%2E%2E", nullptr},
        {u"pryxa://res/a%20b", nullptr},
        {u"pryxa://res/dir/page.html", nullptr},
        {u"pryxa://res/..\\..\\windows\\win.ini", nullptr},
        {u"pryxa://res/c:\\windows\\win.ini", nullptr},
        {u"pryxa://res/c:", nullptr},
        {u"pryxa://res//etc/passwd", nullptr},
        {u"pryxa://other/page.html", nullptr},
        {u"pryxa://res.example.com/page.html", nullptr},
        {u"pryxa://user@res/page.html", nullptr},
        {u"pryxa://res:80/page.html", nullptr},
        {u"pryxa:res/page.html", nullptr},
        {u"pryxa:///res/page.html", nullptr},
        {u"file:///c:/windows/win.ini", nullptr},
        {u"c:\\windows\\win.ini", nullptr},
        {u"http://res/page.html", nullptr},
        {ZString(u"pryxa://res/") + ZString(129, u'a'), nullptr},
        {ZString(u"pryxa://res/a?") + ZString(1100, u'x'), nullptr},
    };
    for (const auto& c : cases) {
        const std::optional<ZString> name = browser::resourceName(c.address);
        EXPECT_EQ(name ? utf8(*name) : "(none)", c.name ? c.name : "(none)") << utf8(c.address);
    }
    const ZString longest(128, u'a');
    EXPECT_EQ(browser::resourceName(ZString(u"pryxa://res/") + longest), longest);
    EXPECT_EQ(utf8(browser::resourceAddress(u"logo.png")), "pryxa://res/logo.png");
}

TEST(ResourceAddress, MimeTypeFollowsTheExtensionInAnyCase)
{
    const struct {
        const char16_t* name;
        const char* type;
    } cases[] = {
        {u"page.html", "text/html"},        {u"PAGE.HTM", "text/html"},
        {u"captureUi.xhtml", "text/html"},  {u"style.css", "text/css"},
        {u"bridge.js", "text/javascript"},  {u"texts.json", "application/json"},
        {u"notes.txt", "text/plain"},       {u"logo.PNG", "image/png"},
        {u"a.gif", "image/gif"},            {u"a.jpg", "image/jpeg"},
        {u"a.jpeg", "image/jpeg"},          {u"a.svg", "image/svg+xml"},
        {u"favicon.ico", "image/x-icon"},   {u"data.bin", "application/octet-stream"},
        {u"html", "application/octet-stream"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(utf8(browser::mimeTypeOf(c.name)), c.type) << utf8(c.name);
}

TEST(PageOrigin, OnlyInAppAndOwnResourcePagesMayUseTheBridge)
{
    const ZString endpoint = u"https://inapp.pryxa.com";
    const struct {
        const char16_t* page;
        bool allowed;
    } cases[] = {
        {u"https://inapp.pryxa.com", true},
        {u"https://inapp.pryxa.com/inapp/screenCapture/?name=x", true},
        {u"HTTPS://INAPP.PRYXA.COM/x", true},
        {u"https://inapp.pryxa.com?x", true},
        {u"https://inapp.pryxa.com#x", true},
        {u"pryxa://res/page.html", true},
        {u"pryxa://res/../page.html", false},
        {u"pryxa://other/page.html", false},
        {u"http://inapp.pryxa.com/", false},
        {u"https://inapp.pryxa.com.example.com/", false},
        {u"https://inapp.pryxa.com@example.com/", false},
        {u"https://inapp.pryxa.com:8443/", false},
        {u"https://inapp.pryxa.co/", false},
        {u"https://example.com/https://inapp.pryxa.com/", false},
        {u"https://example.com/?u=https://inapp.pryxa.com", false},
        {u"https://inapp.pryxa.com\\@example.com/", false},
        {u"about:blank", false},
        {u"file:///c:/page.html", false},
        {u"", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(browser::mayUseBridge(c.page, endpoint), c.allowed) << utf8(c.page);
    EXPECT_TRUE(browser::mayUseBridge(u"http://127.0.0.1:8080/inapp/", u"http://127.0.0.1:8080"));
    EXPECT_FALSE(browser::mayUseBridge(u"https://anything/", ZString()));
}

TEST(PageOrigin, OnlyWebAddressesLeaveForTheDefaultBrowser)
{
    const struct {
        const char16_t* address;
        bool web;
    } cases[] = {
        {u"http://example.com/", true}, {u"HTTPS://example.com", true}, {u"https://", false},
        {u"file:///c:/x.exe", false},   {u"javascript:alert(1)", false}, {u"pryxa://res/page.html", false},
        {u"mailto:a@b.c", false},       {u"c:\\windows\\notepad.exe", false}, {u"", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(browser::isWebAddress(c.address), c.web) << utf8(c.address);
}

} // namespace
