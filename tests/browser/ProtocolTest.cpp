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

using Protocol = BrowserTest;

TEST_F(Protocol, ServesResourcesAndAddedContentWithTheirMimeTypesAndNothingElseNorOnceUnregistered)
{
    const auto content = std::make_shared<browser::ProtocolContent>(thisModule());
    std::vector<std::wstring> asked; // what the bridge's source, which serves two names, was asked for
    content->addSource([&](const ZString& name, browser::Content& served) {
        asked.push_back(name.c_str());
        if (name == ZString(L"texts.json"))
            served.bytes = {'{', '}'};
        else if (name == ZString(L"report.dat"))
            served = {{'4', '2'}, L"text/x-report"};
        return !served.bytes.empty();
    });
    const struct {
        ZString address;
        std::string data = {}; // empty: the bind fails
        const wchar_t* mimeType = nullptr;
    } cases[] = {
        {L"pryxa://res/page.html", resourceBytes(L"PAGE.HTML"), L"text/html"},
        {L"PRYXA://RES/Dot.png?v=2", resourceBytes(L"DOT.PNG"), L"image/png"},
        {L"pryxa://res/texts.json", "{}", L"application/json"}, // the source's, typed by its name
        {L"pryxa://res/report.dat", "42", L"text/x-report"},    // the source's own type
        {L"pryxa://res/missing.html"},          {L"pryxa://res/..%2fpage.html"},
        {L"pryxa://res/%2e%2e/page.html"},      {L"pryxa://res/..\\..\\windows\\win.ini"},
        {L"pryxa://res/c:\\windows\\win.ini"}, {L"pryxa://other/page.html"},
        {L"pryxa://res/dir/page.html"},         {L"pryxa:page.html"},
        {ZString(L"pryxa://res/page.html?") + ZString(1100, L'x')},
    };
    {
        browser::ProtocolRegistration scheme(content);
        ASSERT_TRUE(scheme.registered());
        for (const auto& c : cases) {
            const BindResult bound = bindAsync(c.address);
            const std::string what = c.address.toUtf8().substr(0, 60);
            EXPECT_TRUE(c.data.empty() ? FAILED(bound.result) : bound.result == S_OK) << what;
            EXPECT_EQ(bound.data, c.data) << what;
            EXPECT_EQ(bound.mimeType, c.mimeType ? c.mimeType : L"") << what; // none for a failed bind
        }
        // The module's resources come first; only a valid name reaches a source.
        EXPECT_EQ(asked, (std::vector<std::wstring>{L"texts.json", L"report.dat", L"missing.html"}));
    }
    const BindResult afterwards = bindAsync(L"pryxa://res/page.html");
    EXPECT_TRUE(FAILED(afterwards.result) && afterwards.data.empty());
}

} // namespace
