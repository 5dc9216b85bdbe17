// The test kit itself where its faults would let tests pass that should fail.

#include "base/win/GdiHandles.h"
#include "base/win/KernelHandle.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
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

// While the test's thread waits in finish(), a failing script can still read the text of
// that thread's windows, which comes by message, and so ends instead of hanging.
TEST(UiRobot, FinishAnswersTheScriptWhileItWaits)
{
    HWND window = CreateWindowExW(0, L"STATIC", L"Shown by the test", WS_POPUP | WS_VISIBLE, 0, 0, 10, 10, nullptr,
                                  nullptr, nullptr, nullptr);
    UiRobot robot([](UiRobot& r) { r.waitForWindow(L"#32770", L"A title nobody uses", 300); });
    const std::string failure = robot.finish();
    DestroyWindow(window);
    EXPECT_NE(failure.find("Shown by the test"), std::string::npos) << failure;
}

// What a test points elsewhere is put back, so that tests do not depend on each other.
TEST(ScratchEnvironment, PutsBackTheTemporaryFolderVariablesAndTheCurrentFolder)
{
    const auto state = [] {
        std::wstring text;
        for (const wchar_t* name : {L"TMP", L"TEMP", L"TMPDIR"}) {
            wchar_t value[1024] = {};
            text += name + std::wstring(GetEnvironmentVariableW(name, value, 1024) ? value : L"(unset)") + L";";
        }
        wchar_t folder[MAX_PATH] = {};
        GetCurrentDirectoryW(MAX_PATH, folder);
        return text + folder;
    };
    const std::wstring before = state();
    {
        ScratchEnvironment env;
        env.setTempVariables(L"C:\\a", ZString(), L"C:\\c");
        ASSERT_TRUE(env.useCurrentFolder(env.folder()));
        ASSERT_NE(state(), before);
    }
    EXPECT_EQ(state(), before);
}

} // namespace
