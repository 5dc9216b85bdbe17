// Times the capture dialog: from capture(0, ...) to the dialog being visible on screen, and
// the layout of a markup of 1,000 table rows with the real GDI canvas. Medians of many runs
// in one process. Run under Wine (see run-dialog-bench); it prints figures and asserts
// nothing.

#include "base/win/GdiplusSession.h"
#include "screencapture/CaptureApi.h"
#include "xhtml/HtmlDocument.h"
#include "xhtml/win/GdiCanvas.h"
#include "xhtml/view/ViewTree.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDialogRuns = 21;
constexpr int kLayoutRuns = 15;
constexpr int kRows = 1000;

double ms(Clock::duration d)
{
    return std::chrono::duration<double, std::milli>(d).count();
}

struct Figures {
    double first, median, minimum, maximum;
};

Figures summary(std::vector<double> times)
{
    const double first = times.front();
    std::sort(times.begin(), times.end());
    return Figures{first, times[times.size() / 2], times.front(), times.back()};
}

HWND visibleDialog()
{
    HWND found = nullptr;
    EnumWindows(
        [](HWND window, LPARAM result) -> BOOL {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            wchar_t name[64] = {};
            GetClassNameW(window, name, 64);
            if (process == GetCurrentProcessId() && IsWindowVisible(window) && wcscmp(name, L"XhtmlFrameView") == 0) {
                *reinterpret_cast<HWND*>(result) = window;
                return FALSE;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// One capture(0, ...): a watcher notes when the dialog is visible and closes it.
double timeToVisibleDialog()
{
    std::atomic<bool> done{false};
    Clock::time_point shown{};
    const Clock::time_point start = Clock::now();
    std::thread watcher([&] {
        while (!done) {
            if (HWND dialog = visibleDialog()) {
                shown = Clock::now();
                PostMessageW(dialog, WM_CLOSE, 0, 0);
                return;
            }
            Sleep(1);
        }
    });
    screenCapture::capture(screenCapture::noMode, screenCapture::noTarget);
    done = true;
    watcher.join();
    return ms(shown - start);
}

std::wstring thousandRows()
{
    std::wstring markup = L"<body><table width='100%' cellspacing=1 cellpadding=2 border=1>";
    for (int row = 0; row < kRows; ++row) {
        markup += L"<tr><td style='width:40px' align=right>" + std::to_wstring(row + 1) + L"</td><td>Row "
                  + std::to_wstring(row + 1) + L" of the table, with a few words of text</td>"
                  + L"<td align=center valign=middle><b>" + std::to_wstring((row * 37) % 1000) + L" items</b></td></tr>";
    }
    return markup + L"</table></body>";
}

void benchLayout()
{
    GdiplusSession gdiplus;
    xhtml::HtmlDocument document;
    xhtml::MarkupTextFilter unchanged;
    xhtml::StyleRuleList rules;
    document.setMarkup(ZString(thousandRows().c_str()), unchanged);
    xhtml::ViewTree views;
    const Clock::time_point built = Clock::now();
    views.build(document.root(), rules, ZString(), 1.0);
    const double buildMs = ms(Clock::now() - built);

    xhtml::FontCache fonts;
    xhtml::ImageCache images;
    MemoryDC dc(nullptr);
    xhtml::GdiCanvas canvas(dc.get(), fonts, images);
    std::vector<double> fixed, fitted;
    xhtml::Size size;
    for (int run = 0; run < kLayoutRuns; ++run) {
        Clock::time_point start = Clock::now();
        size = views.layout(canvas, 800, -1);
        fixed.push_back(ms(Clock::now() - start));
        start = Clock::now();
        views.layout(canvas, views.preferredWidth(canvas), -1);
        fitted.push_back(ms(Clock::now() - start));
    }
    const Figures layout = summary(fixed);
    const Figures fit = summary(fitted);
    std::printf("layout of %d table rows (3 cells each), %dx%d px:\n", kRows, size.width, size.height);
    std::printf("  building the views            %8.2f ms (once)\n", buildMs);
    std::printf("  layout at 800 px              %8.2f ms median  (first %.2f, min %.2f, max %.2f)\n", layout.median,
                layout.first, layout.minimum, layout.maximum);
    std::printf("  preferred width + layout      %8.2f ms median  (first %.2f, min %.2f, max %.2f)\n", fit.median,
                fit.first, fit.minimum, fit.maximum);
    std::printf("  goal: layout under 50 ms\n");
}

void benchDialog()
{
    std::vector<double> times;
    for (int run = 0; run < kDialogRuns; ++run)
        times.push_back(timeToVisibleDialog());
    const Figures figures = summary(times);
    std::printf("capture(0, ...) until the dialog is visible, %d runs:\n", kDialogRuns);
    std::printf("  median %.1f ms  (first %.1f, min %.1f, max %.1f)\n", figures.median, figures.first, figures.minimum,
                figures.maximum);
    std::printf("  goal: median within 150 ms\n");
}

} // namespace

int main()
{
    benchDialog();
    benchLayout();
    return 0;
}
