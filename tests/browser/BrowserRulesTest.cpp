// The embedded browser's portable rules: URL encoding and the in-app query string, addresses
// of the "pryxa" scheme with their MIME types, and which pages may use the script bridge or
// leave for the default browser.

#include "browser/InAppAddress.h"
#include "browser/PageOrigin.h"
#include "browser/ResourceAddress.h"
#include "browser/UrlEncoding.h"

#include <gtest/gtest.h>

namespace {

std::string utf8(const ZString& text) { return text.toUtf8(); }

TEST(InAppQuery, HasTheSixteenParametersInOrderWithUtf8PercentEncodedValues)
{
    browser::AppInfo info{u"Pryxa Creator", u"1.0.0", u"de", u"web&setup", u"x86", u"auto", u"{A1B2}", u"u 1",
                          u"sp\u00e4t\u20ac", true, u"10.0.19045", u"x64", 1031, u"de", u"AT"};
    EXPECT_EQ(utf8(browser::inAppQuery(info, u"4711", ZString())),
              "name=Pryxa%20Creator&version=1.0.0&lang=de&installer=web%26setup&arch=x86&updateMode=auto"
              "&iid=%7BA1B2%7D&uid=u%201&cid=sp%C3%A4t%E2%82%AC&customBanner=true&osVersion=10.0.19045&osArch=x64"
              "&lcid=1031&uLangCode=de&uCountryCode=AT&random=4711");
    EXPECT_EQ(utf8(browser::inAppQuery(browser::AppInfo(), u"1", u"&page=x")),
              "name=&version=&lang=&installer=&arch=&updateMode=&iid=&uid=&cid=&customBanner=false"
              "&osVersion=&osArch=&lcid=0&uLangCode=&uCountryCode=&random=1&page=x");
    EXPECT_EQ(utf8(browser::urlEncode(u"AZaz09-._~/?=+#%\U0001F600")), "AZaz09-._~%2F%3F%3D%2B%23%25%F0%9F%98%80");

    EXPECT_EQ(utf8(browser::inAppEndpoint()), "https://inapp.pryxa.com");
    browser::setInAppEndpoint(u"http://127.0.0.1:9");
    EXPECT_EQ(utf8(browser::inAppEndpoint()), "http://127.0.0.1:9");
    browser::setInAppEndpoint(ZString());
    EXPECT_EQ(utf8(browser::inAppEndpoint()), "https://inapp.pryxa.com");
}

TEST(ResourceAddress, NamesOnlyResourcesOfTheModuleWithTheirMimeTypes)
{
    const struct {
        ZString address;
        std::string name = "(none)"; // not a resource address
    } cases[] = {
        {u"pryxa://res/captureUi.xhtml", "captureUi.xhtml"},
        {u"PRYXA://RES/logo.png", "logo.png"},
        {u"pryxa://res/page-1_a.html?lang=de#top", "page-1_a.html"},
        {ZString(u"pryxa://res/") + ZString(128, u'a'), std::string(128, 'a')},
        {ZString(u"pryxa://res/") + ZString(129, u'a')}, {ZString(u"pryxa://res/a?") + ZString(1100, u'x')},
        {u"pryxa://res/"}, {u"pryxa://res/../secret.txt"}, {u"pryxa://res/%2e%2e/x"},
        {u"pryxa://res/dir/page.html"}, {u"pryxa://res/..\\..\\windows\\win.ini"},
        {u"pryxa://res.example.com/page.html"}, {u"pryxa://res:80/page.html"}, {u"pryxa:res/page.html"},
    };
    for (const auto& c : cases) {
        const std::optional<ZString> name = browser::resourceName(c.address);
        EXPECT_EQ(name ? utf8(*name) : "(none)", c.name) << utf8(c.address).substr(0, 60);
    }
    EXPECT_EQ(utf8(browser::resourceAddress(u"logo.png")), "pryxa://res/logo.png");

    const char* const types[][2] = {{"page.HTM", "text/html"},      {"captureUi.xhtml", "text/html"},
                                    {"a.css", "text/css"},          {"bridge.js", "text/javascript"},
                                    {"t.json", "application/json"}, {"logo.PNG", "image/png"},
                                    {"a.jpeg", "image/jpeg"},       {"a.svg", "image/svg+xml"},
                                    {"html", "application/octet-stream"}};
    for (const auto& type : types)
        EXPECT_EQ(utf8(browser::mimeTypeOf(ZString::fromUtf8(type[0]))), type[1]) << type[0];
}

TEST(PageOrigin, OnlyInAppAndOwnPagesGetTheBridgeAndOnlyWebAddressesLeave)
{
    const char* const allowed[] = {"https://inapp.pryxa.com", "https://inapp.pryxa.com/inapp/screenCapture/?name=x",
                                   "HTTPS://INAPP.PRYXA.COM#x", "pryxa://res/page.html"};
    const char* const refused[] = {"pryxa://res/../page.html", "http://inapp.pryxa.com/",
                                   "https://inapp.pryxa.com.example.com/", "https://inapp.pryxa.com@example.com/",
                                   "https://inapp.pryxa.com:8443/", "https://example.com/?u=https://inapp.pryxa.com",
                                   "https://inapp.pryxa.com\\@example.com/", "about:blank", ""};
    const ZString endpoint = u"https://inapp.pryxa.com";
    for (const char* page : allowed)
        EXPECT_TRUE(browser::mayUseBridge(ZString::fromUtf8(page), endpoint)) << page;
    for (const char* page : refused)
        EXPECT_FALSE(browser::mayUseBridge(ZString::fromUtf8(page), endpoint)) << page;
    EXPECT_TRUE(browser::mayUseBridge(u"http://127.0.0.1:8080/inapp/", u"http://127.0.0.1:8080"));
    EXPECT_FALSE(browser::mayUseBridge(u"https://anything/", ZString()));

    for (const char* web : {"http://example.com/", "HTTPS://example.com"})
        EXPECT_TRUE(browser::isWebAddress(ZString::fromUtf8(web))) << web;
    for (const char* other : {"https://", "file:///c:/x.exe", "javascript:alert(1)", "pryxa://res/a.html", "mailto:a@b.c"})
        EXPECT_FALSE(browser::isWebAddress(ZString::fromUtf8(other))) << other;
}

} // namespace
