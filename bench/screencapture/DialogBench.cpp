// Times the capture dialog: from capture(0, ...) to the dialog being visible on screen, with
// the in-app page switched off and on in turns, and the layout of a markup of 1,000 table
// rows with the real GDI canvas. Medians of many runs in one process. Run under Wine (see
// run-dialog-bench); it prints figures and asserts nothing.
//
// The run is the module's own code in this program, pointed at the DLL's resources, so that
// the in-app page can load from a port of this machine that nobody listens on: no request
// leaves the machine, and the page fails as it does offline.

#include "base/win/GdiplusSession.h"
#include "base/win/RegistryKey.h"
#include "browser/InAppAddress.h"
#include "companions/settings/Settings.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/ModuleInstance.h"
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
        [](HWND window, LPARAM result) CALLBACK -> BOOL {
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

struct DialogTimes {
    double visible = 0; // the dialog is visible
    double control = 0; // the in-app page's control has been made (0: no page)
};

// The in-app page's control: the first child of the browser's window.
bool pageControlMade(HWND dialog)
{
    HWND page = FindWindowExW(dialog, nullptr, L"PryxaEmbeddedBrowser", nullptr);
    return page && GetWindow(page, GW_CHILD);
}

// One capture(0, ...): a watcher notes when the dialog is visible and, with the in-app page
// on, when the page's control has been made, then closes the dialog.
DialogTimes timeDialog(bool inAppPage)
{
    userConfig_setBool(L"feature.embeddedBrowser", inAppPage);
    std::atomic<bool> done{false};
    Clock::time_point shown{}, control{};
    const Clock::time_point start = Clock::now();
    std::thread watcher([&] {
        HWND dialog = nullptr;
        while (!done && !dialog) {
            if ((dialog = visibleDialog()) == nullptr)
                Sleep(1);
        }
        shown = Clock::now();
        while (!done && inAppPage && !pageControlMade(dialog))
            Sleep(1);
        control = Clock::now();
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    });
    screenCapture::performCapture(screenCapture::noMode, screenCapture::noTarget);
    done = true;
    watcher.join();
    return DialogTimes{ms(shown - start), inAppPage ? ms(control - start) : 0};
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

void printFigures(const char* what, const std::vector<double>& times)
{
    const Figures figures = summary(times);
    std::printf("  %-28s median %6.1f ms  (first %.1f, min %.1f, max %.1f)\n", what, figures.median, figures.first,
                figures.minimum, figures.maximum);
}

// Off and on in turns, so that both see the same machine.
void benchDialog()
{
    const ZString scratch = L"Software\\Pryxa\\DialogBench";
    settings_redirect(scratch);
    screenCapture::setModuleInstance(LoadLibraryW(L"screencapture.dll"));
    browser::setInAppEndpoint(L"http://127.0.0.1:1");
    std::vector<double> off, on, control;
    for (int run = 0; run < kDialogRuns; ++run) {
        off.push_back(timeDialog(false).visible);
        const DialogTimes page = timeDialog(true);
        on.push_back(page.visible);
        control.push_back(page.control);
    }
    settings_redirect(ZString());
    RegistryKey::deleteTree(HKEY_CURRENT_USER, scratch);
    std::printf("capture(0, ...) until the dialog is visible, %d runs each, in turns:\n", kDialogRuns);
    printFigures("in-app page off", off);
    printFigures("in-app page on", on);
    printFigures("on: its control made after", control);
    std::printf("  goal: on and off the same within noise, medians within 150 ms; the control comes after\n");
}

} // namespace

int main()
{
    benchDialog();
    benchLayout();
    return 0;
}
