#pragma once
// GDI+ for the length of one capture: started on construction, shut down on destruction.

#include "screencapture/Gdiplus.h"

namespace screenCapture {

class GdiplusSession {
public:
    GdiplusSession()
    {
        // Version 1, no debug callback, background thread and external codecs not suppressed.
        // A failed start is not checked: the grab then finds no image and says so.
        Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&token_, &input, nullptr);
    }
    ~GdiplusSession() { Gdiplus::GdiplusShutdown(token_); }
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;

private:
    ULONG_PTR token_ = 0;
};

} // namespace screenCapture
