// The "pryxa" scheme as urlmon's consumers meet it: an asynchronous bind of a URL moniker
// gets the module's resources and the bridge's added content with their MIME types, and
// nothing else; once the registration has gone, the scheme serves nothing.

#include "base/win/ThisModule.h"
#include "browser/ProtocolRegistration.h"
#include "tests/browser/BrowserTestKit.h"

namespace {

std::string resourceBytes(const wchar_t* name)
{
    HRSRC found = FindResourceW(thisModule(), name, RT_RCDATA);
    const void* data = found ? LockResource(LoadResource(thisModule(), found)) : nullptr;
    return data ? std::string(static_cast<const char*>(data), SizeofResource(thisModule(), found)) : std::string();
}

// The module's resources, and a source of the bridge that serves two names.
class Protocol : public BrowserTest {
protected:
    std::shared_ptr<browser::ProtocolContent> content = std::make_shared<browser::ProtocolContent>(thisModule());
    std::vector<std::wstring> asked; // what the source was asked for

    void SetUp() override
    {
        BrowserTest::SetUp();
        content->addSource([this](const ZString& name, browser::Content& served) {
            asked.push_back(name.c_str());
            if (name == ZString(L"texts.json"))
                served.bytes = {'{', '}'};
            else if (name == ZString(L"report.dat"))
                served = {{'4', '2'}, L"text/x-report"};
            return !served.bytes.empty();
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
        {L"pryxa://res/texts.json", "{}", L"application/json"}, // the source's, typed by its name
        {L"pryxa://res/report.dat", "42", L"text/x-report"},    // the source's own type
    };
    for (const auto& c : cases) {
        const BindResult bound = bindAsync(c.address);
        EXPECT_EQ(bound.result, S_OK) << c.address;
        EXPECT_TRUE(!c.data.empty() && bound.data == c.data) << c.address;
        EXPECT_EQ(bound.mimeType, c.mimeType) << c.address;
    }
    EXPECT_EQ(asked, (std::vector<std::wstring>{L"texts.json", L"report.dat"})) << "the module's resources come first";
}

TEST_F(Protocol, UnknownAndEscapingAddressesFailAndNothingIsServedOnceUnregistered)
{
    const ZString overLong = ZString(L"pryxa://res/page.html?") + ZString(1100, L'x');
    {
        browser::ProtocolRegistration scheme(content);
        for (const ZString& address :
             {ZString(L"pryxa://res/missing.html"), ZString(L"pryxa://res/..%2fpage.html"),
              ZString(L"pryxa://res/%2e%2e/page.html"), ZString(L"pryxa://res/..\\..\\windows\\win.ini"),
              ZString(L"pryxa://res/c:\\windows\\win.ini"), ZString(L"pryxa://other/page.html"),
              ZString(L"pryxa://res/dir/page.html"), ZString(L"pryxa:page.html"), overLong}) {
            const BindResult bound = bindAsync(address);
            EXPECT_TRUE(FAILED(bound.result) && bound.data.empty()) << address.toUtf8().substr(0, 60);
        }
        EXPECT_EQ(asked, (std::vector<std::wstring>{L"missing.html"})) << "only a valid name reaches a source";
    }
    const BindResult afterwards = bindAsync(L"pryxa://res/page.html");
    EXPECT_TRUE(FAILED(afterwards.result) && afterwards.data.empty());
}

} // namespace
