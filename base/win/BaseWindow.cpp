#include "base/win/BaseWindow.h"

#include "base/win/IMessageFilter.h"
#include "base/win/IMessageListener.h"

#include <vector>

// One activation of the object on the stack (a message being handled, a modal loop). The
// object's destructor clears `window` in every watch, so the activation knows not to touch
// the object again.
struct BaseWindow::LifeWatch {
    explicit LifeWatch(BaseWindow& watched) : window(&watched), outer(watched.watches_) { watched.watches_ = this; }
    ~LifeWatch()
    {
        if (window)
            window->watches_ = outer;
    }
    LifeWatch(const LifeWatch&) = delete;
    LifeWatch& operator=(const LifeWatch&) = delete;

    bool gone() const { return window == nullptr; }

    BaseWindow* window;
    LifeWatch* outer;
};

// One message of the object being handled. When the outermost one returns after the window
// got WM_NCDESTROY, the handle is forgotten: nested handlers that are still running keep
// the handle they started with, as they expect.
class BaseWindow::Dispatch {
public:
    explicit Dispatch(BaseWindow& window) : watch_(window) { ++window.dispatchDepth_; }
    ~Dispatch()
    {
        if (watch_.gone())
            return;
        BaseWindow& window = *watch_.window;
        if (--window.dispatchDepth_ == 0 && window.windowGone_) {
            window.windowGone_ = false;
            window.handle_ = nullptr;
        }
    }
    Dispatch(const Dispatch&) = delete;
    Dispatch& operator=(const Dispatch&) = delete;

    const LifeWatch& watch() const { return watch_; }

private:
    LifeWatch watch_;
};

namespace {

constexpr UINT kModalTickMs = 100;

// Local to makeModal: tells the loop that the window was destroyed.
class DestroyListener : public BaseWindow::IMessageListener {
public:
    void onMessage(BaseWindow&, UINT message, WPARAM, LPARAM) override
    {
        if (message == WM_DESTROY)
            destroyed = true;
    }

    bool destroyed = false;
};

BaseWindow* boundObject(HWND window)
{
    return reinterpret_cast<BaseWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

} // namespace

BaseWindow::~BaseWindow()
{
    for (LifeWatch* watch = watches_; watch; watch = watch->outer)
        watch->window = nullptr;
    if (handle_ && boundHere()) {
        // Unbound first, so that the messages of the destruction reach no half-destroyed object.
        unbind();
        DestroyWindow(handle_);
    }
}

bool BaseWindow::registerClass(WNDCLASSEXW windowClass)
{
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = &BaseWindow::windowProc;
    WNDCLASSEXW existing = {};
    existing.cbSize = sizeof existing;
    if (GetClassInfoExW(windowClass.hInstance, windowClass.lpszClassName, &existing)) {
        if (existing.lpfnWndProc == &BaseWindow::windowProc)
            return true;
        UnregisterClassW(windowClass.lpszClassName, windowClass.hInstance);
    }
    return RegisterClassExW(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

LRESULT CALLBACK BaseWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return bindOnCreate(window, lParam);
    BaseWindow* object = boundObject(window);
    if (!object || !object->handle_)
        return DefWindowProcW(window, message, wParam, lParam);
    return object->dispatch(window, message, wParam, lParam);
}

// The object is the creation parameter; without one, nothing is bound and creation goes on.
LRESULT BaseWindow::bindOnCreate(HWND window, LPARAM createStruct)
{
    auto* object = static_cast<BaseWindow*>(reinterpret_cast<const CREATESTRUCTW*>(createStruct)->lpCreateParams);
    if (!object)
        return 0;
    object->attach(window);
    Dispatch dispatch(*object);
    return object->handleMessage(WM_CREATE, 0, createStruct);
}

LRESULT BaseWindow::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    Dispatch dispatch(*this);
    notifyListeners(message, wParam, lParam, dispatch.watch());
    if (dispatch.watch().gone())
        return IsWindow(window) ? DefWindowProcW(window, message, wParam, lParam) : 0;
    const LRESULT result =
        filter_ ? filter_->filterMessage(*this, message, wParam, lParam) : handleMessage(message, wParam, lParam);
    if (message == WM_NCDESTROY && !dispatch.watch().gone() && boundHere()) {
        unbind();
        windowGone_ = true;
    }
    return result;
}

// Several listeners are called from a copy of the list, so that any of them may add or
// remove listeners meanwhile.
void BaseWindow::notifyListeners(UINT message, WPARAM wParam, LPARAM lParam, const LifeWatch& watch)
{
    if (listeners_.empty())
        return;
    if (listeners_.size() == 1) {
        listeners_.front()->onMessage(*this, message, wParam, lParam);
        return;
    }
    const std::vector<IMessageListener*> listeners(listeners_.begin(), listeners_.end());
    for (IMessageListener* listener : listeners) {
        listener->onMessage(*this, message, wParam, lParam);
        if (watch.gone())
            return;
    }
}

bool BaseWindow::boundHere() const
{
    return handle_ && boundObject(handle_) == this;
}

// Puts the kept procedure back only if ours is still installed: a procedure installed on
// top of ours since then still calls ours, which without the object hands on to DefWindowProcW.
void BaseWindow::unbind()
{
    if (keptProc_ && GetWindowLongPtrW(handle_, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(&windowProc))
        SetWindowLongPtrW(handle_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(keptProc_));
    SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
    keptProc_ = nullptr;
}

void BaseWindow::setHandle(HWND window)
{
    if (isAttached())
        detach();
    handle_ = window;
}

bool BaseWindow::create(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width,
                        int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter)
{
    HWND window = CreateWindowExW(exStyle, className, title, style, x, y, width, height, parent, menu, instance,
                                  parameter);
    if (!window)
        return false;
    attach(window); // nothing to do if WM_CREATE bound it already
    return true;
}

bool BaseWindow::isAttached() const
{
    return boundHere();
}

void BaseWindow::attach(HWND window, IMessageFilter* filter)
{
    attach(window);
    setMessageFilter(filter);
}

void BaseWindow::attach(HWND window)
{
    if (isAttached()) {
        if (handle_ == window)
            return;
        detach();
    }
    handle_ = window;
    windowGone_ = false;
    if (!window)
        return;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    keptProc_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&windowProc)));
}

void BaseWindow::reattach()
{
    if (handle_)
        attach(handle_);
}

void BaseWindow::detach()
{
    if (isAttached())
        unbind();
}

void BaseWindow::removeMessageFilter(IMessageFilter* filter)
{
    if (filter_ == filter)
        filter_ = nullptr;
}

void BaseWindow::makeModal()
{
    if (style() & WS_CHILD)
        return;
    if (!isAttached())
        reattach();
    const HWND ownerWindow = parent();
    // EnableWindow answers whether the window was disabled before.
    const bool ownerWasEnabled = ownerWindow && !EnableWindow(ownerWindow, FALSE);
    DestroyListener destroyListener;
    addMessageListener(&destroyListener);
    // Makes GetMessageW return at least this often, so that the end conditions are looked at
    // even when no message comes.
    const UINT_PTR timer = SetTimer(nullptr, 0, kModalTickMs, nullptr);
    LifeWatch watch(*this);
    runModalLoop(destroyListener.destroyed, timer, watch);
    KillTimer(nullptr, timer);
    if (!watch.gone())
        removeMessageListener(&destroyListener);
    if (ownerWindow) {
        if (ownerWasEnabled)
            EnableWindow(ownerWindow, TRUE);
        BringWindowToTop(ownerWindow);
    }
}

void BaseWindow::runModalLoop(const bool& destroyed, UINT_PTR timer, const LifeWatch& watch)
{
    modalEnd_ = false;
    MSG message;
    while (!watch.gone() && !destroyed && !modalEnd_ && isWindow() && GetMessageW(&message, nullptr, 0, 0)) {
        if (message.message == WM_TIMER && message.hwnd == nullptr && message.wParam == timer)
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

bool BaseWindow::setClientSize(int width, int height)
{
    RECT outer = {0, 0, width, height};
    AdjustWindowRectEx(&outer, style(), GetMenu(handle_) != nullptr, exStyle());
    return setPosition(nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void BaseWindow::centerOnDesktop()
{
    RECT work = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const RECT own = windowRect();
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    move(work.left + (work.right - work.left - width) / 2, work.top + (work.bottom - work.top - height) / 2, width,
         height);
}

void BaseWindow::centerOnParent()
{
    const HWND around = parent();
    if (!around) {
        centerOnDesktop();
        return;
    }
    RECT outer = {};
    GetWindowRect(around, &outer);
    const RECT own = windowRect();
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    POINT topLeft = {outer.left + (outer.right - outer.left - width) / 2,
                     outer.top + (outer.bottom - outer.top - height) / 2};
    // A child is placed in its parent's client coordinates.
    if (style() & WS_CHILD)
        ScreenToClient(around, &topLeft);
    move(topLeft.x, topLeft.y, width, height);
}

RECT BaseWindow::windowRect() const
{
    RECT rect = {};
    GetWindowRect(handle_, &rect);
    return rect;
}

RECT BaseWindow::clientRect() const
{
    RECT rect = {};
    GetClientRect(handle_, &rect);
    return rect;
}

POINT BaseWindow::cursorPosition() const
{
    POINT point = {};
    GetCursorPos(&point);
    screenToClient(point);
    return point;
}
