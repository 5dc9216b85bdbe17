// The embedded browser as its dialog and its pages meet it. Events are fired at its site as
// the control fires them, so no HTML engine is needed.

#include "browser/ComObject.h"
#include "browser/DefaultBrowser.h"
#include "browser/EmbeddedBrowser.h"
#include "tests/browser/BrowserTestKit.h"
#include "tests/support/UiRobot.h"

#include <exdispid.h>
#include <mshtmhst.h>
#include <wrl/client.h>

#include <vector>

using browser::EmbeddedBrowser;
using Microsoft::WRL::ComPtr;
using State = EmbeddedBrowser::State;

namespace {

class Browser : public BrowserTest {
protected:
    SilentServer silent; // navigations to it stay loading
    std::unique_ptr<EmbeddedBrowser> page;
    ComPtr<IDocHostUIHandler> host; // the page's site, as the control sees it
    ComPtr<IDispatch> events;       // the same site; as an object, it stands for a sub-frame

    void TearDown() override
    {
        host.Reset();
        events.Reset();
        page.reset();
        BrowserTest::TearDown();
    }

    // A page loading the silent server, with its control made after the paint.
    void load()
    {
        page = EmbeddedBrowser::create(parent());
        ASSERT_TRUE(page);
        page->navigate(silent.address());
        EXPECT_EQ(page->control(), nullptr) << "the parent must not wait for the control";
        ASSERT_TRUE(pumpUntil([&] { return page->control() != nullptr; }, 10000));
        ComPtr<IOleObject> object;
        ComPtr<IOleClientSite> site;
        ASSERT_EQ(page->control()->QueryInterface(IID_PPV_ARGS(&object)), S_OK);
        ASSERT_EQ(object->GetClientSite(&site), S_OK);
        ASSERT_TRUE(SUCCEEDED(site.As(&host)) && SUCCEEDED(site.As(&events)));
    }
    bool visible() const { return IsWindowVisible(page->window()) != FALSE; }
    IDispatch* external()
    {
        ComPtr<IDispatch> given;
        host->GetExternal(&given);
        return given.Get();
    }
};

std::vector<std::wstring> opened; // what went to the default browser

// A hidden child that makes its control after the paint and follows its bounds; then what it
// does after each event of the control: shown only for the top frame's complete document,
// hidden for good after a top-frame error, the bridge only for in-app and own pages, never an
// error page, and new windows only to the default browser.
TEST_F(Browser, IsAHiddenChildThatFollowsItsBoundsAndTheControlsEvents)
{
    load();
    EXPECT_EQ(GetParent(page->window()), parent());
    EXPECT_FALSE(visible());
    for (const RECT bounds : {RECT{0, 240, 500, 290}, RECT{10, 200, 410, 260}}) {
        page->setBounds(bounds);
        RECT placed = {}, control = {};
        GetWindowRect(page->window(), &placed);
        MapWindowPoints(nullptr, parent(), reinterpret_cast<POINT*>(&placed), 2);
        GetClientRect(GetWindow(page->window(), GW_CHILD), &control); // the control's own window fills it
        EXPECT_TRUE(EqualRect(&placed, &bounds));
        EXPECT_EQ(control.right * 1000 + control.bottom, (bounds.right - bounds.left) * 1000 + bounds.bottom - bounds.top);
    }
    IWebBrowser2* top = page->control();
    const wchar_t* const inApp = L"https://inapp.pryxa.com/inapp/screenCapture/?name=x";
    const struct {
        DISPID event;
        bool topFrame;
        const wchar_t* address;
        State state;
        bool bridge;
    } steps[] = {
        {DISPID_NAVIGATECOMPLETE2, false, inApp, State::loading, false}, // a frame is not the page
        {DISPID_DOCUMENTCOMPLETE, false, inApp, State::loading, false},
        {DISPID_NAVIGATECOMPLETE2, true, L"https://example.com/", State::loading, false},
        {DISPID_NAVIGATECOMPLETE2, true, L"pryxa://res/page.html", State::loading, true},
        {DISPID_DOCUMENTCOMPLETE, true, L"pryxa://res/page.html", State::shown, true},
        {DISPID_NAVIGATEERROR, false, L"https://ads.example.com/", State::shown, true},
        {DISPID_NAVIGATECOMPLETE2, true, L"https://inapp.pryxa.com.example.com/", State::shown, false},
        {DISPID_NAVIGATECOMPLETE2, true, inApp, State::shown, true},
        {DISPID_NAVIGATEERROR, true, inApp, State::failed, false},
        {DISPID_DOCUMENTCOMPLETE, true, inApp, State::failed, false}, // a failed page's document
    };
    page->setExternal(events);
    for (const auto& step : steps) {
        const bool cancelled = fireEvent(top, step.event, step.topFrame ? top : events.Get(), step.address);
        const std::string what = std::to_string(step.event) + " " + ZString(step.address).toUtf8();
        EXPECT_EQ(cancelled, step.event == DISPID_NAVIGATEERROR) << what;
        EXPECT_EQ(page->state(), step.state) << what;
        EXPECT_EQ(visible(), step.state == State::shown) << what;
        EXPECT_EQ(external(), step.bridge ? events.Get() : nullptr) << what;
    }
    page->navigate(silent.address()); // a new attempt starts hidden and can succeed
    EXPECT_EQ(page->state(), State::loading);
    fireEvent(top, DISPID_DOCUMENTCOMPLETE, top, inApp);
    EXPECT_TRUE(visible());
    page->setExternal(nullptr);
    EXPECT_EQ(external(), nullptr);

    const browser::UrlOpener kept = std::exchange(browser::openInDefaultBrowser, [](const ZString& to) {
        opened.push_back(to.c_str());
    });
    for (const wchar_t* address : {L"https://www.pryxa.com/offer", L"HTTP://example.com/", L"file:///c:/windows/notepad.exe",
                                   L"javascript:alert(1)", L"pryxa://res/page.html"})
        EXPECT_TRUE(fireEvent(top, DISPID_NEWWINDOW3, nullptr, address)) << "never a window of the control";
    browser::openInDefaultBrowser = kept;
    EXPECT_EQ(opened, (std::vector<std::wstring>{L"https://www.pryxa.com/offer", L"HTTP://example.com/"}));
}

// Real navigations that end hidden: a missing resource, a port nobody listens on (as when
// offline) and a server that never answers (the time-out); and the pryxa protocol is
// reached through the control.
TEST_F(Browser, RealNavigationsThatCannotShowAPageEndHiddenAndThePryxaSchemeIsReached)
{
    SOCKET closed = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP); // holds a port without listening
    sockaddr_in local = {AF_INET, 0, {{{127, 0, 0, 1}}}, {}};
    int size = sizeof local;
    bind(closed, reinterpret_cast<sockaddr*>(&local), size);
    getsockname(closed, reinterpret_cast<sockaddr*>(&local), &size);
    const struct {
        ZString address;
        UINT timeoutMs;
    } cases[] = {{L"pryxa://res/missing.html", EmbeddedBrowser::kPageTimeoutMs},
                 {ZString::format(L"http://127.0.0.1:%d/", ntohs(local.sin_port)), EmbeddedBrowser::kPageTimeoutMs},
                 {silent.address(), 100}};
    for (const auto& c : cases) {
        page = EmbeddedBrowser::create(parent(), c.timeoutMs);
        page->navigate(c.address);
        EXPECT_TRUE(pumpUntil([&] { return page->state() == State::failed; }, 20000)) << c.address.toUtf8();
        EXPECT_FALSE(visible());
    }
    closesocket(closed);
    page = EmbeddedBrowser::create(parent());
    std::vector<std::wstring> asked;
    page->content().addSource([&](const ZString& name, browser::Content& served) {
        asked.push_back(name.c_str());
        served.bytes = {'<', 'p', '>'};
        return true;
    });
    page->navigate(L"pryxa://res/bridge.html");
    EXPECT_TRUE(pumpUntil([&] { return !asked.empty(); }, 10000));
    EXPECT_EQ(asked, std::vector<std::wstring>{L"bridge.html"});
}

TEST_F(Browser, LetsGoOfEverythingWhenItsParentIsDestroyedFirst)
{
    load();
    fireEvent(page->control(), DISPID_NAVIGATECOMPLETE2, page->control(), L"pryxa://res/page.html");
    page->setExternal(events);
    events.Reset();
    DestroyWindow(parent());
    EXPECT_EQ(page->control(), nullptr);
    EXPECT_EQ(page->state(), State::failed);
    EXPECT_EQ(external(), nullptr) << "a site held by someone else reaches nothing";
    host.Reset();
    EXPECT_EQ(browser::liveComObjects(), 0);
    EXPECT_TRUE(FAILED(bindAsync(L"pryxa://res/page.html").result)) << "the scheme has gone with the control";
}

TEST_F(Browser, WithoutTheControlItStaysHiddenAndHoldsNothing)
{
    const CLSID kept = std::exchange(browser::controlClass, CLSID_NULL); // as on a system without it
    page = EmbeddedBrowser::create(parent());
    page->navigate(L"pryxa://res/page.html");
    EXPECT_TRUE(pumpUntil([&] { return page->state() == State::failed; }, 10000));
    browser::controlClass = kept;
    EXPECT_EQ(page->control(), nullptr);
    EXPECT_FALSE(visible());
    EXPECT_EQ(browser::liveComObjects(), 0) << "no site or scheme kept for a control that is not there";
    page->navigate(L"pryxa://res/page.html");
    EXPECT_EQ(page->state(), State::failed) << "no second attempt";
}

} // namespace
