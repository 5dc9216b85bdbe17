// The selection overlay, driven as a user would: mouse and key messages posted to the
// overlay's window from a robot thread while the test's thread sits in its message loop.

#include "base/win/ScreenDpi.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace screenCapture {
namespace {

constexpr UINT kMarker = WM_APP + 7;
const wchar_t* const kMarkerClass = L"PryxaQueueMarker";

// A message-only window of the test's thread. A thread's posted messages are handled in
// order, so once a marker posted after the overlay's messages is handled, so are they.
class QueueMarker {
public:
    QueueMarker() : reached_(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message == kMarker)
                SetEvent(reinterpret_cast<HANDLE>(wParam));
            return DefWindowProcW(window, message, wParam, lParam);
        };
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = kMarkerClass;
        RegisterClassW(&windowClass);
        window_ = CreateWindowExW(0, kMarkerClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    }
    ~QueueMarker() { DestroyWindow(window_); }
    QueueMarker(const QueueMarker&) = delete;
    QueueMarker& operator=(const QueueMarker&) = delete;

    // From another thread.
    void waitUntilReached()
    {
        PostMessageW(window_, kMarker, reinterpret_cast<WPARAM>(reached_.get()), 0);
        if (WaitForSingleObject(reached_.get(), 5000) != WAIT_OBJECT_0)
            throw RobotFailure("the test's thread did not get through its messages");
    }

private:
    KernelHandle reached_;
    HWND window_ = nullptr;
};

LPARAM pointParam(POINT p)
{
    return MAKELPARAM(static_cast<WORD>(p.x), static_cast<WORD>(p.y));
}

// The user's hand on the overlay, for the robot's script.
class Overlay {
public:
    Overlay(UiRobot& robot, QueueMarker& marker)
        : window_(robot.waitForWindow(
            [](HWND w) {
                return _wcsicmp(windowClass(w).c_str(), L"Static") == 0 && windowText(w) == L"ScreenCapture";
            },
            "the overlay")),
          marker_(marker)
    {
    }

    HWND handle() const { return window_; }
    void press(POINT p) { PostMessageW(window_, WM_LBUTTONDOWN, MK_LBUTTON, pointParam(p)); }
    void moveTo(POINT p) { PostMessageW(window_, WM_MOUSEMOVE, MK_LBUTTON, pointParam(p)); }
    void release(POINT p) { PostMessageW(window_, WM_LBUTTONUP, 0, pointParam(p)); }
    void rightClick(POINT p)
    {
        PostMessageW(window_, WM_RBUTTONDOWN, MK_RBUTTON, pointParam(p));
        PostMessageW(window_, WM_RBUTTONUP, 0, pointParam(p));
    }
    void keyDown(UINT key) { PostMessageW(window_, WM_KEYDOWN, key, keyParam(key, false)); }
    void keyUp(UINT key) { PostMessageW(window_, WM_KEYUP, key, keyParam(key, true)); }
    void drag(POINT from, POINT to)
    {
        press(from);
        moveTo({(from.x + to.x) / 2, (from.y + to.y) / 2});
        moveTo(to);
        release(to);
    }
    // Waits until the overlay's thread has handled all that was posted.
    void settle() { marker_.waitUntilReached(); }

private:
    static LPARAM keyParam(UINT key, bool up)
    {
        const LPARAM scanCode = static_cast<LPARAM>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC)) << 16;
        return 1 | scanCode | (up ? static_cast<LPARAM>(0xC0000000) : 0);
    }

    HWND window_;
    QueueMarker& marker_;
};

// Runs the overlay on this thread while the robot acts as the user.
void selectWith(ScreenCapture& capture, const std::function<void(Overlay&, UiRobot&)>& user)
{
    QueueMarker marker;
    UiRobot robot([&](UiRobot& r) {
        Overlay overlay(r, marker);
        user(overlay, r);
    });
    capture.selectArea();
    EXPECT_EQ(robot.finish(), "");
}

PixelGrid part(const PixelGrid& grid, const RECT& area)
{
    PixelGrid out;
    out.width = area.right - area.left;
    out.height = area.bottom - area.top;
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x)
            out.pixels.push_back(grid.at(x, y));
    }
    return out;
}

RECT moved(const RECT& r, int dx, int dy)
{
    return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

// Calm colours, far from black, white and their own veiled look.
uint32_t calmPattern(int x, int y)
{
    return rgb(40 + (x % 64), 80 + (y % 64), 120 + ((x + y) % 32));
}

int channel(uint32_t colour, int shift)
{
    return static_cast<int>((colour >> shift) & 0xFF);
}

// `seen` is `clear` under the white veil: each channel blended with white at 150 of 255.
bool isVeiled(uint32_t seen, uint32_t clear)
{
    for (int shift : {0, 8, 16}) {
        const int expected = (channel(clear, shift) * 105 + 255 * 150 + 127) / 255;
        if (std::abs(channel(seen, shift) - expected) > 2)
            return false;
    }
    return true;
}

// Reads the screen until `ready` holds (the overlay's drawing has reached the display), at
// most a few seconds; the last picture either way. Wine may hold back drawing done outside
// WM_PAINT until the window's thread has another message to take, so each try posts one
// that the overlay ignores, as a moving mouse would bring one.
PixelGrid screenOnce(HWND overlay, const RECT& area, const std::function<bool(const PixelGrid&)>& ready)
{
    PixelGrid grid = readScreenPixels(area);
    for (int i = 0; i < 150 && !ready(grid); ++i) {
        PostMessageW(overlay, WM_NULL, 0, 0);
        Sleep(20);
        grid = readScreenPixels(area);
    }
    Sleep(100);
    return readScreenPixels(area);
}

// ---------------------------------------------------------------------------------------
// The picture

using CaptureWindowSelection = CaptureTest;

TEST_F(CaptureWindowSelection, PictureIsTheScreenAsItWasWhenTheOverlayAppeared)
{
    const RECT area = {200, 150, 600, 450};
    std::atomic<bool> changed{false};
    std::atomic<bool> repainted{false};
    auto window = showPattern(area, [&](int x, int y) {
        if (!changed)
            return gradientPattern(x, y);
        repainted = true;
        return rgb(250, 10, 10);
    });
    const PixelGrid before = readScreenPixels(area);

    ScreenCapture capture(nullptr);
    const POINT from = {250, 180}, to = {470, 400};
    selectWith(capture, [&](Overlay& overlay, UiRobot&) {
        // The window below the overlay now shows something else.
        changed = true;
        InvalidateRect(window->handle(), nullptr, FALSE);
        for (int i = 0; i < 250 && !repainted; ++i)
            Sleep(20);
        if (!repainted)
            throw RobotFailure("the test window was not repainted");
        overlay.drag(from, to);
    });

    ASSERT_NE(capture.image(), nullptr);
    EXPECT_FALSE(capture.cancelled());
    const PixelGrid picture = imagePixels(*capture.image());
    const PixelGrid expected = part(before, moved({from.x, from.y, to.x, to.y}, -area.left, -area.top));
    ASSERT_EQ(picture.width, expected.width);
    ASSERT_EQ(picture.height, expected.height);
    EXPECT_TRUE(picture.pixels == expected.pixels);
    // The screen itself did change meanwhile.
    pumpMessages(200);
    EXPECT_EQ(readScreenPixels({300, 300, 301, 301}).at(0, 0), rgb(250, 10, 10));
}

TEST_F(CaptureWindowSelection, DraggingEitherWayGivesTheSamePicture)
{
    const RECT area = {300, 200, 700, 500};
    auto window = showPattern(area, gradientPattern);
    const PixelGrid before = readScreenPixels(area);
    const POINT topLeft = {320, 230}, bottomRight = {610, 470};
    const PixelGrid expected =
        part(before, moved({topLeft.x, topLeft.y, bottomRight.x, bottomRight.y}, -area.left, -area.top));

    ScreenCapture downRight(nullptr), upLeft(nullptr);
    selectWith(downRight, [&](Overlay& o, UiRobot&) { o.drag(topLeft, bottomRight); });
    // The screen where the overlay was is painted again before the next snapshot.
    ASSERT_TRUE(window->showAndWait());
    selectWith(upLeft, [&](Overlay& o, UiRobot&) { o.drag(bottomRight, topLeft); });

    for (ScreenCapture* capture : {&downRight, &upLeft}) {
        ASSERT_NE(capture->image(), nullptr);
        const PixelGrid picture = imagePixels(*capture->image());
        ASSERT_EQ(picture.width, expected.width);
        ASSERT_EQ(picture.height, expected.height);
        EXPECT_TRUE(picture.pixels == expected.pixels) << (capture == &upLeft ? "up-left" : "down-right");
    }
}

TEST_F(CaptureWindowSelection, RightButtonEnterOtherKeysAndAStrayReleaseDoNothing)
{
    const RECT area = {300, 200, 700, 500};
    auto window = showPattern(area, gradientPattern);
    const POINT from = {350, 250}, to = {520, 430};
    bool stillOpen = false;

    ScreenCapture capture(nullptr);
    selectWith(capture, [&](Overlay& o, UiRobot&) {
        o.release({400, 400}); // a release without a press here
        o.press(from);
        o.moveTo({600, 300});
        o.rightClick({450, 450});
        for (UINT key : {UINT(VK_RETURN), UINT('A'), UINT(VK_SPACE)}) {
            o.keyDown(key);
            o.keyUp(key);
        }
        o.keyDown(VK_ESCAPE); // Escape counts only when released
        o.settle();
        stillOpen = IsWindow(o.handle()) && IsWindowVisible(o.handle());
        o.moveTo(to);
        o.release(to);
    });

    EXPECT_TRUE(stillOpen);
    EXPECT_FALSE(capture.cancelled());
    ASSERT_NE(capture.image(), nullptr);
    const PixelGrid picture = imagePixels(*capture.image());
    EXPECT_EQ(picture.width, to.x - from.x);
    EXPECT_EQ(picture.height, to.y - from.y);
    EXPECT_EQ(picture.at(0, 0), gradientPattern(from.x - area.left, from.y - area.top));
}

// ---------------------------------------------------------------------------------------
// What the run makes of the outcome

using CaptureWindowOutcome = CaptureTest;

TEST_F(CaptureWindowOutcome, AClickWithoutMovementIsAFailedCaptureNotACancel)
{
    ScreenCapture capture(nullptr);
    selectWith(capture, [](Overlay& o, UiRobot&) {
        o.press({500, 500});
        o.release({500, 500});
    });
    EXPECT_EQ(capture.image(), nullptr);
    EXPECT_FALSE(capture.cancelled());

    MessageBoxInfo box;
    QueueMarker marker;
    UiRobot robot([&](UiRobot& r) {
        Overlay overlay(r, marker);
        overlay.press({500, 500});
        overlay.release({500, 500});
        HWND found = r.waitForWindow(L"#32770", L"Error");
        box = readMessageBox(found);
        pressButton(found, IDOK);
    });
    captureAndDeliver(userDefinedArea, toClipboard);
    EXPECT_EQ(robot.finish(), "");
    EXPECT_EQ(box.text, L"Could not capture the screen");
    EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING));
}

TEST_F(CaptureWindowOutcome, EscapeReleasedWhileDraggingCancelsSilently)
{
    ScreenCapture capture(nullptr);
    selectWith(capture, [](Overlay& o, UiRobot&) {
        o.press({300, 300});
        o.moveTo({600, 500});
        o.keyUp(VK_ESCAPE);
    });
    EXPECT_TRUE(capture.cancelled());
    EXPECT_EQ(capture.image(), nullptr);

    ASSERT_TRUE(putTextOnClipboard(L"kept"));
    bool boxShown = false;
    QueueMarker marker;
    UiRobot robot([&](UiRobot& r) {
        Overlay overlay(r, marker);
        overlay.press({300, 300});
        overlay.moveTo({600, 500});
        overlay.keyUp(VK_ESCAPE);
        r.waitForWindowGone(overlay.handle());
        try {
            HWND box = r.waitForWindow(L"#32770", L"", 1500);
            boxShown = true;
            pressButton(box, IDOK);
        } catch (const RobotFailure&) {
            // no box: as it should be
        }
    });
    captureAndDeliver(userDefinedArea, toClipboard);
    EXPECT_EQ(robot.finish(), "");
    EXPECT_FALSE(boxShown);
    const std::vector<UINT> formats = clipboardFormats();
    EXPECT_NE(std::find(formats.begin(), formats.end(), UINT(CF_UNICODETEXT)), formats.end());
    EXPECT_EQ(std::find(formats.begin(), formats.end(), UINT(CF_BITMAP)), formats.end());
}

// ---------------------------------------------------------------------------------------
// What the user sees

using CaptureWindowLook = CaptureTest;

TEST_F(CaptureWindowLook, BeforeADragTheWholeScreenIsVeiled)
{
    auto window = showPattern({300, 200, 700, 500}, calmPattern);
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    const PixelGrid before = readScreenPixels(screen);
    PixelGrid seen;

    ScreenCapture capture(nullptr);
    selectWith(capture, [&](Overlay& o, UiRobot&) {
        seen = screenOnce(o.handle(), screen,
                          [&](const PixelGrid& g) { return isVeiled(g.at(500, 350), before.at(500, 350)); });
        o.keyUp(VK_ESCAPE);
    });

    ASSERT_EQ(seen.pixels.size(), before.pixels.size());
    int wrong = 0;
    for (size_t i = 0; i < seen.pixels.size(); ++i)
        wrong += isVeiled(seen.pixels[i], before.pixels[i]) ? 0 : 1;
    EXPECT_EQ(wrong, 0) << "pixels not veiled";
}

enum class Look { clear, veiled, outline };

Look lookOf(uint32_t seen, uint32_t clear)
{
    if (seen == clear)
        return Look::clear;
    return isVeiled(seen, clear) ? Look::veiled : Look::outline;
}

// The outline across the selection's right and bottom edges as the screen shows it during
// a drag: its width on each line across, and its colours. On these edges a wider pen lies
// inside the selection, so all of it reaches the screen.
struct Edge {
    std::vector<int> widths;
    std::vector<uint32_t> colours;
};

// Walks across the edge through `edgePixel` (the selection's last column or row) from inside
// to outside: clear, then the outline, then veiled.
void lookAcross(const PixelGrid& seen, const PixelGrid& before, POINT edgePixel, POINT step, Edge& edge)
{
    int width = 0;
    for (int k = -6; k <= 6; ++k) {
        const int x = edgePixel.x + k * step.x, y = edgePixel.y + k * step.y;
        const Look look = lookOf(seen.at(x, y), before.at(x, y));
        if (look == Look::outline) {
            ++width;
            edge.colours.push_back(seen.at(x, y));
        } else if (k < -3) {
            EXPECT_EQ(look, Look::clear) << "inside at " << x << "," << y;
        } else if (k > 2) {
            EXPECT_EQ(look, Look::veiled) << "outside at " << x << "," << y;
        }
    }
    edge.widths.push_back(width);
}

// Drags from `from` down and right to `to` over a calm pattern and checks the look of the
// selection: the snapshot clear inside, veiled outside, an outline between them.
Edge dragAndLook(POINT from, POINT to)
{
    const RECT area = {300, 200, 700, 500};
    auto window = showPattern(area, calmPattern);
    const PixelGrid before = readScreenPixels(area);
    PixelGrid seen;
    const POINT inside = {(from.x + to.x) / 2 - area.left, (from.y + to.y) / 2 - area.top};
    // Clear after the first move, veiled again after the second: seen veiled, both have arrived.
    const POINT leftBehind = {to.x + 20 - area.left, (from.y + to.y) / 2 - area.top};

    // The system reports the real mouse position too (for instance when the overlay appears
    // under it); with the mouse resting where the drag ends, such a report changes nothing.
    SetCursorPos(to.x, to.y);
    pumpMessages(50);
    ScreenCapture capture(nullptr);
    selectWith(capture, [&](Overlay& o, UiRobot&) {
        o.press(from);
        o.moveTo({to.x + 40, to.y - 30});
        o.moveTo(to);
        o.settle();
        seen = screenOnce(o.handle(), area, [&](const PixelGrid& g) {
            return lookOf(g.at(inside.x, inside.y), before.at(inside.x, inside.y)) == Look::clear
                && lookOf(g.at(leftBehind.x, leftBehind.y), before.at(leftBehind.x, leftBehind.y)) == Look::veiled;
        });
        o.keyUp(VK_ESCAPE);
    });

    const RECT selection = moved({from.x, from.y, to.x, to.y}, -area.left, -area.top);
    for (int y = selection.top + 3; y < selection.bottom - 3; y += 7) {
        for (int x = selection.left + 3; x < selection.right - 3; ++x)
            EXPECT_EQ(seen.at(x, y), before.at(x, y)) << "the selection shows the snapshot clear at " << x << "," << y;
    }
    Edge edge;
    for (int y = selection.top + 10; y < selection.bottom - 10; ++y)
        lookAcross(seen, before, {selection.right - 1, y}, {1, 0}, edge);
    for (int x = selection.left + 10; x < selection.right - 10; ++x)
        lookAcross(seen, before, {x, selection.bottom - 1}, {0, 1}, edge);
    return edge;
}

// The outline is `width` pixels wide on every line across the edges.
void expectOutlineWidth(const Edge& edge, int width)
{
    ASSERT_FALSE(edge.widths.empty());
    EXPECT_EQ(*std::min_element(edge.widths.begin(), edge.widths.end()), width);
    EXPECT_EQ(*std::max_element(edge.widths.begin(), edge.widths.end()), width);
}

TEST_F(CaptureWindowLook, DraggingShowsTheSelectionClearWithAThinDottedOutline)
{
    makeProcessDpiAware();
    ASSERT_EQ(screenDpi(), 96) << "this test expects the display at 96 DPI";
    const Edge edge = dragAndLook({400, 260}, {600, 420});
    expectOutlineWidth(edge, 1);
    // Dotted: black dots with gaps between them.
    const auto black = std::count(edge.colours.begin(), edge.colours.end(), rgb(0, 0, 0));
    EXPECT_GT(black, 0);
    EXPECT_LT(black, static_cast<long>(edge.colours.size()));
}

// Run by OutlineIsTwoPixelsWideAt192Dpi in a process of its own, whose display DPI comes
// from PRYXA_EXPECTED_DPI.
TEST_F(CaptureWindowLook, DISABLED_OutlineFollowsTheDpiOfThisProcess)
{
    const char* expected = std::getenv("PRYXA_EXPECTED_DPI");
    ASSERT_NE(expected, nullptr);
    makeProcessDpiAware();
    ASSERT_EQ(screenDpi(), std::atoi(expected));
    expectOutlineWidth(dragAndLook({400, 260}, {600, 420}), screenDpi() / 96);
}

// Wine reads the display's DPI from this value when a process starts.
class DisplayDpiSetting {
public:
    explicit DisplayDpiSetting(DWORD dpi)
    {
        RegCreateKeyExW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                        &key_, nullptr);
        DWORD size = sizeof previous_;
        hadValue_ = RegQueryValueExW(key_, L"LogPixels", nullptr, nullptr, reinterpret_cast<BYTE*>(&previous_),
                                     &size) == ERROR_SUCCESS;
        RegSetValueExW(key_, L"LogPixels", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dpi), sizeof dpi);
    }
    ~DisplayDpiSetting()
    {
        if (hadValue_)
            RegSetValueExW(key_, L"LogPixels", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&previous_),
                           sizeof previous_);
        else
            RegDeleteValueW(key_, L"LogPixels");
        RegCloseKey(key_);
    }
    DisplayDpiSetting(const DisplayDpiSetting&) = delete;
    DisplayDpiSetting& operator=(const DisplayDpiSetting&) = delete;

private:
    HKEY key_ = nullptr;
    DWORD previous_ = 0;
    bool hadValue_ = false;
};

TEST_F(CaptureWindowLook, OutlineIsTwoPixelsWideAt192Dpi)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::string output;
    int exitCode = -1;
    {
        DisplayDpiSetting dpi(192);
        SetEnvironmentVariableW(L"PRYXA_EXPECTED_DPI", L"192");
        exitCode = runProgram(ZString(L"\"") + program + L"\" --gtest_also_run_disabled_tests"
                                  L" --gtest_filter=CaptureWindowLook.DISABLED_OutlineFollowsTheDpiOfThisProcess",
                              output);
        SetEnvironmentVariableW(L"PRYXA_EXPECTED_DPI", nullptr);
    }
    EXPECT_EQ(exitCode, 0) << output;
    EXPECT_NE(output.find("[  PASSED  ] 1 test"), std::string::npos) << output;
}

// ---------------------------------------------------------------------------------------
// Resources

using CaptureWindowResources = CaptureTest;

TEST_F(CaptureWindowResources, GdiObjectsAndWindowsAreBackWhereTheyWereAfterTheOverlayCloses)
{
    auto window = showPattern({300, 200, 700, 500}, gradientPattern);
    const auto selectOnce = [] {
        ScreenCapture capture(nullptr);
        selectWith(capture, [](Overlay& o, UiRobot&) { o.drag({320, 220}, {650, 480}); });
        EXPECT_NE(capture.image(), nullptr);
    };
    selectOnce(); // the first use of GDI+ and of the system's shared objects
    const ResourceCounts before = countResources();
    selectOnce();
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects) << after.describe() << " / before: " << before.describe();
    EXPECT_EQ(after.windows, before.windows);
}

} // namespace
} // namespace screenCapture
