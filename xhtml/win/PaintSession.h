#pragma once
// BeginPaint and EndPaint as one owner: the paint DC of one WM_PAINT.

#include <windows.h>

namespace xhtml {

class PaintSession {
public:
    explicit PaintSession(HWND window) : window_(window), dc_(BeginPaint(window, &paint_)) {}
    ~PaintSession() { EndPaint(window_, &paint_); }
    PaintSession(const PaintSession&) = delete;
    PaintSession& operator=(const PaintSession&) = delete;

    HDC dc() const { return dc_; }
    const RECT& area() const { return paint_.rcPaint; }

private:
    HWND window_;
    PAINTSTRUCT paint_ = {};
    HDC dc_;
};

} // namespace xhtml
