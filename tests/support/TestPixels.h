#pragma once
// Windows with known pixel content, and reading pixels back from bitmaps and the screen.

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// Pixels as 0x00RRGGBB, rows from the top.
struct PixelGrid {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;

    uint32_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};

inline uint32_t rgb(int r, int g, int b)
{
    return (static_cast<uint32_t>(r) << 16) | (static_cast<uint32_t>(g) << 8) | static_cast<uint32_t>(b);
}

// Empty on failure.
PixelGrid readBitmapPixels(HBITMAP bitmap);
// `area` in screen coordinates.
PixelGrid readScreenPixels(const RECT& area);

using PixelPattern = std::function<uint32_t(int x, int y)>;

// A window that shows a pattern in its client area, for grabbing tests. It belongs to the
// creating thread, which must pump messages for it to paint (see pumpMessages).
class TestWindow {
public:
    // `clientArea` in screen coordinates.
    TestWindow(const RECT& clientArea, PixelPattern pattern, const std::wstring& title = L"Pryxa test window",
               DWORD style = WS_POPUP);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND handle() const { return window_; }
    // Shows, raises and paints the window, waiting until the screen shows its pattern.
    bool showAndWait(DWORD timeoutMs = 5000);

private:
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
    PixelPattern pattern_;
    int width_ = 0;
    int height_ = 0;
};
