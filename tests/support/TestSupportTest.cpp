// The test harness itself: a counter that cannot see a leak, or a robot that cannot read
// a message box, would make every test built on it worthless.

#include "base/win/GdiHandles.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/TestPixels.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

// Creates and frees GDI objects, kernel handles and windows; `during` sees them all live.
void exerciseResources(const std::function<void()>& during)
{
    std::vector<BitmapHandle> bitmaps;
    for (int i = 0; i < 10; ++i)
        bitmaps.emplace_back(CreateBitmap(4, 4, 1, 32, nullptr));
    PenHandle pen(CreatePen(PS_DOT, 1, 0));
    std::vector<HANDLE> events;
    for (int i = 0; i < 5; ++i)
        events.push_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    HWND parent = CreateWindowExW(0, L"STATIC", L"parent", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    CreateWindowExW(0, L"STATIC", L"child", WS_CHILD, 0, 0, 5, 5, parent, nullptr, nullptr, nullptr);
    HWND messageOnly = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    during();
    DestroyWindow(parent);
    DestroyWindow(messageOnly);
    for (HANDLE event : events)
        CloseHandle(event);
}

TEST(ResourceCounters, SeeGdiObjectsHandlesAndWindowsComeAndGo)
{
    // The first round pays for what a process sets up once (DC caches, desktop handles).
    exerciseResources([] {});
    const ResourceCounts before = countResources();
    ASSERT_GE(before.gdiObjects, 0);
    ASSERT_GT(before.kernelHandles, 0);
    exerciseResources([&] {
        EXPECT_EQ(countGdiObjects(), before.gdiObjects + 11);
        EXPECT_EQ(countKernelHandles(), before.kernelHandles + 5);
        EXPECT_EQ(countWindows(), before.windows + 3);
    });
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects) << after.describe();
    EXPECT_EQ(after.kernelHandles, before.kernelHandles) << after.describe();
    EXPECT_EQ(after.windows, before.windows) << after.describe();
}

TEST(UiRobot, ReadsAMessageBoxAndPressesItsButton)
{
    MessageBoxInfo seen;
    UiRobot robot([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", L"File copy error");
        seen = readMessageBox(box);
        pressButton(box, IDRETRY);
    });
    const int answer = MessageBoxW(nullptr, L"Could not write to file.", L"File copy error", MB_RETRYCANCEL | MB_ICONERROR);
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(answer, IDRETRY);
    EXPECT_EQ(seen.title, L"File copy error");
    EXPECT_EQ(seen.text, L"Could not write to file.");
    EXPECT_EQ(seen.icon, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(seen.buttons, (std::vector<int>{IDCANCEL, IDRETRY}));

    UiRobot warning([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", L"Error");
        seen = readMessageBox(box);
        pressButton(box, IDOK);
    });
    MessageBoxW(nullptr, L"Could not capture the screen", L"Error", MB_OK | MB_ICONWARNING);
    ASSERT_EQ(warning.finish(), "");
    EXPECT_EQ(seen.icon, static_cast<UINT>(MB_ICONWARNING));
    EXPECT_EQ(seen.buttons, std::vector<int>{IDOK});
}

TEST(UiRobot, TimeoutFailsTheScriptAndUnblocksTheModalCall)
{
    UiRobot robot([](UiRobot& r) { r.waitForWindow(L"#32770", L"A title nobody uses", 300); });
    const DWORD start = GetTickCount();
    MessageBoxW(nullptr, L"Blocking", L"Blocking box", MB_OK);
    const std::string failure = robot.finish();
    EXPECT_NE(failure.find("no window of class \"#32770\" titled \"A title nobody uses\""), std::string::npos) << failure;
    EXPECT_NE(failure.find("Blocking box"), std::string::npos) << "lists what was visible: " << failure;
    EXPECT_LT(GetTickCount() - start, 5000u);
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
