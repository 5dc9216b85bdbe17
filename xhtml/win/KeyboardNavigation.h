#pragma once
// The keyboard of a markup frame, as users know it from dialog boxes, without a dialog
// manager in the message loop: Tab and Shift+Tab move the focus over the frame's controls in
// document order (wrapping around), Enter presses the default button, Escape closes the
// frame. Each control is subclassed so that it sees its keys first; a key that the control
// asks for itself (WM_GETDLGCODE: an open drop-down list wants Enter and Escape, a text area
// every key) stays with the control.
//
// The default button is the first push button of the document; while another push button
// has the focus, that one is the default. The control that had the focus last gets it back
// when the frame gets the focus again (after a deactivation); the first control when none had.

#include "base/win/BaseWindow.h"

#include <memory>
#include <vector>

namespace xhtml {

class KeyboardNavigation {
public:
    // `frame` is the window whose controls these are; it must outlive this object.
    explicit KeyboardNavigation(BaseWindow& frame);
    ~KeyboardNavigation();
    KeyboardNavigation(const KeyboardNavigation&) = delete;
    KeyboardNavigation& operator=(const KeyboardNavigation&) = delete;

    // Takes over the keys of these control windows (children of the frame, in document
    // order) instead of the earlier ones, and shows the default button. An active frame puts
    // the focus on its first control, or on itself without one.
    void watch(const std::vector<HWND>& controls);

    // A key pressed in `from` (the frame or one of its controls), which answered `dialogCode`
    // for it. True when the key was taken.
    bool onKeyDown(HWND from, WPARAM key, UINT dialogCode);
    // Moves the focus from `from` to the next (or previous) control that takes it.
    void moveFocus(HWND from, bool backwards);
    // Gives the focus to this control and shows it there.
    void focus(HWND control);
    // The frame got the focus: hand it to the control that had it last, else the first one.
    // False when no control takes it.
    bool restoreFocus();

private:
    class ControlKeys;

    void onFocus(HWND control);
    HWND nextStop(HWND from, bool backwards) const;
    int indexOf(HWND control) const;
    HWND shownDefault(HWND focused) const;
    void showDefault(HWND focused);
    void pressDefault(HWND from);

    BaseWindow& frame_;
    std::vector<std::unique_ptr<ControlKeys>> controls_; // document order
    HWND defaultButton_ = nullptr;
    HWND lastFocused_ = nullptr;
};

} // namespace xhtml
