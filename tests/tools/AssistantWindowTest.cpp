#include "base/win/KernelHandle.h"
#include "screencapture/AssistantHandOff.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"
#include "tools/assistant/AssistantWindow.h"
#include "tools/assistant/CommandLine.h"
#include "tools/assistant/Inbox.h"

#include <gtest/gtest.h>

#include <shlwapi.h>

#include <atomic>
#include <memory>

namespace {

constexpr DWORD kLongestHoldMs = 10000;

// The assistant's window in this process, its saving held back until release(): a save that
// ran inside the message would keep SendMessageW waiting until the hold ends.
class AssistantWindowTest : public testing::Test {
protected:
    std::unique_ptr<AssistantWindow> openWindow(UINT idleMs = 60000)
    {
        auto window = std::make_unique<AssistantWindow>(
            [this](const ZString& line) {
                WaitForSingleObject(release_.get(), holdMs);
                inbox.receive(splitArguments(line));
                ++handled;
            },
            idleMs);
        EXPECT_TRUE(window->open());
        return window;
    }
    void release() { SetEvent(release_.get()); }
    // A line for a new file.
    ZString line()
    {
        const ZString file = env.writeFile(ZString::format(L"in\\%d.pdf", ++files), "%PDF");
        return L"-deleteFile -dir \"" + out + L"\" -name Held " + file;
    }

    ScratchEnvironment env;
    const ZString out = env.folder() + L"\\out";
    Inbox inbox{out, env.folder() + L"\\assistant.log", [](const ZString&, const ZString&) {}};
    std::atomic<int> handled{0};
    int files = 0;
    DWORD holdMs = kLongestHoldMs; // how long a line waits for release()

private:
    KernelHandle release_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

bool exists(const ZString& path) { return PathFileExistsW(path.c_str()) != FALSE; }

TEST_F(AssistantWindowTest, AnswersAtOnceAndSavesAfterwards)
{
    const auto window = openWindow();
    ASSERT_EQ(FindWindowW(L"Pryxa_Assistent", nullptr), window->handle());
    EXPECT_TRUE(screenCapture::sendCommandLine(window->handle(), line()));
    EXPECT_EQ(handled, 0) << "the answer came only after the save";
    EXPECT_FALSE(exists(out + L"\\Held.pdf"));

    // Other data is refused and never reaches the saving side.
    COPYDATASTRUCT other = {112, 4, const_cast<wchar_t*>(L"x")};
    EXPECT_EQ(SendMessageW(window->handle(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&other)), FALSE);

    release();
    EXPECT_TRUE(pumpUntil([&] { return handled == 1; }, kLongestHoldMs));
    EXPECT_TRUE(exists(out + L"\\Held.pdf"));
    EXPECT_FALSE(exists(env.folder() + L"\\in\\1.pdf"));
}

TEST_F(AssistantWindowTest, StaysWhileSavingAndClosesWhenIdle)
{
    const auto window = openWindow(50);
    window->receive(line());
    pumpMessages(300); // several idle ticks
    EXPECT_TRUE(IsWindow(window->handle())) << "closed while a file was being saved";
    release();
    EXPECT_TRUE(pumpUntil([&] { return !IsWindow(window->handle()); }, kLongestHoldMs));
    EXPECT_EQ(handled, 1);
}

TEST_F(AssistantWindowTest, LinesStillWaitingAreSavedBeforeTheWindowGoesAndNothingStaysBehind)
{
    holdMs = 50; // nobody releases: each window goes while its first line is held
    openWindow().reset(); // the first one pays for what is set up once
    const ResourceCounts before = countResources();
    for (int i = 0; i < 3; ++i) {
        const auto window = openWindow();
        for (int n = 0; n < 3; ++n)
            screenCapture::sendCommandLine(window->handle(), line());
    }
    EXPECT_EQ(handled, 9);
    EXPECT_EQ(files, 9);
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_TRUE(after == before) << after.describe() << " after, " << before.describe() << " before";
}

} // namespace
