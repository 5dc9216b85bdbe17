// The embedded browser as its dialog and its pages meet it: a hidden child that makes its
// control after the parent has painted, follows its bounds, shows a page only once its
// document is complete, hides itself whenever no page can be shown, sends new windows to
// the default browser, gives the bridge only to its own pages and lets go of everything.
// The control's events are fired at its site as the control fires them, so that the
// decisions do not depend on an HTML engine being there.

#include "browser/ComObject.h"
#include "browser/DefaultBrowser.h"
#include "browser/EmbeddedBrowser.h"
#include "browser/InAppAddress.h"
#include "tests/browser/BrowserTestKit.h"
#include "tests/support/UiRobot.h"

#include <exdispid.h>
#include <idispids.h>
#include <mshtmdid.h>
#include <mshtmhst.h>
#include <wrl/client.h>

#include <vector>

using browser::EmbeddedBrowser;
using Microsoft::WRL::ComPtr;
using State = EmbeddedBrowser::State;

namespace {

std::vector<std::wstring> opened; // what went to the default browser

class Browser : public BrowserTest {
protected:
    SilentServer silent; // navigations to it stay loading

    void SetUp() override
    {
        BrowserTest::SetUp();
        kept_ = browser::openInDefaultBrowser;
        browser::openInDefaultBrowser = [](const ZString& address) { opened.push_back(address.c_str()); };
        opened.clear();
    }
    void TearDown() override
    {
        browser::openInDefaultBrowser = kept_;
        BrowserTest::TearDown();
    }

    // A browser loading the silent server, with its control made.
    std::unique_ptr<EmbeddedBrowser> loading(UINT timeoutMs = EmbeddedBrowser::kPageTimeoutMs)
    {
        std::unique_ptr<EmbeddedBrowser> made = EmbeddedBrowser::create(parent(), timeoutMs);
        if (!made)
            return nullptr;
        made->navigate(silent.address());
        pumpUntil([&] { return made->control() != nullptr; }, 10000);
        return made;
    }

    template <typename Interface>
    static ComPtr<Interface> siteAs(EmbeddedBrowser& browser)
    {
        ComPtr<IOleObject> object;
        ComPtr<IOleClientSite> site;
        ComPtr<Interface> wanted;
        if (browser.control() && SUCCEEDED(browser.control()->QueryInterface(IID_PPV_ARGS(&object)))
            && SUCCEEDED(object->GetClientSite(&site)) && site)
            site.As(&wanted);
        return wanted;
    }

private:
    browser::UrlOpener kept_ = nullptr;
};

bool visible(const EmbeddedBrowser& browser) { return IsWindowVisible(browser.window()) != FALSE; }

TEST_F(Browser, IsAHiddenChildThatMakesItsControlOnlyAfterThePaintAndFollowsItsBounds)
{
    std::unique_ptr<EmbeddedBrowser> page = EmbeddedBrowser::create(parent());
    ASSERT_TRUE(page);
    EXPECT_EQ(GetParent(page->window()), parent());
    EXPECT_EQ(windowClass(page->window()), L"PryxaEmbeddedBrowser");
    page->navigate(silent.address());
    EXPECT_EQ(page->control(), nullptr) << "the parent must not wait for the control";
    EXPECT_EQ(page->state(), State::loading);
    ASSERT_TRUE(pumpUntil([&] { return page->control() != nullptr; }, 10000));
    EXPECT_EQ(page->state(), State::loading);
    EXPECT_FALSE(visible(*page));

    for (const RECT bounds : {RECT{0, 240, 500, 290}, RECT{10, 200, 410, 260}}) {
        page->setBounds(bounds);
        const RECT placed = rectInParent(page->window());
        EXPECT_TRUE(EqualRect(&placed, &bounds));
        HWND control = GetWindow(page->window(), GW_CHILD); // the control's own window fills it
        ASSERT_NE(control, nullptr);
        RECT inside = {};
        GetClientRect(control, &inside);
        EXPECT_EQ(inside.right, bounds.right - bounds.left);
        EXPECT_EQ(inside.bottom, bounds.bottom - bounds.top);
    }
}

TEST_F(Browser, ShowsThePageOnceTheTopDocumentIsCompleteAndHidesItOnANavigationError)
{
    std::unique_ptr<EmbeddedBrowser> page = loading();
    ASSERT_TRUE(page && page->control());
    IWebBrowser2* control = page->control();
    // Any other object stands for a sub-frame.
    ComPtr<IDispatch> subFrame = siteAs<IDispatch>(*page);

    fireDocumentComplete(control, subFrame.Get(), L"https://ads.example.com/");
    EXPECT_EQ(page->state(), State::loading);
    EXPECT_FALSE(visible(*page));
    fireDocumentComplete(control, control, L"https://inapp.pryxa.com/");
    EXPECT_EQ(page->state(), State::shown);
    EXPECT_TRUE(visible(*page));

    EXPECT_TRUE(fireNavigateError(control, subFrame.Get(), L"https://ads.example.com/", 404))
        << "no error page, not even in a frame";
    EXPECT_EQ(page->state(), State::shown);
    EXPECT_TRUE(fireNavigateError(control, control, L"https://inapp.pryxa.com/", INET_E_DOWNLOAD_FAILURE));
    EXPECT_EQ(page->state(), State::failed);
    EXPECT_FALSE(visible(*page));
    fireDocumentComplete(control, control, L"https://inapp.pryxa.com/");
    EXPECT_FALSE(visible(*page)) << "a failed navigation's document is not shown";

    page->navigate(silent.address()); // a new attempt starts hidden and can succeed
    EXPECT_EQ(page->state(), State::loading);
    fireDocumentComplete(control, control, L"https://inapp.pryxa.com/");
    EXPECT_TRUE(visible(*page));
}

TEST_F(Browser, GivesUpAfterTheTimeOutAndIgnoresALateDocument)
{
    std::unique_ptr<EmbeddedBrowser> page = loading(100);
    ASSERT_TRUE(page && page->control());
    EXPECT_TRUE(pumpUntil([&] { return page->state() == State::failed; }, 10000));
    fireDocumentComplete(page->control(), page->control(), L"https://inapp.pryxa.com/");
    EXPECT_EQ(page->state(), State::failed);
    EXPECT_FALSE(visible(*page));
}

// Real navigations, no events fired by hand: a missing resource and a port nobody listens
// on (as when offline) end hidden; the scheme's protocol is reached through the control.
TEST_F(Browser, RealNavigationsThatFailEndHiddenAndThePryxaSchemeIsReached)
{
    for (const ZString& address : {ZString(L"pryxa://res/missing.html"), closedAddress()}) {
        std::unique_ptr<EmbeddedBrowser> page = EmbeddedBrowser::create(parent());
        ASSERT_TRUE(page);
        page->navigate(address);
        EXPECT_TRUE(pumpUntil([&] { return page->state() == State::failed; }, 20000)) << address.toUtf8();
        EXPECT_FALSE(visible(*page));
    }
    std::unique_ptr<EmbeddedBrowser> page = EmbeddedBrowser::create(parent());
    ASSERT_TRUE(page);
    std::vector<std::wstring> asked;
    page->content().addSource([&](const ZString& name, browser::Content& served) {
        asked.push_back(name.c_str());
        const char html[] = "<html><body>bridge page</body></html>";
        served.bytes.assign(html, html + sizeof html - 1);
        return true;
    });
    page->navigate(L"pryxa://res/bridge.html");
    EXPECT_TRUE(pumpUntil([&] { return !asked.empty(); }, 10000));
    EXPECT_EQ(asked, std::vector<std::wstring>{L"bridge.html"});
}

TEST_F(Browser, NewWindowsNeverOpenInsideAndOnlyWebAddressesGoToTheDefaultBrowser)
{
    std::unique_ptr<EmbeddedBrowser> page = loading();
    ASSERT_TRUE(page && page->control());
    for (const wchar_t* address : {L"https://www.pryxa.com/offer", L"HTTP://example.com/", L"file:///c:/windows/notepad.exe",
                                   L"javascript:alert(1)", L"pryxa://res/page.html", L"mailto:a@example.com"})
        EXPECT_TRUE(fireNewWindow(page->control(), address)) << address;
    EXPECT_EQ(opened, (std::vector<std::wstring>{L"https://www.pryxa.com/offer", L"HTTP://example.com/"}));
    EXPECT_EQ(processWindows(), std::vector<HWND>{parent()});
}

// A page's window.external: what the site's document host hands out after each event.
TEST_F(Browser, GivesTheBridgeOnlyToInAppAndOwnPages)
{
    std::unique_ptr<EmbeddedBrowser> page = loading();
    ASSERT_TRUE(page && page->control());
    IWebBrowser2* control = page->control();
    ComPtr<IDocHostUIHandler> host = siteAs<IDocHostUIHandler>(*page);
    ComPtr<IDispatch> subFrame = siteAs<IDispatch>(*page);
    ASSERT_TRUE(host && subFrame);
    ComPtr<IDispatch> bridge = subFrame; // any object stands for the bridge
    page->setExternal(bridge);
    const auto external = [&] {
        ComPtr<IDispatch> given;
        host->GetExternal(&given);
        return given;
    };

    EXPECT_EQ(external().Get(), nullptr) << "no document yet";
    const struct {
        IDispatch* frame;
        const wchar_t* address;
        bool given;
    } steps[] = {
        {control, L"pryxa://res/page.html", true},
        {control, L"https://example.com/", false},
        {subFrame.Get(), L"https://inapp.pryxa.com/inapp/screenCapture/", false}, // a frame is not the page
        {control, L"https://inapp.pryxa.com/inapp/screenCapture/?name=x", true},
        {control, L"https://inapp.pryxa.com.example.com/", false},
    };
    for (const auto& step : steps) {
        fireNavigateComplete(control, step.frame, step.address);
        EXPECT_EQ(external().Get(), step.given ? bridge.Get() : nullptr) << step.address;
    }
    fireNavigateComplete(control, control, L"pryxa://res/page.html");
    fireNavigateError(control, control, L"pryxa://res/next.html", INET_E_RESOURCE_NOT_FOUND);
    EXPECT_EQ(external().Get(), nullptr) << "no document after an error";
    fireNavigateComplete(control, control, L"pryxa://res/page.html");
    page->setExternal(nullptr);
    EXPECT_EQ(external().Get(), nullptr);
}

TEST_F(Browser, AsksForNoBorderScrollBarsContextMenuPlugInsOrDialogs)
{
    std::unique_ptr<EmbeddedBrowser> page = loading();
    ASSERT_TRUE(page && page->control());
    ComPtr<IDocHostUIHandler> host = siteAs<IDocHostUIHandler>(*page);
    ComPtr<IDispatch> ambient = siteAs<IDispatch>(*page);
    ASSERT_TRUE(host && ambient);
    DOCHOSTUIINFO info = {};
    info.cbSize = sizeof info;
    ASSERT_EQ(host->GetHostInfo(&info), S_OK);
    const DWORD wanted = DOCHOSTUIFLAG_NO3DBORDER | DOCHOSTUIFLAG_NO3DOUTERBORDER | DOCHOSTUIFLAG_SCROLL_NO
                         | DOCHOSTUIFLAG_DISABLE_HELP_MENU;
    EXPECT_EQ(info.dwFlags & wanted, wanted);
    POINT where = {5, 5};
    EXPECT_EQ(host->ShowContextMenu(CONTEXT_MENU_DEFAULT, &where, nullptr, nullptr), S_OK) << "handled: no menu";

    const auto askAmbient = [&](DISPID property) {
        VARIANT value;
        VariantInit(&value);
        DISPPARAMS none = {};
        const HRESULT status = ambient->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                               &value, nullptr, nullptr);
        return std::make_pair(status, value);
    };
    const auto download = askAmbient(DISPID_AMBIENT_DLCONTROL);
    ASSERT_EQ(download.first, S_OK);
    const long flags = V_I4(&download.second);
    EXPECT_TRUE(flags & DLCTL_SILENT);
    EXPECT_TRUE((flags & DLCTL_NO_RUNACTIVEXCTLS) && (flags & DLCTL_NO_JAVA));
    EXPECT_FALSE(flags & DLCTL_NO_SCRIPTS) << "the page's scripts run";
    const auto silentAsked = askAmbient(DISPID_AMBIENT_SILENT);
    EXPECT_TRUE(silentAsked.first == S_OK && V_BOOL(&silentAsked.second) == VARIANT_TRUE);
    EXPECT_EQ(askAmbient(DISPID_AMBIENT_USERAGENT).first, DISP_E_MEMBERNOTFOUND) << "the control's default";
}

TEST_F(Browser, LetsGoOfEverythingWhenItsParentIsDestroyedFirst)
{
    std::unique_ptr<EmbeddedBrowser> page = loading();
    ASSERT_TRUE(page && page->control());
    ComPtr<IDocHostUIHandler> host = siteAs<IDocHostUIHandler>(*page);
    fireNavigateComplete(page->control(), page->control(), L"pryxa://res/page.html");
    page->setExternal(siteAs<IDispatch>(*page));
    ASSERT_TRUE(host);

    DestroyWindow(parent());
    EXPECT_EQ(page->control(), nullptr);
    EXPECT_EQ(page->state(), State::failed);
    ComPtr<IDispatch> given;
    EXPECT_EQ(host->GetExternal(&given), S_FALSE) << "a site held by someone else reaches nothing";
    EXPECT_EQ(given.Get(), nullptr);
    host.Reset();
    EXPECT_EQ(browser::liveComObjects(), 0);
    EXPECT_TRUE(FAILED(bindAsync(L"pryxa://res/page.html").result)) << "the scheme has gone with the control";
    page.reset();
}

TEST_F(Browser, WithoutTheControlItStaysHiddenAndHoldsNothing)
{
    const CLSID kept = browser::controlClass;
    browser::controlClass = CLSID_NULL; // as on a system without the control
    std::unique_ptr<EmbeddedBrowser> page = EmbeddedBrowser::create(parent());
    ASSERT_TRUE(page);
    page->navigate(L"pryxa://res/page.html");
    EXPECT_TRUE(pumpUntil([&] { return page->state() == State::failed; }, 10000));
    browser::controlClass = kept;
    EXPECT_EQ(page->control(), nullptr);
    EXPECT_FALSE(visible(*page));
    EXPECT_EQ(browser::liveComObjects(), 0) << "no site or scheme kept for a control that is not there";
    page->navigate(L"pryxa://res/page.html");
    EXPECT_EQ(page->state(), State::failed) << "no second attempt";
}

} // namespace
