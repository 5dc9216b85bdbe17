// The test kit itself where its faults would let tests pass that should fail.

#include "base/win/GdiHandles.h"
#include "base/win/KernelHandle.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace {

// The leak checks compare counts: each kind must be seen coming and going.
TEST(ResourceCounters, SeeAGdiObjectAHandleAndWindowsComeAndGo)
{
    const auto exercise = [](const std::function<void()>& during) {
        BitmapHandle bitmap(CreateBitmap(4, 4, 1, 32, nullptr));
        KernelHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, parent, nullptr, nullptr, nullptr);
        HWND messageOnly = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        during();
        DestroyWindow(parent);
        DestroyWindow(messageOnly);
    };
    exercise([] {}); // pays for what a process sets up once (DC caches, desktop handles)
    const ResourceCounts before = countResources();
    exercise([&] {
        const ResourceCounts expected{before.gdiObjects + 1, before.kernelHandles + 1, before.windows + 3};
        EXPECT_EQ(countResources().describe(), expected.describe()) << "-1: unreadable";
    });
    EXPECT_EQ(countResourcesSettled(before).describe(), before.describe());
}

TEST(ResourceCounters, SeeAThreadComeAndGo)
{
    const int before = countThreads();
    ASSERT_GT(before, 0);
    KernelHandle release(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread waiting([&] { WaitForSingleObject(release.get(), INFINITE); });
    EXPECT_EQ(countThreads(), before + 1);
    SetEvent(release.get());
    waiting.join();
    EXPECT_EQ(countThreadsSettled(before), before);
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

} // namespace
