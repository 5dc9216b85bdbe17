// Times a screen grab, the PNG save and a whole capture to the clipboard against the floor:
// a plain BitBlt of the screen into a DIB section of the same size. Medians of many runs in
// one process. Run under Wine at the screen size to measure (see run-capture-bench).

#include "base/win/DibHeader.h"
#include "base/win/GdiHandles.h"
#include "base/win/GdiplusSession.h"
#include "base/win/TempFolder.h"
#include "companions/notifyicon/NotifyIcon.h"
#include "image/GdiplusHelpers.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/ScreenCapture.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int kRuns = 25;

double medianMs(const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < kRuns; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void bitBltFloor(int width, int height)
{
    BITMAPINFO info = topDownDibHeader(width, height, 24);
    void* bits = nullptr;
    WindowDC screen;
    BitmapHandle dib(CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    MemoryDC memory(screen.get());
    SelectedObject selected(memory.get(), dib.get());
    BitBlt(memory.get(), 0, 0, width, height, screen.get(), 0, 0, SRCCOPY);
    GdiFlush();
}

} // namespace

int main()
{
    using namespace screenCapture;
    SetProcessDPIAware();
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    notifyIcon_setDuration(50);

    double floor, grab, save;
    {
        GdiplusSession gdiplus;
        floor = medianMs([&] { bitBltFloor(width, height); });
        grab = medianMs([] {
            ScreenCapture capture(nullptr);
            capture.grab(screen);
        });
        ScreenCapture capture(nullptr);
        capture.grab(screen);
        CLSID png = {};
        findEncoder(L"image/png", &png);
        const ZString path = joinPath(moduleTempFolder(), L"capture-bench.png");
        save = medianMs([&] { capture.image()->Save(path.c_str(), &png, nullptr); });
        DeleteFileW(path.c_str());
    }
    const double whole = medianMs([] { screenCapture::capture(screen, toClipboard); });

    std::printf("screen %dx%d, median of %d runs\n", width, height, kRuns);
    std::printf("  floor: BitBlt into a DIB section   %8.2f ms\n", floor);
    std::printf("  grab(screen)                       %8.2f ms  (%.2f x floor; goal <= 1.5)\n", grab, grab / floor);
    std::printf("  PNG save of the grab               %8.2f ms\n", save);
    std::printf("  capture(screen, clipboard)         %8.2f ms  (%.2f x floor; goal <= 3)\n", whole, whole / floor);
    return 0;
}
