// The file copy with its five tries and the "File copy error" box. The tries are counted
// by putting a counting call in place of CopyFileW.

#include "base/win/FileCopy.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::atomic<int> copyCalls{0};

BOOL WINAPI countingCopy(LPCWSTR source, LPCWSTR destination, BOOL failIfExists)
{
    ++copyCalls;
    return CopyFileW(source, destination, failIfExists);
}

class CopyFileWithRetry : public testing::Test {
protected:
    CopyFileWithRetry() : previous_(replaceCopyFileCall(countingCopy)) { copyCalls = 0; }
    ~CopyFileWithRetry() override { replaceCopyFileCall(previous_); }

    ScratchEnvironment scratch;
    const ZString destination = scratch.folder() + L"\\copy.png";

private:
    CopyFileCall previous_;
};

std::string fileContent(const ZString& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace

TEST_F(CopyFileWithRetry, OverwritesWithOneCall)
{
    scratch.writeFile(L"copy.png", "an older, longer file");
    EXPECT_TRUE(copyFileWithRetry(scratch.writeFile(L"source.png", "new"), destination));
    EXPECT_EQ(fileContent(destination), "new");
    EXPECT_EQ(copyCalls, 1);
}

TEST_F(CopyFileWithRetry, AnEmptyOrMissingSourceFailsWithoutABox)
{
    // A box would block here until the watchdog ends the program.
    EXPECT_FALSE(copyFileWithRetry(ZString(), destination));
    EXPECT_FALSE(copyFileWithRetry(scratch.folder() + L"\\missing.png", destination));
    EXPECT_EQ(copyCalls, 0);
}

TEST_F(CopyFileWithRetry, AnUnwritableDestinationShowsTheErrorRetryTriesFiveTimesMoreCancelGivesFalse)
{
    const ZString source = scratch.writeFile(L"source.png", "data");
    const ZString unwritable = scratch.writeFile(L"plain", "x") + L"\\copy.png";
    std::vector<MessageBoxInfo> boxes;
    std::vector<int> callsBeforeBox;
    UiRobot robot([&](UiRobot& r) {
        for (int button : {IDRETRY, IDCANCEL}) {
            HWND box = r.waitForWindow(L"#32770", L"File copy error");
            boxes.push_back(readMessageBox(box));
            callsBeforeBox.push_back(copyCalls);
            pressButton(box, button);
            r.waitForWindowGone(box);
        }
    });
    EXPECT_FALSE(copyFileWithRetry(source, unwritable));
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(callsBeforeBox, (std::vector<int>{5, 10}));
    EXPECT_EQ(copyCalls, 10) << "Cancel ends without another try";

    wchar_t* systemText = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   ERROR_PATH_NOT_FOUND, LANG_USER_DEFAULT, reinterpret_cast<LPWSTR>(&systemText), 0, nullptr);
    const std::wstring text = L"Could not write to file.\n\nErrorCode=3\nErrorMsg=" +
                              std::wstring(systemText ? systemText : L"") + L"\n\nSource=" + source.c_str() +
                              L"\nDestination=" + unwritable.c_str();
    LocalFree(systemText);
    for (const MessageBoxInfo& box : boxes) {
        EXPECT_EQ(box.text, text);
        EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONERROR));
        EXPECT_EQ(box.buttons, (std::vector<int>{IDCANCEL, IDRETRY}));
    }
}
