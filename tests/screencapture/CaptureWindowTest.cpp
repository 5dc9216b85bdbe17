// The selection overlay, driven as a user would: mouse and key messages posted to the
// overlay's window from a robot thread while the test's thread sits in its message loop.

#include "base/win/ScreenDpi.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/screencapture/OverlayHand.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"

#include <atomic>

namespace screenCapture {
namespace {

using CaptureWindow = CaptureTest;

RECT wholeScreen() { return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}; }

// The picture is the snapshot's rectangle, though the screen changed under the overlay,
// whichever way the user drags. Once the overlay has closed, its GDI objects and windows are gone.
TEST_F(CaptureWindow, PictureIsTheScreenAsItWasWhenTheOverlayAppearedAndNothingIsLeftBehind)
{
    const RECT area = {200, 150, 600, 450};
    std::atomic<bool> changed{false}, repainted{false};
    auto window = showPattern(area, [&](int x, int y) {
        if (!changed)
            return gradientPattern(x, y);
        repainted = true;
        return rgb(250, 10, 10);
    });
    const PixelGrid before = readScreenPixels(wholeScreen());
    const POINT topLeft = {250, 180}, bottomRight = {470, 400};
    const std::pair<POINT, POINT> drags[] = {{topLeft, bottomRight}, {bottomRight, topLeft}}; // down-right, up-left
    ResourceCounts resourcesBefore;
    for (const auto& drag : drags) {
        const POINT from = drag.first, to = drag.second;
        changed = repainted = false;
        InvalidateRect(window->handle(), nullptr, FALSE);
        ASSERT_TRUE(window->showAndWait());
        if (from.x != topLeft.x) // the first run is the first use of GDI+ and of the system's shared objects
            resourcesBefore = countResources();
        ScreenCapture capture(nullptr);
        selectWith(capture, [&](OverlayHand& overlay) {
            changed = true; // the window below the overlay now shows something else
            InvalidateRect(window->handle(), nullptr, FALSE);
            if (!pumpUntil([&] { return repainted.load(); }, 5000))
                throw RobotFailure("the test window was not repainted");
            overlay.press(from);
            overlay.moveTo({600, 300});
            overlay.moveTo(to);
            overlay.release(to);
        });

        ASSERT_NE(capture.image(), nullptr) << from.x;
        const PixelGrid picture = imagePixels(*capture.image());
        ASSERT_EQ(picture.width, bottomRight.x - topLeft.x) << from.x;
        ASSERT_EQ(picture.height, bottomRight.y - topLeft.y) << from.x;
        int wrong = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x)
                wrong += picture.at(x, y) != before.at(topLeft.x + x, topLeft.y + y);
        }
        EXPECT_EQ(wrong, 0) << from.x;
        pumpMessages(200);
        EXPECT_EQ(readScreenPixels({300, 300, 301, 301}).at(0, 0), rgb(250, 10, 10)) << "the screen did change";
    }
    const ResourceCounts after = countResourcesSettled(resourcesBefore);
    EXPECT_EQ(after.gdiObjects, resourcesBefore.gdiObjects) << after.describe() << " / " << resourcesBefore.describe();
    EXPECT_EQ(after.windows, resourcesBefore.windows);
}

// Escape cancels without a word; a click selects nothing, which is a failure the user is told of.
TEST_F(CaptureWindow, EscapeWhileDraggingCancelsSilentlyAndAClickGivesNoPicture)
{
    ASSERT_TRUE(putTextOnClipboard(L"kept"));
    UiRobot robot([&](UiRobot& r) {
        OverlayHand o(r);
        o.press({300, 300});
        o.moveTo({600, 500});
        o.keyUp(VK_ESCAPE);
        r.waitForWindowGone(o.window);
        Sleep(1000); // a message box would be up by now
        if (!processWindows().empty())
            throw RobotFailure("a window came up after Escape: " + std::to_string(processWindows().size()));
    });
    captureAndDeliver(userDefinedArea, toClipboard);
    EXPECT_EQ(robot.finish(), "");
    EXPECT_EQ(clipboardFormats().at(0), UINT(CF_UNICODETEXT)) << "nothing delivered";

    ScreenCapture click(nullptr);
    selectWith(click, [](OverlayHand& o) {
        o.press({500, 500});
        o.release({500, 500});
    });
    EXPECT_EQ(click.image(), nullptr);
    EXPECT_FALSE(click.cancelled());
}

enum class Look { clear, veiled, outline };

Look lookOf(const PixelGrid& seen, const PixelGrid& before, POINT p)
{
    if (seen.at(p.x, p.y) == before.at(p.x, p.y))
        return Look::clear;
    return isVeiled(seen.at(p.x, p.y), before.at(p.x, p.y)) ? Look::veiled : Look::outline;
}

// Over a calm pattern: before a drag the whole screen is veiled; during a drag from `from`
// down and right to `to`, the selection shows the snapshot clear inside a dotted outline
// one pixel wide at 96 DPI, and the rest stays veiled.
TEST_F(CaptureWindow, VeiledBeforeADragAndClearInsideADottedOutlineDuringOne)
{
    makeProcessDpiAware();
    ASSERT_EQ(screenDpi(), 96);
    auto window = showPattern({300, 200, 700, 500}, calmPattern);
    const PixelGrid before = readScreenPixels(wholeScreen());
    const POINT from = {400, 260}, to = {600, 420};
    const POINT inside = {(from.x + to.x) / 2, (from.y + to.y) / 2};
    // Clear after the first move, veiled again after the second: seen veiled, both have arrived.
    const POINT leftBehind = {to.x + 20, inside.y};
    PixelGrid veiled, dragging;

    // The system reports the real mouse position too (for instance when the overlay appears
    // under it); with the mouse resting where the drag ends, such a report changes nothing.
    SetCursorPos(to.x, to.y);
    pumpMessages(50);
    ScreenCapture capture(nullptr);
    selectWith(capture, [&](OverlayHand& o) {
        veiled = screenOnce(o.window, wholeScreen(), [&](const PixelGrid& g) { return lookOf(g, before, inside) == Look::veiled; });
        o.press(from);
        o.moveTo({to.x + 40, to.y - 30});
        o.moveTo(to);
        dragging = screenOnce(o.window, wholeScreen(), [&](const PixelGrid& g) {
            return lookOf(g, before, inside) == Look::clear && lookOf(g, before, leftBehind) == Look::veiled;
        });
        o.keyUp(VK_ESCAPE);
    });

    ASSERT_EQ(veiled.pixels.size(), before.pixels.size());
    ASSERT_EQ(dragging.pixels.size(), before.pixels.size());
    int notVeiledBefore = 0, wrongDuring = 0;
    for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            const uint32_t clear = before.at(x, y);
            notVeiledBefore += !isVeiled(veiled.at(x, y), clear);
            if (x > from.x + 3 && x < to.x - 3 && y > from.y + 3 && y < to.y - 3)
                wrongDuring += dragging.at(x, y) != clear;
            else if (x < from.x - 6 || x > to.x + 6 || y < from.y - 6 || y > to.y + 6)
                wrongDuring += !isVeiled(dragging.at(x, y), clear);
        }
    }
    EXPECT_EQ(notVeiledBefore, 0);
    EXPECT_EQ(wrongDuring, 0) << "pixels not clear inside the selection or not veiled well outside it";

    // Across the right edge: one pixel of outline, dotted (black dots with gaps between them).
    int wrongWidth = 0, dots = 0, outline = 0;
    for (int y = from.y + 10; y < to.y - 10; ++y) {
        int width = 0;
        for (int x = to.x - 7; x <= to.x + 5; ++x) {
            if (lookOf(dragging, before, {x, y}) == Look::outline) {
                ++width;
                dots += dragging.at(x, y) == rgb(0, 0, 0);
            }
        }
        wrongWidth += width != 1;
        outline += width;
    }
    EXPECT_EQ(wrongWidth, 0) << "lines across the edge where the outline is not one pixel wide";
    EXPECT_TRUE(dots > 0 && dots < outline) << dots << " of " << outline;
}

} // namespace
} // namespace screenCapture
