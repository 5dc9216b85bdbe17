#pragma once
// A web page in a child window: the WebBrowser control, hosted by a BrowserSite, showing one
// address. The capture dialog shows the vendor's in-app page over its bottom bar with it.
//
// The window shows the page only once the page's document is complete. Until then, and
// whenever no page can be shown (no control or HTML engine, a navigation error, offline, no
// document within the time-out), it stays hidden, so that what lies under it is what the
// user sees; nothing is reported. The control itself is made by a timer after create(),
// that is after the parent has painted, so the parent appears as fast as without it.
//
// While the control lives, the "pryxa" scheme is registered for the process and serves this
// module's resources and what content()'s sources add. The script bridge's object becomes
// window.external for pages that mayUseBridge() admits (the in-app endpoint and
// "pryxa://res/" pages), judged by the address of the top frame's document as the control
// reported it; other pages, and all before the first document, get no external object. A page's new windows never open
// in the control: web addresses go to the user's default browser, others nowhere.
//
// Lives on one thread with OLE initialised (OleInitialize) for its whole life. Everything of
// the control (events, client site, the control, the scheme, the external object) is let go
// when the window is destroyed (with its parent) or the object goes, whichever comes first.

#include "base/win/BaseWindow.h"
#include "browser/BrowserSite.h"
#include "browser/ProtocolContent.h"
#include "browser/ProtocolRegistration.h"
#include "screencapture/ui/InAppPage.h"

#include <exdisp.h>
#include <wrl/client.h>

#include <memory>

namespace browser {

// The class of the hosted control: the WebBrowser control, unless a test names one that is
// not there.
extern CLSID controlClass;

class EmbeddedBrowser final : public screenCapture::InAppPage, private BaseWindow, private SiteOwner {
public:
    static constexpr const wchar_t* className = L"PryxaEmbeddedBrowser";
    // How long a page may take to its complete document before it is given up.
    static constexpr UINT kPageTimeoutMs = 8000;

    enum class State {
        idle,    // nothing asked for yet
        loading, // navigating, hidden
        shown,   // the page's document is complete and visible
        failed,  // no page can be shown: hidden, and stays so until the next navigate()
    };

    // A hidden child window of `parent`; null when the window cannot be made.
    static std::unique_ptr<EmbeddedBrowser> create(HWND parent, UINT pageTimeoutMs = kPageTimeoutMs);
    ~EmbeddedBrowser() override;

    // In the parent's client coordinates.
    void setBounds(const RECT& bounds) override;
    // Starts loading the address, hidden; the time-out starts now.
    void navigate(const ZString& address) override;
    // The page asked to go (the bridge's close()): hidden until the next navigate().
    void dismiss() { giveUp(); }

    // The script bridge's object (null: none); see the header comment for who gets it.
    void setExternal(Microsoft::WRL::ComPtr<IDispatch> external) { external_ = std::move(external); }
    // What "pryxa://res/" serves besides the module's resources: the bridge adds sources here.
    ProtocolContent& content() { return *content_; }

    HWND window() const { return handle(); }
    State state() const { return state_; }
    // The control once it has been made and until it is let go; null otherwise.
    IWebBrowser2* control() const { return browser_.Get(); }

private:
    explicit EmbeddedBrowser(UINT pageTimeoutMs);

    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onTimer(UINT_PTR timer);
    bool makeControl();
    void startNavigation() noexcept;
    void showPage();
    void giveUp();
    void closeControl();
    void fitControl();
    bool isTopFrame(IDispatch* frame) const;

    // SiteOwner
    HWND hostWindow() const override { return handle(); }
    Microsoft::WRL::ComPtr<IDispatch> externalForPage() override;
    void navigateComplete(IDispatch* frame, const ZString& address) override;
    void documentComplete(IDispatch* frame, const ZString& address) override;
    bool navigateError(IDispatch* frame, const ZString& address, long status) override;
    bool newWindow(const ZString& address) override;

    const UINT pageTimeoutMs_;
    State state_ = State::idle;
    bool controlTried_ = false;
    ZString address_;     // asked for
    ZString pageAddress_; // of the top frame's document, as the control reported it
    std::shared_ptr<ProtocolContent> content_;
    Microsoft::WRL::ComPtr<IDispatch> external_;
    std::unique_ptr<ProtocolRegistration> scheme_; // outlives the control
    Microsoft::WRL::ComPtr<BrowserSite> site_;
    Microsoft::WRL::ComPtr<IOleObject> object_;
    Microsoft::WRL::ComPtr<IWebBrowser2> browser_;
    Microsoft::WRL::ComPtr<IConnectionPoint> events_;
    DWORD eventsCookie_ = 0;
};

} // namespace browser
