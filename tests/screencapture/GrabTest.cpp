#include "screencapture/CaptureRun.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/UiRobot.h"

namespace screenCapture {
namespace {

RECT screenRect() { return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}; }

RECT currentWorkArea()
{
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

int widthOf(const RECT& r) { return r.right - r.left; }
int heightOf(const RECT& r) { return r.bottom - r.top; }

// A work area smaller than the screen, so that the two fallbacks can be told apart;
// the previous one is put back afterwards.
class ReservedTaskBar {
public:
    ReservedTaskBar() : previous_(currentWorkArea())
    {
        RECT smaller = screenRect();
        smaller.bottom -= 40;
        SystemParametersInfoW(SPI_SETWORKAREA, 0, &smaller, 0);
    }
    ~ReservedTaskBar() { SystemParametersInfoW(SPI_SETWORKAREA, 0, &previous_, 0); }

private:
    RECT previous_;
};

LRESULT CALLBACK noClientAreaProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const LRESULT result = DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCCALCSIZE) {
        RECT& client = reinterpret_cast<NCCALCSIZE_PARAMS*>(lParam)->rgrc[0];
        client.bottom = client.top;
    }
    return result;
}

// A visible captioned window whose client area has no height.
HWND createWindowWithoutClientArea(const wchar_t* title)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = noClientAreaProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"PryxaTestNoClientArea";
    RegisterClassW(&windowClass);
    return CreateWindowExW(0, windowClass.lpszClassName, title, WS_CAPTION | WS_VISIBLE, 100, 100, 300, 200, nullptr,
                           nullptr, windowClass.hInstance, nullptr);
}

// The part of `grid` at `area` (in grid coordinates) equals the pattern.
void expectPattern(const PixelGrid& grid, const RECT& area, const PixelPattern& pattern)
{
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x)
            ASSERT_EQ(grid.at(x, y), pattern(x - area.left, y - area.top)) << "at " << x << "," << y;
    }
}

using Grab = CaptureTest;

TEST_F(Grab, ScreenModesTakeThePrimaryScreenAndItsWorkArea)
{
    ReservedTaskBar taskBar;
    const RECT patternArea = {300, 200, 500, 350};
    auto window = showPattern(patternArea, gradientPattern);

    for (int mode : {1, 0, 7, -3}) {
        ScreenCapture capture(nullptr);
        capture.grab(static_cast<Mode>(mode));
        ASSERT_NE(capture.image(), nullptr) << mode;
        EXPECT_EQ(capture.image()->GetPixelFormat(), PixelFormat24bppRGB);
        const PixelGrid grid = imagePixels(*capture.image());
        EXPECT_EQ(grid.width, widthOf(screenRect())) << mode;
        EXPECT_EQ(grid.height, heightOf(screenRect())) << mode;
        expectPattern(grid, patternArea, gradientPattern);
        EXPECT_TRUE(capture.title().isEmpty());
    }

    ScreenCapture working(nullptr);
    working.grab(screenClient);
    ASSERT_NE(working.image(), nullptr);
    EXPECT_EQ(static_cast<int>(working.image()->GetHeight()), heightOf(screenRect()) - 40);
    expectPattern(imagePixels(*working.image()), patternArea, gradientPattern);
}

TEST_F(Grab, ActiveWindowIsTheFirstVisibleCaptionedWindow)
{
    const RECT clientArea = {200, 150, 520, 390};
    auto captioned = showPattern(clientArea, gradientPattern, WS_OVERLAPPEDWINDOW, L"Pryxa capture target");
    // A frameless window in front is passed over: it has no caption.
    auto frameless = showPattern({40, 40, 90, 90}, [](int, int) { return rgb(255, 0, 0); });

    RECT windowRect = {};
    GetWindowRect(captioned->handle(), &windowRect);
    ScreenCapture whole(nullptr);
    whole.grab(activeWindow);
    ASSERT_NE(whole.image(), nullptr);
    EXPECT_EQ(whole.title(), ZString(L"Pryxa capture target"));
    EXPECT_EQ(static_cast<int>(whole.image()->GetWidth()), widthOf(windowRect));
    EXPECT_EQ(static_cast<int>(whole.image()->GetHeight()), heightOf(windowRect));

    ScreenCapture client(nullptr);
    client.grab(activeWindowClient);
    ASSERT_NE(client.image(), nullptr);
    EXPECT_EQ(client.title(), ZString(L"Pryxa capture target"));
    const PixelGrid grid = imagePixels(*client.image());
    ASSERT_EQ(grid.width, widthOf(clientArea));
    ASSERT_EQ(grid.height, heightOf(clientArea));
    expectPattern(grid, {0, 0, grid.width, grid.height}, gradientPattern);

    // Minimised, it still has its caption and stays visible to the finder.
    ShowWindow(captioned->handle(), SW_MINIMIZE);
    pumpMessages(100);
    HWND found = nullptr;
    EnumWindows(ScreenCapture::findWindow, reinterpret_cast<LPARAM>(&found));
    EXPECT_EQ(found, captioned->handle());
    ScreenCapture minimised(nullptr);
    minimised.grab(activeWindow);
    EXPECT_EQ(minimised.title(), ZString(L"Pryxa capture target"));
}

TEST_F(Grab, WithoutACaptionedWindowTheTwoWindowModesFallBackDifferently)
{
    ReservedTaskBar taskBar;
    HWND found = nullptr;
    EnumWindows(ScreenCapture::findWindow, reinterpret_cast<LPARAM>(&found));
    ASSERT_EQ(found, nullptr) << "a captioned window is on screen: " << windowText(found);

    ScreenCapture whole(nullptr);
    whole.grab(activeWindow);
    ASSERT_NE(whole.image(), nullptr);
    EXPECT_EQ(static_cast<int>(whole.image()->GetHeight()), heightOf(screenRect())) << "the whole screen";
    EXPECT_TRUE(whole.title().isEmpty());

    ScreenCapture client(nullptr);
    client.grab(activeWindowClient);
    ASSERT_NE(client.image(), nullptr);
    EXPECT_EQ(static_cast<int>(client.image()->GetHeight()), heightOf(screenRect()) - 40) << "the work area";
    EXPECT_TRUE(client.title().isEmpty());
}

TEST_F(Grab, EmptyClientAreaGivesNoImageAndTheUserIsTold)
{
    HWND window = createWindowWithoutClientArea(L"No client");
    ASSERT_NE(window, nullptr);
    pumpMessages(50);
    RECT client = {};
    GetClientRect(window, &client);
    ASSERT_EQ(heightOf(client), 0);

    ScreenCapture capture(nullptr);
    capture.grab(activeWindowClient);
    EXPECT_EQ(capture.image(), nullptr);
    EXPECT_EQ(capture.title(), ZString(L"No client"));

    MessageBoxInfo box;
    UiRobot robot([&](UiRobot& r) {
        HWND found = r.waitForWindow(L"#32770", L"Error");
        box = readMessageBox(found);
        pressButton(found, IDOK);
    });
    captureAndDeliver(activeWindowClient, toClipboard);
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(box.text, L"Could not capture the screen");
    EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING));
    EXPECT_EQ(box.buttons, std::vector<int>{IDOK});
    DestroyWindow(window);
}

TEST_F(Grab, ClipboardBitmapsBecome24BitRgbOfTheSameSize)
{
    const std::vector<uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF, 0x808000};
    auto paletteIndex = [](int x, int y) { return static_cast<uint32_t>((x / 3 + y / 2) % 6); };
    ASSERT_TRUE(putBitmapOnClipboard(createDibSection(37, 21, 8, palette, paletteIndex)));
    ScreenCapture indexed(nullptr);
    indexed.grab(clipboard);
    ASSERT_NE(indexed.image(), nullptr);
    EXPECT_EQ(indexed.image()->GetPixelFormat(), PixelFormat24bppRGB);
    expectPattern(imagePixels(*indexed.image()), {0, 0, 37, 21},
                  [&](int x, int y) { return palette[paletteIndex(x, y)]; });

    // Alpha is dropped; the colour channels stay as they are.
    auto withAlpha = [](int x, int y) { return (0x80u << 24) | gradientPattern(x, y); };
    ASSERT_TRUE(putBitmapOnClipboard(createDibSection(40, 30, 32, {}, withAlpha)));
    ScreenCapture alpha(nullptr);
    alpha.grab(clipboard);
    ASSERT_NE(alpha.image(), nullptr);
    EXPECT_EQ(alpha.image()->GetPixelFormat(), PixelFormat24bppRGB);
    expectPattern(imagePixels(*alpha.image()), {0, 0, 40, 30}, gradientPattern);
}

TEST_F(Grab, ClipboardWithoutABitmapOrHeldElsewhereGivesNoImage)
{
    ASSERT_TRUE(putTextOnClipboard(L"only text"));
    ScreenCapture text(nullptr);
    text.grab(clipboard);
    EXPECT_EQ(text.image(), nullptr);

    ASSERT_TRUE(putBitmapOnClipboard(createDibSection(8, 8, 32, {}, gradientPattern)));
    {
        ClipboardHolder holder;
        ASSERT_TRUE(holder.holding());
        ScreenCapture held(nullptr);
        held.grab(clipboard);
        EXPECT_EQ(held.image(), nullptr);
    }
    ScreenCapture released(nullptr);
    released.grab(clipboard);
    EXPECT_NE(released.image(), nullptr);
}

} // namespace
} // namespace screenCapture
