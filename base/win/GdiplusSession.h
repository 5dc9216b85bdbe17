#pragma once
// GDI+ for the length of one task (a capture, a dialog with images): started on
// construction, shut down on destruction. Whatever holds GDI+ objects must go before it.

#include <windows.h>
#include <objidl.h>

#include <gdiplus.h>

class GdiplusSession {
public:
    GdiplusSession()
    {
        // Version 1, no debug callback, background thread and external codecs not suppressed.
        // A failed start is not checked: GDI+ calls then fail, and their callers say so.
        Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&token_, &input, nullptr);
    }
    ~GdiplusSession() { Gdiplus::GdiplusShutdown(token_); }
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;

private:
    ULONG_PTR token_ = 0;
};
