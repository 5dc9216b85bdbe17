#pragma once
// What the capture tests share.

#include "base/win/GdiplusSession.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/TestPixels.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

// Scratch settings, temp and language folders, and GDI+.
class CaptureTest : public testing::Test {
protected:
    ScratchEnvironment env;
    GdiplusSession gdiplus;
};

PixelGrid imagePixels(Gdiplus::Bitmap& image);
PixelGrid pngFilePixels(const ZString& path);

// Full paths of the files in `folder` whose names start with `prefix`.
std::vector<ZString> filesIn(const ZString& folder, const wchar_t* prefix);

std::vector<UINT> clipboardFormats(); // in enumeration order
// Replace the clipboard's content; the clipboard takes the bitmap.
bool putBitmapOnClipboard(HBITMAP bitmap);
bool putTextOnClipboard(const wchar_t* text);

// A 32-bit DIB section drawn by the pattern (0xAARRGGBB).
HBITMAP createDibSection(int width, int height, const PixelPattern& pattern);

// Shows a frameless window with this pattern over everything, waiting until it is painted.
std::unique_ptr<TestWindow> showPattern(const RECT& area, PixelPattern pattern, DWORD style = WS_POPUP,
                                        const std::wstring& title = L"Pryxa test window");

// Makes `command` the "edit" verb of .png files for the current user while it lives.
class PngEditVerb {
public:
    explicit PngEditVerb(const ZString& command);
    ~PngEditVerb();
    PngEditVerb(const PngEditVerb&) = delete;
    PngEditVerb& operator=(const PngEditVerb&) = delete;
};

uint32_t gradientPattern(int x, int y); // pixels easy to tell apart

// The work area of `monitor` is 40 pixels shorter than the monitor while this lives, as if
// a task bar were docked at its bottom, so that the work area and the monitor can be told apart.
class ReservedTaskBar {
public:
    explicit ReservedTaskBar(const RECT& monitor);
    ~ReservedTaskBar();
    ReservedTaskBar(const ReservedTaskBar&) = delete;
    ReservedTaskBar& operator=(const ReservedTaskBar&) = delete;

    RECT workArea() const { return workArea_; }

private:
    RECT previous_ = {};
    RECT workArea_ = {};
};
