// pryxa-dialog-shot FILE.png: opens the capture dialog as a suite program does (capture
// without a mode), waits until it is painted, saves a picture of it, frame included, as a
// PNG file and closes it. scripts/dialog-pictures makes the README's pictures with it.

#include "base/win/DibHeader.h"
#include "base/win/GdiHandles.h"
#include "image/GdiplusHelpers.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/DpiAwareness.h"
#include "base/win/GdiplusSession.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

constexpr DWORD kPollMs = 200;
constexpr int kPolls = 50; // ten seconds for the dialog to come and settle

BOOL CALLBACK findDialog(HWND window, LPARAM result)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    if (process != GetCurrentProcessId() || !IsWindowVisible(window) || wcscmp(name, L"XhtmlFrameView") != 0)
        return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

HWND shownDialog()
{
    HWND found = nullptr;
    EnumWindows(findDialog, reinterpret_cast<LPARAM>(&found));
    return found;
}

// What the screen shows of `area`, as a bitmap of its own.
BitmapHandle screenPart(const RECT& area)
{
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    WindowDC screen;
    BitmapHandle bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    MemoryDC memory(screen.get());
    SelectedObject selected(memory.get(), bitmap.get());
    BitBlt(memory.get(), 0, 0, width, height, screen.get(), area.left, area.top, SRCCOPY);
    return bitmap;
}

std::vector<uint32_t> pixelsOf(HBITMAP bitmap)
{
    BITMAP info = {};
    GetObjectW(bitmap, sizeof info, &info);
    BITMAPINFO header = topDownDibHeader(info.bmWidth, info.bmHeight, 32);
    std::vector<uint32_t> pixels(static_cast<size_t>(info.bmWidth) * info.bmHeight);
    WindowDC screen;
    GetDIBits(screen.get(), bitmap, 0, info.bmHeight, pixels.data(), &header, DIB_RGB_COLORS);
    return pixels;
}

bool savePng(HBITMAP bitmap, const wchar_t* path)
{
    CLSID png;
    if (findEncoder(L"image/png", &png) < 0)
        return false;
    Gdiplus::Bitmap picture(bitmap, nullptr);
    return picture.Save(path, &png, nullptr) == Gdiplus::Ok;
}

// The dialog once two looks in a row are the same: painted, with nothing still moving in.
bool takePicture(const wchar_t* path)
{
    std::vector<uint32_t> last;
    for (int poll = 0; poll < kPolls; ++poll) {
        Sleep(kPollMs);
        HWND dialog = shownDialog();
        if (!dialog)
            continue;
        RECT frame = {};
        GetWindowRect(dialog, &frame);
        BitmapHandle picture = screenPart(frame);
        std::vector<uint32_t> now = pixelsOf(picture.get());
        if (now != last) {
            last = std::move(now);
            continue;
        }
        const bool saved = savePng(picture.get(), path);
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        return saved;
    }
    if (HWND dialog = shownDialog())
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    return false;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2) {
        std::fputs("usage: pryxa-dialog-shot FILE.png\n", stderr);
        return 2;
    }
    // As a DPI-aware suite program: the picture is in the screen's own pixels.
    screenCapture::makeProcessDpiAware();
    GdiplusSession gdiplus;
    std::atomic<bool> saved{false};
    std::thread photographer([&] { saved = takePicture(argv[1]); });
    screenCapture::capture(screenCapture::noMode, screenCapture::noTarget);
    photographer.join();
    if (!saved) {
        std::fprintf(stderr, "pryxa-dialog-shot: no picture of the dialog was saved to %ls\n", argv[1]);
        return 1;
    }
    return 0;
}
