// Two monitors, in the display shapes "dual" (the second monitor right of the primary one)
// and "dual-negative" (left of and above it, so that the virtual screen starts at negative
// coordinates); see scripts/wine-env. The overlay spans the virtual screen, the screen
// modes stay on the primary monitor, and windows are grabbed where they lie.

#include "base/win/GdiHandles.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/screencapture/OverlayHand.h"

#include <algorithm>
#include <vector>

namespace screenCapture {
namespace {

int widthOf(const RECT& r) { return r.right - r.left; }
int heightOf(const RECT& r) { return r.bottom - r.top; }
RECT moved(const RECT& r, int dx, int dy) { return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy}; }

// The part of `grid` at `area` (in grid coordinates) equals the pattern.
void expectPattern(const PixelGrid& grid, const RECT& area, const PixelPattern& pattern)
{
    ASSERT_TRUE(area.left >= 0 && area.top >= 0 && area.right <= grid.width && area.bottom <= grid.height);
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            ASSERT_EQ(grid.at(x, y), pattern(x - area.left, y - area.top)) << "at " << x << "," << y;
}

// On Windows a display DC (CreateDCW(L"DISPLAY")) uses screen coordinates, as the overlay's
// snapshot expects. Wine 8's counts from the virtual screen's top left instead, so there the
// snapshot is shifted when the virtual screen starts left of or above the primary monitor.
// Its content can only be checked where the display DC agrees with the screen.
bool displayDcUsesScreenCoordinates()
{
    DisplayDC display;
    RECT box = {};
    GetClipBox(display.get(), &box);
    const RECT desk = virtualScreen();
    return EqualRect(&box, &desk) != FALSE;
}

class TwoMonitors : public CaptureTest {
protected:
    void SetUp() override
    {
        makeProcessDpiAware();
        std::vector<MONITORINFO> found;
        const auto add = [](HMONITOR monitor, HDC, LPRECT, LPARAM list) CALLBACK -> BOOL {
            MONITORINFO info = {sizeof info, {}, {}, 0};
            GetMonitorInfoW(monitor, &info);
            reinterpret_cast<std::vector<MONITORINFO>*>(list)->push_back(info);
            return TRUE;
        };
        EnumDisplayMonitors(nullptr, nullptr, add, reinterpret_cast<LPARAM>(&found));
        ASSERT_EQ(found.size(), 2u) << "needs a display of two monitors (PRYXA_WINE_SHAPE=dual)";
        const bool firstIsPrimary = found[0].dwFlags & MONITORINFOF_PRIMARY;
        primary = found[firstIsPrimary ? 0 : 1].rcMonitor;
        const RECT second = found[firstIsPrimary ? 1 : 0].rcMonitor;
        // The monitors meet at a vertical edge, along the heights they share.
        const bool secondOnTheRight = second.left >= primary.right;
        ASSERT_TRUE(secondOnTheRight || second.right <= primary.left);
        const LONG x = secondOnTheRight ? primary.right : primary.left;
        border = {x, std::max(primary.top, second.top), x, std::min(primary.bottom, second.bottom)};
        towardsSecond = secondOnTheRight ? 1 : -1;
    }

    // An area of this size on the primary monitor (side -1) or the second one (side 1),
    // `gap` pixels from the border between them, level with the middle of the border.
    RECT beside(int side, int width, int height, int gap) const
    {
        const int x = side * towardsSecond > 0 ? border.left + gap : border.left - gap - width;
        const int y = (border.top + border.bottom - height) / 2;
        return {x, y, x + width, y + height};
    }

    RECT primary = {}, border = {};
    int towardsSecond = 1; // +1: the second monitor lies right of the primary one
};

// screen takes the primary monitor, screenClient its work area (40 pixels shorter here),
// whatever lies on the other monitor. The screen DC spans both monitors: a captioned window
// is taken where it lies, on the other monitor or across the border.
TEST_F(TwoMonitors, ScreenModesTakeOnlyThePrimaryMonitorAndWindowsAreTakenWhereTheyLie)
{
    ReservedTaskBar taskBar(primary);
    auto other = showPattern(beside(1, 200, 150, 60), calmPattern);
    const struct {
        const char* where;
        Mode mode;
        RECT client;
        const wchar_t* title;
    } cases[] = {
        {"screen", screen, beside(-1, 200, 150, 60), L""},
        {"screenClient", screenClient, beside(-1, 200, 150, 60), L""},
        {"on the second monitor", activeWindow, beside(1, 300, 200, 80), L"Far window"},
        {"across the border", activeWindowClient, moved(beside(1, 300, 200, 0), -towardsSecond * 150, 0), L"Far window"},
    };
    for (const auto& c : cases) {
        auto window = showPattern(c.client, gradientPattern, WS_OVERLAPPEDWINDOW, L"Far window");
        RECT frame = {};
        GetWindowRect(window->handle(), &frame);
        const RECT area = c.mode == screen ? primary : c.mode == screenClient ? taskBar.workArea() : c.mode == activeWindow ? frame : c.client;
        ScreenCapture capture(nullptr);
        capture.grab(c.mode);
        ASSERT_NE(capture.image(), nullptr) << c.where;
        EXPECT_EQ(capture.title(), ZString(c.title)) << c.where;
        const PixelGrid grid = imagePixels(*capture.image());
        ASSERT_EQ(grid.width, widthOf(area)) << c.where;
        ASSERT_EQ(grid.height, heightOf(area)) << c.where;
        expectPattern(grid, moved(c.client, -area.left, -area.top), gradientPattern);
    }
}

// The overlay lies on the whole virtual screen and shows the snapshot of both monitors under
// its veil; a drag from one monitor onto the other cuts the whole rectangle out of it.
TEST_F(TwoMonitors, OverlaySpansBothMonitorsAndASelectionAcrossTheBorderComesOutWhole)
{
    const RECT desk = virtualScreen();
    const RECT left = beside(-1, 240, 180, 30), right = beside(1, 240, 180, 30);
    auto onPrimary = showPattern(left, calmPattern);
    auto onSecond = showPattern(right, gradientPattern);
    const PixelGrid before = readScreenPixels(desk);
    const auto inGrid = [&](const RECT& r) { return moved(r, -desk.left, -desk.top); };
    const auto centre = [&](const RECT& r) { return POINT{(r.left + r.right) / 2 - desk.left, (r.top + r.bottom) / 2 - desk.top}; };
    const auto veiledAt = [&](const PixelGrid& g, POINT p) { return isVeiled(g.at(p.x, p.y), before.at(p.x, p.y)); };
    // From inside one window to inside the other, in the overlay's client coordinates.
    const RECT selection = inGrid({std::min(left.left, right.left) + 20, left.top + 20,
                                   std::max(left.right, right.right) - 20, left.bottom - 20});
    RECT overlayRect = {};
    PixelGrid veiled;

    ScreenCapture capture(nullptr);
    selectWith(capture, [&](OverlayHand& o) {
        GetWindowRect(o.window, &overlayRect);
        veiled = screenOnce(o.window, desk, [&](const PixelGrid& g) {
            return veiledAt(g, centre(left)) && veiledAt(g, centre(right));
        });
        o.press({selection.right, selection.top}); // up on the right, whichever monitor that is
        o.moveTo({selection.left, selection.bottom});
        o.release({selection.left, selection.bottom});
    });

    EXPECT_TRUE(EqualRect(&overlayRect, &desk)) << overlayRect.left << "," << overlayRect.top << " "
                                                << widthOf(overlayRect) << "x" << heightOf(overlayRect);
    ASSERT_NE(capture.image(), nullptr);
    const PixelGrid picture = imagePixels(*capture.image());
    ASSERT_EQ(picture.width, widthOf(selection));
    ASSERT_EQ(picture.height, heightOf(selection));
    if (!displayDcUsesScreenCoordinates())
        GTEST_SKIP() << "the display DC does not use screen coordinates here (Wine); the snapshot's content is not checked";
    ASSERT_EQ(veiled.pixels.size(), before.pixels.size());
    int notVeiled = 0;
    for (size_t i = 0; i < before.pixels.size(); ++i)
        notVeiled += !isVeiled(veiled.pixels[i], before.pixels[i]);
    EXPECT_EQ(notVeiled, 0) << "pixels of the virtual screen not shown veiled";
    int wrong = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            wrong += picture.at(x, y) != before.at(selection.left + x, selection.top + y);
    EXPECT_EQ(wrong, 0) << "pixels of the picture unlike the screen before the overlay";
}

} // namespace
} // namespace screenCapture
