// The test kit itself where its faults would let tests pass that should fail. Reading
// message boxes is checked by every test that compares a box with what it expects.

#include "base/win/GdiHandles.h"
#include "base/win/KernelHandle.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/TestPixels.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

TEST(ResourceCounters, SeeGdiObjectsHandlesAndWindowsComeAndGo)
{
    // Creates and frees GDI objects, kernel handles and windows; `during` sees them all live.
    const auto exercise = [](const std::function<void()>& during) {
        std::vector<BitmapHandle> bitmaps;
        for (int i = 0; i < 10; ++i)
            bitmaps.emplace_back(CreateBitmap(4, 4, 1, 32, nullptr));
        PenHandle pen(CreatePen(PS_DOT, 1, 0));
        std::vector<KernelHandle> events;
        for (int i = 0; i < 5; ++i)
            events.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, parent, nullptr, nullptr, nullptr);
        HWND messageOnly = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        during();
        DestroyWindow(parent);
        DestroyWindow(messageOnly);
    };
    // The first round pays for what a process sets up once (DC caches, desktop handles).
    exercise([] {});
    const ResourceCounts before = countResources();
    ASSERT_GE(before.gdiObjects, 0);
    ASSERT_GT(before.kernelHandles, 0);
    exercise([&] {
        const ResourceCounts during = countResources();
        EXPECT_EQ(during.gdiObjects, before.gdiObjects + 11);
        EXPECT_EQ(during.kernelHandles, before.kernelHandles + 5);
        EXPECT_EQ(during.windows, before.windows + 3);
    });
    EXPECT_EQ(countResourcesSettled(before).describe(), before.describe());
}

// A failed script must reach the test: else a test whose box never came would pass.
TEST(UiRobot, TimeoutFailsTheScriptAndUnblocksTheModalCall)
{
    UiRobot robot([](UiRobot& r) { r.waitForWindow(L"#32770", L"A title nobody uses", 300); });
    MessageBoxW(nullptr, L"Blocking", L"Blocking box", MB_OK);
    const std::string failure = robot.finish();
    EXPECT_NE(failure.find("no window of class \"#32770\" titled \"A title nobody uses\""), std::string::npos) << failure;
    EXPECT_NE(failure.find("Blocking box"), std::string::npos) << "lists what was visible: " << failure;
}

TEST(TestWindow, ShowsItsPatternOnScreen)
{
    const RECT area = {100, 120, 164, 168};
    auto pattern = [](int x, int y) { return rgb(x * 4, y * 5, (x + y) % 2 ? 255 : 0); };
    TestWindow window(area, pattern);
    ASSERT_TRUE(window.showAndWait());
    const PixelGrid seen = readScreenPixels(area);
    ASSERT_EQ(seen.width, 64);
    ASSERT_EQ(seen.height, 48);
    for (int y = 0; y < seen.height; ++y) {
        for (int x = 0; x < seen.width; ++x)
            ASSERT_EQ(seen.at(x, y), pattern(x, y)) << x << "," << y;
    }
}

} // namespace
