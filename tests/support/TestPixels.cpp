#include "tests/support/TestPixels.h"

#include "base/win/DibHeader.h"
#include "base/win/GdiHandles.h"
#include "tests/support/UiRobot.h"

namespace {

const wchar_t* const kTestWindowClass = L"PryxaTestWindow";

std::vector<uint32_t> render(const PixelPattern& pattern, int width, int height)
{
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            pixels[static_cast<size_t>(y) * width + x] = pattern(x, y);
    }
    return pixels;
}

} // namespace

PixelGrid readBitmapPixels(HBITMAP bitmap)
{
    BITMAP header = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof header, &header))
        return PixelGrid();
    PixelGrid grid{header.bmWidth, header.bmHeight,
                   std::vector<uint32_t>(static_cast<size_t>(header.bmWidth) * header.bmHeight)};
    BITMAPINFO info = topDownDibHeader(grid.width, grid.height, 32);
    WindowDC screen;
    if (GetDIBits(screen.get(), bitmap, 0, grid.height, grid.pixels.data(), &info, DIB_RGB_COLORS) != grid.height)
        return PixelGrid();
    for (uint32_t& p : grid.pixels)
        p &= 0xFFFFFF;
    return grid;
}

PixelGrid readScreenPixels(const RECT& area)
{
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    WindowDC screen;
    BitmapHandle bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    {
        MemoryDC memory(screen.get());
        SelectedObject selected(memory.get(), bitmap.get());
        BitBlt(memory.get(), 0, 0, width, height, screen.get(), area.left, area.top, SRCCOPY);
    }
    return readBitmapPixels(bitmap.get());
}

TestWindow::TestWindow(const RECT& clientArea, PixelPattern pattern, const std::wstring& title, DWORD style)
    : pattern_(std::move(pattern)), width_(clientArea.right - clientArea.left),
      height_(clientArea.bottom - clientArea.top)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = windowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kTestWindowClass;
    RegisterClassW(&windowClass); // fails harmlessly after the first time
    RECT outer = clientArea;
    AdjustWindowRectEx(&outer, style, FALSE, 0);
    window_ = CreateWindowExW(0, kTestWindowClass, title.c_str(), style, outer.left, outer.top,
                              outer.right - outer.left, outer.bottom - outer.top, nullptr, nullptr,
                              GetModuleHandleW(nullptr), this);
}

TestWindow::~TestWindow()
{
    if (window_)
        DestroyWindow(window_);
}

bool TestWindow::showAndWait(DWORD timeoutMs)
{
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
    SetWindowPos(window_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    UpdateWindow(window_);
    POINT origin = {0, 0};
    ClientToScreen(window_, &origin);
    const RECT area = {origin.x, origin.y, origin.x + width_, origin.y + height_};
    // The whole pattern, not a sample of it: a sample can match what was there before.
    const std::vector<uint32_t> expected = render(pattern_, width_, height_);
    return pumpUntil([&] { return readScreenPixels(area).pixels == expected; }, timeoutMs);
}

LRESULT CALLBACK TestWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE) {
        auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_PAINT && self) {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(window, &paint);
        const std::vector<uint32_t> pixels = render(self->pattern_, self->width_, self->height_);
        BITMAPINFO info = topDownDibHeader(self->width_, self->height_, 32);
        SetDIBitsToDevice(dc, 0, 0, self->width_, self->height_, 0, 0, 0, self->height_, pixels.data(), &info,
                          DIB_RGB_COLORS);
        EndPaint(window, &paint);
        return 0;
    }
    if (message == WM_ERASEBKGND)
        return 1;
    return DefWindowProcW(window, message, wParam, lParam);
}
