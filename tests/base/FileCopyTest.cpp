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
std::atomic<bool> lastFailIfExists{true};

BOOL WINAPI countingCopy(LPCWSTR source, LPCWSTR destination, BOOL failIfExists)
{
    ++copyCalls;
    lastFailIfExists = failIfExists != FALSE;
    return CopyFileW(source, destination, failIfExists);
}

// Counts the copy calls while it lives.
class CountedCopies {
public:
    CountedCopies() : previous_(replaceCopyFileCall(countingCopy)) { copyCalls = 0; }
    ~CountedCopies() { replaceCopyFileCall(previous_); }
    CountedCopies(const CountedCopies&) = delete;
    CountedCopies& operator=(const CountedCopies&) = delete;

private:
    CopyFileCall previous_;
};

std::string fileContent(const ZString& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::wstring systemText(DWORD code)
{
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   code, LANG_USER_DEFAULT, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
    std::wstring result = text ? text : L"";
    LocalFree(text);
    return result;
}

std::wstring expectedBoxText(DWORD code, const ZString& source, const ZString& destination)
{
    return L"Could not write to file.\n\nErrorCode=" + std::to_wstring(code) + L"\nErrorMsg=" + systemText(code) +
           L"\n\nSource=" + source.c_str() + L"\nDestination=" + destination.c_str();
}

// What the robot saw of each "File copy error" box and how many copy calls had been made
// by then.
struct SeenBox {
    MessageBoxInfo box;
    int callsBefore = 0;
};

} // namespace

TEST(CopyFileWithRetry, CopiesAndOverwrites)
{
    ScratchEnvironment scratch;
    CountedCopies counted;
    const ZString source = scratch.writeFile(L"source.png", "first");
    const ZString destination = scratch.folder() + L"\\copy.png";
    EXPECT_TRUE(copyFileWithRetry(source, destination));
    EXPECT_EQ(fileContent(destination), "first");

    scratch.writeFile(L"source.png", "second, longer");
    EXPECT_TRUE(copyFileWithRetry(source, destination));
    EXPECT_EQ(fileContent(destination), "second, longer");
    EXPECT_EQ(copyCalls, 2) << "one call each when the first succeeds";
    EXPECT_FALSE(lastFailIfExists);
}

TEST(CopyFileWithRetry, AnEmptyOrMissingSourceFailsWithoutABox)
{
    ScratchEnvironment scratch;
    CountedCopies counted;
    const ZString destination = scratch.folder() + L"\\copy.png";
    // A box would block here until the watchdog ends the program.
    EXPECT_FALSE(copyFileWithRetry(ZString(), destination));
    EXPECT_FALSE(copyFileWithRetry(scratch.folder() + L"\\missing.png", destination));
    EXPECT_EQ(copyCalls, 0);
    EXPECT_EQ(GetFileAttributesW(destination.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(CopyFileWithRetry, AnUnwritableDestinationShowsTheErrorAndRetryTriesFiveTimesMore)
{
    ScratchEnvironment scratch;
    CountedCopies counted;
    const ZString source = scratch.writeFile(L"source.png", "data");
    const ZString destination = scratch.writeFile(L"plain", "x") + L"\\copy.png";
    std::vector<SeenBox> seen;
    DWORD retryPressed = 0;
    DWORD secondBoxSeen = 0;
    UiRobot robot([&](UiRobot& r) {
        HWND first = r.waitForWindow(L"#32770", L"File copy error");
        seen.push_back({readMessageBox(first), copyCalls});
        retryPressed = GetTickCount();
        pressButton(first, IDRETRY);
        r.waitForWindowGone(first);
        HWND second = r.waitForWindow(L"#32770", L"File copy error");
        secondBoxSeen = GetTickCount();
        seen.push_back({readMessageBox(second), copyCalls});
        pressButton(second, IDCANCEL);
    });
    EXPECT_FALSE(copyFileWithRetry(source, destination));
    ASSERT_EQ(robot.finish(), "");
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].callsBefore, 5);
    EXPECT_EQ(seen[1].callsBefore, 10);
    EXPECT_EQ(copyCalls, 10) << "Cancel ends without another try";
    EXPECT_GE(secondBoxSeen - retryPressed, 400u) << "four pauses of 100 ms between five tries";
    for (const SeenBox& s : seen) {
        EXPECT_EQ(s.box.title, L"File copy error");
        EXPECT_EQ(s.box.text, expectedBoxText(ERROR_PATH_NOT_FOUND, source, destination));
        EXPECT_EQ(s.box.icon, static_cast<UINT>(MB_ICONERROR));
        EXPECT_EQ(s.box.buttons, (std::vector<int>{IDCANCEL, IDRETRY}));
    }
}

TEST(CopyFileWithRetry, RetrySucceedsOnceTheDestinationIsFree)
{
    ScratchEnvironment scratch;
    CountedCopies counted;
    const ZString source = scratch.writeFile(L"source.png", "new content");
    const ZString destination = scratch.writeFile(L"busy.png", "old");
    HANDLE lock = CreateFileW(destination.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    MessageBoxInfo seen;
    UiRobot robot([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", L"File copy error");
        seen = readMessageBox(box);
        CloseHandle(lock);
        pressButton(box, IDRETRY);
    });
    EXPECT_TRUE(copyFileWithRetry(source, destination));
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(seen.text, expectedBoxText(ERROR_SHARING_VIOLATION, source, destination));
    EXPECT_EQ(copyCalls, 6) << "five failed tries, then the first try after Retry";
    EXPECT_EQ(fileContent(destination), "new content");
}

TEST(CopyFileWithRetry, AnEmptyDestinationFailsEveryTryWithoutCopying)
{
    ScratchEnvironment scratch;
    CountedCopies counted;
    const ZString source = scratch.writeFile(L"source.png", "data");
    MessageBoxInfo seen;
    UiRobot robot([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", L"File copy error");
        seen = readMessageBox(box);
        pressButton(box, IDCANCEL);
    });
    EXPECT_FALSE(copyFileWithRetry(source, ZString()));
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(copyCalls, 0);
    EXPECT_EQ(seen.text, expectedBoxText(ERROR_INVALID_NAME, source, ZString()));
}
