#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/UiRobot.h"

namespace screenCapture {
namespace {

RECT screenRect() { return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}; }

int widthOf(const RECT& r) { return r.right - r.left; }
int heightOf(const RECT& r) { return r.bottom - r.top; }

// The part of `grid` at `area` (in grid coordinates) equals the pattern.
void expectPattern(const PixelGrid& grid, const RECT& area, const PixelPattern& pattern)
{
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x)
            ASSERT_EQ(grid.at(x, y), pattern(x - area.left, y - area.top)) << "at " << x << "," << y;
    }
}

using Grab = CaptureTest;

// Modes that are not known take the whole screen; so does activeWindow when no captioned
// window is there, while activeWindowClient then takes the work area.
TEST_F(Grab, ScreenModesTakeThePrimaryScreenOrItsWorkArea)
{
    ReservedTaskBar taskBar(screenRect());
    const RECT patternArea = {300, 200, 500, 350};
    auto window = showPattern(patternArea, gradientPattern);
    HWND found = nullptr;
    EnumWindows(ScreenCapture::findWindow, reinterpret_cast<LPARAM>(&found));
    ASSERT_EQ(found, nullptr) << "a captioned window is on screen: " << windowText(found);

    const int screenHeight = heightOf(screenRect());
    const std::pair<int, int> cases[] = {{screen, screenHeight},       {noMode, screenHeight},
                                         {7, screenHeight},            {activeWindow, screenHeight},
                                         {screenClient, screenHeight - 40}, {activeWindowClient, screenHeight - 40}};
    for (const auto& [mode, height] : cases) {
        ScreenCapture capture(nullptr);
        capture.grab(static_cast<Mode>(mode));
        ASSERT_NE(capture.image(), nullptr) << mode;
        EXPECT_EQ(capture.image()->GetPixelFormat(), PixelFormat24bppRGB);
        const PixelGrid grid = imagePixels(*capture.image());
        EXPECT_EQ(grid.width, widthOf(screenRect())) << mode;
        EXPECT_EQ(grid.height, height) << mode;
        expectPattern(grid, patternArea, gradientPattern);
    }
}

TEST_F(Grab, ActiveWindowIsTheFirstVisibleCaptionedWindow)
{
    const RECT clientArea = {200, 150, 520, 390};
    const ZString title(201, L'w'); // longer than a suggested file name may be: read whole all the same
    auto captioned = showPattern(clientArea, gradientPattern, WS_OVERLAPPEDWINDOW, title.c_str());
    // A frameless window in front is passed over: it has no caption.
    auto frameless = showPattern({40, 40, 90, 90}, [](int, int) { return rgb(255, 0, 0); });

    RECT windowRect = {};
    GetWindowRect(captioned->handle(), &windowRect);
    const std::pair<Mode, RECT> cases[] = {{activeWindow, windowRect}, {activeWindowClient, clientArea}};
    for (const auto& [mode, area] : cases) {
        ScreenCapture capture(nullptr);
        capture.grab(mode);
        ASSERT_NE(capture.image(), nullptr) << mode;
        EXPECT_EQ(capture.title(), title);
        const PixelGrid grid = imagePixels(*capture.image());
        ASSERT_EQ(grid.width, widthOf(area)) << mode;
        ASSERT_EQ(grid.height, heightOf(area)) << mode;
        expectPattern(grid,
                      {clientArea.left - area.left, clientArea.top - area.top, clientArea.right - area.left,
                       clientArea.bottom - area.top},
                      gradientPattern);
    }

    // Minimised, it still has its caption and is still the one taken.
    ShowWindow(captioned->handle(), SW_MINIMIZE);
    pumpMessages(100);
    ScreenCapture minimised(nullptr);
    minimised.grab(activeWindow);
    EXPECT_EQ(minimised.title(), title);
}

TEST_F(Grab, EmptyClientAreaGivesNoImage)
{
    TestWindow window({100, 100, 400, 100}, gradientPattern, L"No client", WS_POPUP | WS_CAPTION);
    ShowWindow(window.handle(), SW_SHOW);
    pumpMessages(50);
    RECT client = {};
    GetClientRect(window.handle(), &client);
    ASSERT_EQ(heightOf(client), 0);
    ScreenCapture capture(nullptr);
    capture.grab(activeWindowClient);
    EXPECT_EQ(capture.image(), nullptr);
}

// Alpha is dropped; the colour channels stay as they are.
TEST_F(Grab, ClipboardBitmapBecomes24BitRgbOfTheSameSize)
{
    const auto withAlpha = [](int x, int y) { return (0x80u << 24) | gradientPattern(x, y); };
    ASSERT_TRUE(putBitmapOnClipboard(createDibSection(40, 30, withAlpha)));
    ScreenCapture capture(nullptr);
    capture.grab(clipboard);
    ASSERT_NE(capture.image(), nullptr);
    EXPECT_EQ(capture.image()->GetPixelFormat(), PixelFormat24bppRGB);
    expectPattern(imagePixels(*capture.image()), {0, 0, 40, 30}, gradientPattern);
}

} // namespace
} // namespace screenCapture
