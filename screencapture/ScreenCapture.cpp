#include "screencapture/ScreenCapture.h"

#include "base/win/GdiHandles.h"

#include <vector>

namespace screenCapture {

namespace {

RECT primaryScreen()
{
    RECT rect = {};
    GetWindowRect(GetDesktopWindow(), &rect);
    return rect;
}

RECT workArea()
{
    RECT rect = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &rect, 0);
    return rect;
}

RECT windowArea(HWND window)
{
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect;
}

RECT clientAreaOnScreen(HWND window)
{
    RECT rect = {};
    GetClientRect(window, &rect);
    POINT origin = {0, 0};
    ClientToScreen(window, &origin);
    OffsetRect(&rect, origin.x, origin.y);
    return rect;
}

ZString readTitle(HWND window)
{
    const LRESULT length = SendMessageW(window, WM_GETTEXTLENGTH, 0, 0);
    if (length <= 0)
        return ZString();
    std::vector<wchar_t> text(static_cast<size_t>(length) + 1, L'\0');
    SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return ZString(text.data());
}

// A new 24-bit image, or null when GDI+ cannot make one.
std::unique_ptr<Gdiplus::Bitmap> newImage(int width, int height)
{
    std::unique_ptr<Gdiplus::Bitmap> image(new Gdiplus::Bitmap(width, height, PixelFormat24bppRGB));
    if (image->GetLastStatus() != Gdiplus::Ok)
        image.reset();
    return image;
}

} // namespace

void ScreenCapture::grab(Mode mode)
{
    switch (mode) {
    case screenClient:
        grabScreenArea(workArea());
        return;
    case activeWindow: {
        HWND window = takeActiveWindow();
        grabScreenArea(window ? windowArea(window) : primaryScreen());
        return;
    }
    case activeWindowClient: {
        // Without a window this falls back to the working area, not the whole screen as
        // the mode with the frame does.
        HWND window = takeActiveWindow();
        grabScreenArea(window ? clientAreaOnScreen(window) : workArea());
        return;
    }
    case userDefinedArea:
        selectArea();
        return;
    case clipboard:
        copyClipboard();
        return;
    default:
        grabScreenArea(primaryScreen());
        return;
    }
}

void ScreenCapture::grabRect(HDC source, const RECT& area)
{
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    if (width <= 0 || height <= 0)
        return;
    image_ = newImage(width, height);
    if (!image_)
        return;
    Gdiplus::Graphics graphics(image_.get());
    HDC target = graphics.GetHDC();
    BitBlt(target, 0, 0, width, height, source, area.left, area.top, SRCCOPY);
    graphics.ReleaseHDC(target);
}

// Plain SRCCOPY: layered windows are left out of these modes, unlike the overlay's snapshot.
void ScreenCapture::grabScreenArea(const RECT& area)
{
    WindowDC screen;
    grabRect(screen.get(), area);
}

// A caption means both WS_BORDER and WS_DLGFRAME, on overlapped and popup windows alike.
// Minimised windows count: the test looks at nothing else.
BOOL CALLBACK ScreenCapture::findWindow(HWND window, LPARAM result)
{
    const DWORD style = static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE));
    if ((style & WS_VISIBLE) == 0 || (style & WS_CAPTION) != WS_CAPTION)
        return TRUE;
    if (result)
        *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

HWND ScreenCapture::takeActiveWindow()
{
    HWND window = nullptr;
    EnumWindows(findWindow, reinterpret_cast<LPARAM>(&window));
    if (window)
        title_ = readTitle(window);
    return window;
}

void ScreenCapture::copyClipboard()
{
    if (!OpenClipboard(nullptr))
        return;
    // The clipboard owns its bitmap: it is read, never freed here.
    if (auto bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP))) {
        Gdiplus::Bitmap source(bitmap, nullptr);
        const int width = static_cast<int>(source.GetWidth());
        const int height = static_cast<int>(source.GetHeight());
        image_ = newImage(width, height);
        if (image_) {
            Gdiplus::Graphics graphics(image_.get());
            // The size is given so that a resolution different from the screen's does not scale it.
            graphics.DrawImage(&source, 0, 0, width, height);
        }
    }
    CloseClipboard();
}

} // namespace screenCapture
