#include "browser/EmbeddedBrowser.h"

#include "base/win/ThisModule.h"
#include "browser/DefaultBrowser.h"
#include "browser/InAppAddress.h"
#include "browser/PageOrigin.h"

namespace browser {

using Microsoft::WRL::ComPtr;

namespace {

// Makes the control once the parent has painted: timers come after paint messages.
constexpr UINT_PTR kMakeControlTimer = 1;
constexpr UINT_PTR kPageTimeoutTimer = 2;

bool registerHostClass(HINSTANCE instance)
{
    WNDCLASSEXW windowClass = {};
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = EmbeddedBrowser::className;
    return BaseWindow::registerClass(windowClass);
}

} // namespace

CLSID controlClass = __uuidof(WebBrowser);

EmbeddedBrowser::EmbeddedBrowser(UINT pageTimeoutMs)
    : pageTimeoutMs_(pageTimeoutMs), content_(std::make_shared<ProtocolContent>(thisModule()))
{
}

std::unique_ptr<EmbeddedBrowser> EmbeddedBrowser::create(HWND parent, UINT pageTimeoutMs)
{
    if (!parent || !registerHostClass(thisModule()))
        return nullptr;
    std::unique_ptr<EmbeddedBrowser> browser(new EmbeddedBrowser(pageTimeoutMs));
    BaseWindow& window = *browser;
    if (!window.create(0, className, L"", WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr,
                       thisModule(), &window))
        return nullptr;
    return browser;
}

EmbeddedBrowser::~EmbeddedBrowser()
{
    closeControl();
}

void EmbeddedBrowser::setBounds(const RECT& bounds)
{
    move(bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top);
}

void EmbeddedBrowser::navigate(const ZString& address)
{
    address_ = address;
    state_ = State::loading;
    show(SW_HIDE);
    setTimer(kPageTimeoutTimer, pageTimeoutMs_);
    if (browser_)
        startNavigation();
    else if (!controlTried_)
        setTimer(kMakeControlTimer, USER_TIMER_MINIMUM);
    else
        giveUp();
}

LRESULT EmbeddedBrowser::handleMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_TIMER:
        onTimer(wParam);
        return 0;
    case WM_SIZE:
        fitControl();
        return 0;
    case WM_DESTROY:
        closeControl();
        return 0;
    default:
        return BaseWindow::handleMessage(message, wParam, lParam);
    }
}

void EmbeddedBrowser::onTimer(UINT_PTR timer)
{
    killTimer(timer);
    if (timer == kPageTimeoutTimer) {
        if (state_ == State::loading) {
            if (browser_)
                browser_->Stop();
            giveUp();
        }
        return;
    }
    if (timer != kMakeControlTimer || controlTried_)
        return;
    controlTried_ = true;
    bool made = false;
    try { // nothing may leave a window procedure
        made = makeControl();
    } catch (...) {
    }
    if (!made) {
        closeControl();
        giveUp();
    } else if (state_ == State::loading) {
        startNavigation();
    }
}

bool EmbeddedBrowser::makeControl()
{
    scheme_ = std::make_unique<ProtocolRegistration>(content_);
    site_ = makeComObject<BrowserSite>(static_cast<SiteOwner&>(*this));
    if (FAILED(CoCreateInstance(controlClass, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object_)))
        || FAILED(object_->SetClientSite(site_.Get())))
        return false;
    RECT area = clientRect();
    ComPtr<IConnectionPointContainer> points;
    if (FAILED(object_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site_.Get(), 0, handle(), &area))
        || FAILED(object_.As(&browser_)) || FAILED(object_.As(&points))
        || FAILED(points->FindConnectionPoint(__uuidof(DWebBrowserEvents2), &events_))
        || FAILED(events_->Advise(static_cast<IDispatch*>(site_.Get()), &eventsCookie_)))
        return false;
    browser_->put_Silent(VARIANT_TRUE);
    browser_->put_RegisterAsDropTarget(VARIANT_FALSE);
    return true;
}

void EmbeddedBrowser::startNavigation() noexcept
{
    OwnedBstr address(address_.c_str());
    VARIANT none;
    VariantInit(&none);
    if (!address.get() || FAILED(browser_->Navigate(address.get(), &none, &none, &none, &none)))
        giveUp();
}

void EmbeddedBrowser::showPage()
{
    state_ = State::shown;
    killTimer(kPageTimeoutTimer);
    setPosition(HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void EmbeddedBrowser::giveUp()
{
    state_ = State::failed;
    killTimer(kPageTimeoutTimer);
    show(SW_HIDE);
}

void EmbeddedBrowser::closeControl()
{
    if (handle()) {
        killTimer(kMakeControlTimer);
        killTimer(kPageTimeoutTimer);
    }
    if (events_ && eventsCookie_)
        events_->Unadvise(eventsCookie_);
    events_.Reset();
    eventsCookie_ = 0;
    if (browser_)
        browser_->Stop();
    browser_.Reset();
    if (object_) {
        ComPtr<IOleInPlaceObject> inPlace;
        if (SUCCEEDED(object_.As(&inPlace)))
            inPlace->InPlaceDeactivate();
        object_->Close(OLECLOSE_NOSAVE);
        object_->SetClientSite(nullptr);
        object_.Reset();
    }
    if (site_)
        site_->detach();
    site_.Reset();
    scheme_.reset();
    external_.Reset();
    controlTried_ = true; // nothing is made again for a closing window
    if (state_ != State::idle)
        state_ = State::failed;
}

void EmbeddedBrowser::fitControl()
{
    ComPtr<IOleInPlaceObject> inPlace;
    if (!object_ || FAILED(object_.As(&inPlace)))
        return;
    RECT area = clientRect();
    inPlace->SetObjectRects(&area, &area);
}

bool EmbeddedBrowser::isTopFrame(IDispatch* frame) const
{
    ComPtr<IUnknown> frameIdentity, controlIdentity;
    return frame && browser_ && SUCCEEDED(frame->QueryInterface(IID_PPV_ARGS(&frameIdentity)))
           && SUCCEEDED(browser_.As(&controlIdentity)) && frameIdentity.Get() == controlIdentity.Get();
}

ComPtr<IDispatch> EmbeddedBrowser::externalForPage()
{
    return mayUseBridge(pageAddress_, inAppEndpoint()) ? external_ : nullptr;
}

void EmbeddedBrowser::navigateComplete(IDispatch* frame, const ZString& address)
{
    if (isTopFrame(frame))
        pageAddress_ = address;
}

void EmbeddedBrowser::documentComplete(IDispatch* frame, const ZString&)
{
    if (state_ == State::loading && isTopFrame(frame))
        showPage();
}

bool EmbeddedBrowser::navigateError(IDispatch* frame, const ZString&, long)
{
    if (isTopFrame(frame)) {
        pageAddress_ = ZString();
        if (state_ != State::failed)
            giveUp();
    }
    return true; // never the control's own error page
}

bool EmbeddedBrowser::newWindow(const ZString& address)
{
    if (isWebAddress(address))
        openInDefaultBrowser(address);
    return true;
}

} // namespace browser
