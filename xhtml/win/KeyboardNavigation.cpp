#include "xhtml/win/KeyboardNavigation.h"

#include <utility>

namespace xhtml {

namespace {

enum class KeyAction { none, nextControl, previousControl, pressDefault, close };

// What `key` (a virtual-key code) means in a frame whose focused window answers `dialogCode`
// to WM_GETDLGCODE for that key.
KeyAction keyAction(WPARAM key, UINT dialogCode, bool shift)
{
    if (dialogCode & DLGC_WANTMESSAGE)
        return KeyAction::none;
    switch (key) {
    case VK_TAB:
        if (dialogCode & DLGC_WANTTAB)
            return KeyAction::none;
        return shift ? KeyAction::previousControl : KeyAction::nextControl;
    case VK_RETURN:
        return KeyAction::pressDefault;
    case VK_ESCAPE:
        return KeyAction::close;
    default:
        return KeyAction::none;
    }
}

bool shiftDown()
{
    return GetKeyState(VK_SHIFT) < 0;
}

bool isPushButton(HWND window)
{
    return window && (SendMessageW(window, WM_GETDLGCODE, 0, 0) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
}

bool takesFocus(HWND window)
{
    return (GetWindowLongW(window, GWL_STYLE) & WS_TABSTOP) && IsWindowVisible(window) && IsWindowEnabled(window);
}

void setDefaultLook(HWND button, bool isDefault)
{
    const DWORD style = static_cast<DWORD>(GetWindowLongW(button, GWL_STYLE));
    const DWORD type = isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
    if ((style & BS_TYPEMASK) != type)
        SendMessageW(button, BM_SETSTYLE, (style & 0xFFFF & ~BS_TYPEMASK) | type, TRUE);
}

} // namespace

// Subclasses one control: its keys go to the navigation first, and it reports getting the
// focus. The window belongs to NativeControls; this object only lets go of it.
class KeyboardNavigation::ControlKeys : public BaseWindow {
public:
    ControlKeys(KeyboardNavigation& owner, HWND control) : owner_(owner) { attach(control); }
    ~ControlKeys() override { detach(); }

    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        return keptProc(message, wParam, lParam);
    }

protected:
    // A handler that lets a message through returns straight after the control's own
    // procedure: that may have destroyed this object (a button listener replacing the markup).
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        switch (message) {
        case WM_SETFOCUS:
            owner_.onFocus(handle());
            break;
        case WM_KEYDOWN:
            swallowChar_ = 0;
            if (owner_.onKeyDown(handle(), wParam, dialogCode(wParam, lParam))) {
                // TranslateMessage has already posted this key's character (VK_TAB, VK_RETURN
                // and VK_ESCAPE equal their characters); a text field would beep at it.
                swallowChar_ = wParam;
                return 0;
            }
            break;
        case WM_CHAR:
            if (swallowChar_ && wParam == std::exchange(swallowChar_, 0))
                return 0;
            break;
        default:
            break;
        }
        return defaultProc(message, wParam, lParam);
    }

private:
    UINT dialogCode(WPARAM key, LPARAM lParam)
    {
        MSG message = {};
        message.hwnd = handle();
        message.message = WM_KEYDOWN;
        message.wParam = key;
        message.lParam = lParam;
        return static_cast<UINT>(sendMessage(WM_GETDLGCODE, key, reinterpret_cast<LPARAM>(&message)));
    }

    KeyboardNavigation& owner_;
    WPARAM swallowChar_ = 0;
};

KeyboardNavigation::KeyboardNavigation(BaseWindow& frame) : frame_(frame) {}

KeyboardNavigation::~KeyboardNavigation() = default;

void KeyboardNavigation::watch(const std::vector<HWND>& controls)
{
    controls_.clear();
    defaultButton_ = lastFocused_ = nullptr;
    for (HWND control : controls) {
        controls_.push_back(std::make_unique<ControlKeys>(*this, control));
        if (!defaultButton_ && isPushButton(control))
            defaultButton_ = control;
    }
    showDefault(GetFocus());
    // Without a control to take it, the frame takes the focus itself: a key pressed while
    // no window has the focus would come as a system key.
    if (frame_.handle() && GetActiveWindow() == frame_.handle() && !restoreFocus())
        frame_.setFocus();
}

bool KeyboardNavigation::onKeyDown(HWND from, WPARAM key, UINT dialogCode)
{
    const KeyAction action = keyAction(key, dialogCode, shiftDown());
    switch (action) {
    case KeyAction::nextControl:
    case KeyAction::previousControl:
        moveFocus(from, action == KeyAction::previousControl);
        return true;
    case KeyAction::pressDefault:
        pressDefault(from);
        return true;
    case KeyAction::close:
        // Posted, as the close box's message comes: the frame closes after this key is done.
        frame_.postMessage(WM_CLOSE);
        return true;
    default:
        return false;
    }
}

int KeyboardNavigation::indexOf(HWND control) const
{
    for (size_t i = 0; i < controls_.size(); ++i) {
        if (controls_[i]->handle() == control)
            return static_cast<int>(i);
    }
    return -1;
}

// From a window that is none of the controls (the frame itself), forwards starts at the
// first control and backwards at the last.
HWND KeyboardNavigation::nextStop(HWND from, bool backwards) const
{
    const int count = static_cast<int>(controls_.size());
    const int found = indexOf(from);
    const int at = found >= 0 ? found : backwards ? count : -1;
    for (int step = 1; step <= count; ++step) {
        const int i = ((at + (backwards ? -step : step)) % count + count) % count;
        HWND candidate = controls_[static_cast<size_t>(i)]->handle();
        if (takesFocus(candidate))
            return candidate;
    }
    return nullptr;
}

void KeyboardNavigation::moveFocus(HWND from, bool backwards)
{
    if (HWND next = nextStop(from, backwards))
        focus(next);
}

void KeyboardNavigation::focus(HWND control)
{
    // A frame that was last used with the mouse may hide focus rectangles.
    frame_.sendMessage(WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS));
    SetFocus(control);
}

bool KeyboardNavigation::restoreFocus()
{
    HWND target = indexOf(lastFocused_) >= 0 && takesFocus(lastFocused_) ? lastFocused_ : nextStop(nullptr, false);
    if (!target)
        return false;
    focus(target);
    return true;
}

void KeyboardNavigation::onFocus(HWND control)
{
    lastFocused_ = control;
    showDefault(control);
}

HWND KeyboardNavigation::shownDefault(HWND focused) const
{
    return indexOf(focused) >= 0 && isPushButton(focused) ? focused : defaultButton_;
}

void KeyboardNavigation::showDefault(HWND focused)
{
    const HWND shown = shownDefault(focused);
    for (const auto& control : controls_) {
        if (isPushButton(control->handle()))
            setDefaultLook(control->handle(), control->handle() == shown);
    }
}

// As a click does: the frame hears BN_CLICKED from the button, after this key is done.
void KeyboardNavigation::pressDefault(HWND from)
{
    const HWND button = shownDefault(from);
    if (!button || !IsWindowVisible(button) || !IsWindowEnabled(button))
        return;
    frame_.postMessage(WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

} // namespace xhtml
