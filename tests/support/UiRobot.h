#pragma once
// Acts as the user, on a background thread, while the test's thread sits in a modal call. A
// wait that times out fails the script and closes the process's visible top-level windows,
// so that the modal call returns and the test fails instead of hanging.

#include <windows.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

struct RobotFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class UiRobot {
public:
    using Script = std::function<void(UiRobot&)>;

    explicit UiRobot(Script script);
    ~UiRobot();
    UiRobot(const UiRobot&) = delete;
    UiRobot& operator=(const UiRobot&) = delete;

    // For the test: waits for the script to end; empty when it succeeded, else why not.
    // Pumps this thread's messages meanwhile: a script that reads the text of this thread's
    // windows gets it by message, and must not wait on a thread that waits on it.
    std::string finish();

    // A visible top-level window of this process (empty: any class or title), else RobotFailure.
    HWND waitForWindow(const std::wstring& className, const std::wstring& title = L"", DWORD timeoutMs = 10000);
    // `what` describes the window in the failure.
    HWND waitForWindow(const std::function<bool(HWND)>& matches, const std::string& what, DWORD timeoutMs = 10000);
    // Throws RobotFailure if `window` still exists after the timeout.
    void waitForWindowGone(HWND window, DWORD timeoutMs = 10000);

private:
    std::string failure_; // before thread_, which writes it
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

struct MessageBoxInfo {
    std::wstring title;
    std::wstring text;
    UINT icon = 0;            // MB_ICONERROR, MB_ICONWARNING, MB_ICONINFORMATION, MB_ICONQUESTION or 0
    std::vector<int> buttons; // IDOK, IDCANCEL, IDRETRY, ... in id order
};

MessageBoxInfo readMessageBox(HWND box);
// Presses the button with this control id, as a click would.
void pressButton(HWND dialog, int controlId);
// The first descendant of `parent` with this class (empty: any) and id (-1: any).
HWND findDescendant(HWND parent, const std::wstring& className, int controlId = -1);
void typeText(HWND edit, const std::wstring& text);
// Presses and releases a key on the keyboard (SendInput), with Shift held if asked; the
// focused window of the foreground window's thread gets it.
void pressKey(WORD key, bool shift = false);
// The window with the keyboard focus in `window`'s thread, asked from any thread.
HWND focusedWindow(HWND window);
// Posts a key's down and up messages to `focus`, the window with the keyboard focus, as the
// keyboard does.
void postKey(HWND focus, UINT virtualKey);
std::wstring windowText(HWND window);
std::wstring windowClass(HWND window);
// Visible top-level windows of this process.
std::vector<HWND> processWindows();

// Dispatch this thread's messages for the time, or until the condition holds.
void pumpMessages(DWORD milliseconds);
bool pumpUntil(const std::function<bool()>& condition, DWORD timeoutMs);
