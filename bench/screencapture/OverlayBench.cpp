// Times the selection overlay at the screen size of the session it runs in (see
// run-overlay-bench): the handling of one mouse move during a drag when the damaged area is
// small and when it is large, and the time from selectArea to the end of the first paint.
// Moves are sent on the overlay's own thread from a thread timer that its message loop
// dispatches, so each figure is the handler's own work, without any thread switch.

#include "base/win/GdiplusSession.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/ScreenCapture.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kOverlayRuns = 5;
constexpr int kSmallMoves = 400;
constexpr int kLargeMoves = 40;

double nowMs()
{
    static const double ticksPerMs = [] {
        LARGE_INTEGER frequency;
        QueryPerformanceFrequency(&frequency);
        return static_cast<double>(frequency.QuadPart) / 1000.0;
    }();
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return static_cast<double>(counter.QuadPart) / ticksPerMs;
}

struct Figures {
    double median = 0;
    double mean = 0;
};

Figures summarise(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    Figures f;
    f.median = times[times.size() / 2];
    for (double t : times)
        f.mean += t;
    f.mean /= static_cast<double>(times.size());
    return f;
}

LPARAM at(int x, int y)
{
    return MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y));
}

// One run of the overlay, watched from its own thread.
struct Run {
    double started = 0;
    double firstPaintRetrieved = 0;
    double firstPaintDone = 0;
    HWND overlay = nullptr;
    bool measureMoves = false;
    Figures small, large;
};

Run* current = nullptr;
HHOOK hook = nullptr;

// Sees each message as the overlay's loop takes it: the first WM_PAINT of the overlay, and
// the message after it, which a posted WM_NULL makes come at once.
LRESULT CALLBACK watchMessages(int code, WPARAM wParam, LPARAM lParam)
{
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    if (code == HC_ACTION && wParam == PM_REMOVE && current) {
        if (current->firstPaintRetrieved == 0 && message->message == WM_PAINT) {
            current->overlay = message->hwnd;
            current->firstPaintRetrieved = nowMs();
            PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
        } else if (current->firstPaintRetrieved != 0 && current->firstPaintDone == 0) {
            current->firstPaintDone = nowMs();
        }
    }
    return CallNextHookEx(hook, code, wParam, lParam);
}

// Drags from `start` and moves back and forth between `corner` and one pixel short of it, so
// that every move damages the same area: the box from `start` to `corner`.
Figures timeMoves(HWND overlay, POINT start, POINT corner, int moves)
{
    SendMessageW(overlay, WM_LBUTTONDOWN, MK_LBUTTON, at(start.x, start.y));
    SendMessageW(overlay, WM_MOUSEMOVE, MK_LBUTTON, at(corner.x, corner.y));
    std::vector<double> times;
    for (int i = 0; i < moves; ++i) {
        const int back = i % 2 == 0 ? 1 : 0;
        const double before = nowMs();
        SendMessageW(overlay, WM_MOUSEMOVE, MK_LBUTTON, at(corner.x - back, corner.y - back));
        GdiFlush();
        times.push_back(nowMs() - before);
    }
    return summarise(times);
}

void CALLBACK onTick(HWND, UINT, UINT_PTR timer, DWORD)
{
    if (!current || current->firstPaintDone == 0)
        return;
    KillTimer(nullptr, timer);
    HWND overlay = current->overlay;
    if (current->measureMoves) {
        current->small = timeMoves(overlay, {1000, 1000}, {1200, 1200}, kSmallMoves);
        SendMessageW(overlay, WM_LBUTTONUP, 0, at(1000, 1000)); // no movement: no picture, the overlay closes
        return;
    }
    PostMessageW(overlay, WM_KEYUP, VK_ESCAPE, 0xC0000001);
}

// The same on another overlay, with the large damaged area.
void CALLBACK onTickLarge(HWND, UINT, UINT_PTR timer, DWORD)
{
    if (!current || current->firstPaintDone == 0)
        return;
    KillTimer(nullptr, timer);
    current->large = timeMoves(current->overlay, {100, 100}, {3100, 2100}, kLargeMoves);
    PostMessageW(current->overlay, WM_KEYUP, VK_ESCAPE, 0xC0000001);
}

Run runOverlay(TIMERPROC tick, bool measureMoves)
{
    Run run;
    run.measureMoves = measureMoves;
    current = &run;
    SetTimer(nullptr, 0, 10, tick);
    screenCapture::ScreenCapture capture(nullptr);
    run.started = nowMs();
    capture.selectArea();
    current = nullptr;
    return run;
}

} // namespace

int main()
{
    screenCapture::makeProcessDpiAware();
    GdiplusSession gdiplus;
    hook = SetWindowsHookExW(WH_GETMESSAGE, watchMessages, nullptr, GetCurrentThreadId());
    const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    std::printf("Selection overlay on a virtual screen of %dx%d\n", width, height);
    if (width <= 3100 || height <= 2100)
        std::printf("(the large move reaches 3100,2100; run-overlay-bench starts a session of 3840x2160)\n");

    std::vector<double> firstPaint, paintOnly;
    for (int i = 0; i < kOverlayRuns; ++i) {
        const Run run = runOverlay(onTick, false);
        firstPaint.push_back(run.firstPaintDone - run.started);
        paintOnly.push_back(run.firstPaintDone - run.firstPaintRetrieved);
    }
    const Figures toPaint = summarise(firstPaint);
    const Figures paint = summarise(paintOnly);
    std::printf("selectArea to end of first paint: median %.1f ms, mean %.1f ms (%d runs)\n", toPaint.median,
                toPaint.mean, kOverlayRuns);
    std::printf("  of which the first WM_PAINT:    median %.1f ms\n", paint.median);

    const Run small = runOverlay(onTick, true);
    const Run large = runOverlay(onTickLarge, false);
    std::printf("mouse move, damaged area  200x200:  median %.3f ms, mean %.3f ms (%d moves)\n", small.small.median,
                small.small.mean, kSmallMoves);
    std::printf("mouse move, damaged area 3000x2000: median %.3f ms, mean %.3f ms (%d moves)\n", large.large.median,
                large.large.mean, kLargeMoves);
    std::printf("small move / large move: %.1f%% (goal: at most 5%%)\n",
                100.0 * small.small.median / large.large.median);
    UnhookWindowsHookEx(hook);
    return 0;
}
