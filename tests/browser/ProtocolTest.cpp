// The "pryxa" scheme as urlmon's consumers meet it: an asynchronous bind of a URL moniker
// gets the module's resources and the bridge's added content with their MIME types, and
// nothing else; once the registration has gone, the scheme serves nothing.

#include "base/win/ThisModule.h"
#include "browser/ProtocolRegistration.h"
#include "tests/browser/BrowserTestKit.h"

#include <memory>

namespace {

std::string resourceBytes(const wchar_t* name)
{
    HRSRC found = FindResourceW(thisModule(), name, RT_RCDATA);
    const void* data = found ? LockResource(LoadResource(thisModule(), found)) : nullptr;
    return data ? std::string(static_cast<const char*>(data), SizeofResource(thisModule(), found)) : std::string();
}

class Protocol : public BrowserTest {
protected:
    std::shared_ptr<browser::ProtocolContent> content = std::make_shared<browser::ProtocolContent>(thisModule());
    std::vector<std::wstring> asked; // names that the added source was asked for

    void SetUp() override
    {
        BrowserTest::SetUp();
        content->addSource([this](const ZString& name, browser::Content& served) {
            asked.push_back(name.c_str());
            if (name == ZString(L"texts.json"))
                served.bytes = {'{', '}'};
            else if (name == ZString(L"report.dat"))
                served = {{'4', '2'}, L"text/x-report"};
            else
                return false;
            return true;
        });
    }
};

TEST_F(Protocol, AnAsynchronousBindGetsResourcesAndAddedContentWithTheirMimeTypes)
{
    browser::ProtocolRegistration scheme(content);
    ASSERT_TRUE(scheme.registered());
    const struct {
        const wchar_t* address;
        std::string data;
        const wchar_t* mimeType;
    } cases[] = {
        {L"pryxa://res/page.html", resourceBytes(L"PAGE.HTML"), L"text/html"},
        {L"PRYXA://RES/Dot.png?v=2", resourceBytes(L"DOT.PNG"), L"image/png"},
        {L"pryxa://res/texts.json", "{}", L"application/json"},  // the source's, typed by its name
        {L"pryxa://res/report.dat", "42", L"text/x-report"},     // the source's own type
    };
    for (const auto& c : cases) {
        ASSERT_FALSE(c.data.empty());
        const BindResult bound = bindAsync(c.address);
        EXPECT_EQ(bound.result, S_OK) << c.address;
        EXPECT_EQ(bound.data, c.data) << c.address;
        EXPECT_EQ(bound.mimeType, c.mimeType) << c.address;
    }
    // The module's own resources come first; the source only hears of names they lack.
    EXPECT_EQ(asked, (std::vector<std::wstring>{L"texts.json", L"report.dat"}));
}

TEST_F(Protocol, UnknownAndEscapingAddressesFailAndNothingIsServedOnceUnregistered)
{
    const ZString overLong = ZString(L"pryxa://res/page.html?") + ZString(1100, L'x');
    const wchar_t* const addresses[] = {
        L"pryxa://res/missing.html",
        L"pryxa://res/..%2fpage.html",
        L"pryxa://res/%2e%2e/page.html",
        L"pryxa://res/..\\..\\windows\\win.ini",
        L"pryxa://res/c:\\windows\\win.ini",
        L"pryxa://other/page.html",
        L"pryxa://res.example.com/page.html",
        L"pryxa://res/dir/page.html",
        L"pryxa:page.html",
        overLong.c_str(),
    };
    {
        browser::ProtocolRegistration scheme(content);
        for (const wchar_t* address : addresses) {
            const BindResult bound = bindAsync(address);
            EXPECT_TRUE(FAILED(bound.result)) << std::wstring(address).substr(0, 60);
            EXPECT_EQ(bound.data, "") << std::wstring(address).substr(0, 60);
        }
        EXPECT_EQ(asked, (std::vector<std::wstring>{L"missing.html"})) << "only a valid name reaches a source";
    }
    const BindResult afterwards = bindAsync(L"pryxa://res/page.html");
    EXPECT_TRUE(FAILED(afterwards.result));
    EXPECT_EQ(afterwards.data, "");
}

} // namespace
