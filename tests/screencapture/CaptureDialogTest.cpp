// The capture dialog as the user meets it: capture(0, ...) shows it, it starts from the
// stored choice, "start" stores the choice and runs the capture after the dialog has gone,
// and closing it does nothing. The keyboard alone does all of it too.

#include "companions/language/Language.h"
#include "companions/settings/Settings.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/Delivery.h"
#include "screencapture/ModuleInstance.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/UiRobot.h"

#include <chrono>
#include <functional>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

const uint32_t kUnwritten = 0xDEADBEEF;

std::wstring text(const wchar_t* key) { return lang_getStr(key).c_str(); }

// The dialog's visible child windows, of one class if given, in markup order (the selects:
// mode, then target).
std::vector<HWND> children(HWND dialog, const wchar_t* className = nullptr)
{
    std::vector<HWND> found;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if ((!className || windowClass(child) == className) && IsWindowVisible(child))
            found.push_back(child);
    }
    return found;
}

// What Windows does when the user picks an entry in an open drop-down list.
void choose(HWND combo, const std::wstring& label)
{
    const LRESULT index = SendMessageW(combo, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(label.c_str()));
    if (index < 0)
        throw RobotFailure("no such entry in the list");
    SendMessageW(combo, CB_SETCURSEL, index, 0);
    SendMessageW(GetParent(combo), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(combo), CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
}

// Runs `capture` while a robot waits for the dialog, lets `act` use it, closes it unless
// `act` started the capture, waits until it has gone and then runs `gone`.
void withDialog(const std::function<void()>& capture, const std::function<void(HWND dialog)>& act,
                bool close = true, const std::function<void()>& gone = [] {})
{
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = r.waitForWindow(
            [](HWND w) { return windowClass(w) == L"XhtmlFrameView" && windowText(w) == text(L"screen-capture/capture-screen"); },
            "the capture dialog");
        act(dialog);
        if (close)
            PostMessageW(dialog, WM_CLOSE, 0, 0);
        r.waitForWindowGone(dialog);
        gone();
    });
    capture();
    EXPECT_EQ(robot.finish(), "");
}

// The run in this program, so that its seams can be used; the markup and images are the
// module's resources.
struct InThisProgram {
    InThisProgram() { screenCapture::setModuleInstance(GetModuleHandleW(L"screencapture.dll")); }
    ~InThisProgram() { screenCapture::setModuleInstance(nullptr); }
};

using CaptureDialog = CaptureTest;

// Closing the dialog after changing the choice captures nothing and stores nothing.
TEST_F(CaptureDialog, OpensWithTheStoredChoiceOrTheMarkupsDefaultsAndClosingChangesNothing)
{
    const std::wstring area = text(L"screen-capture/mode/user-defined-area");
    const std::wstring pdf = text(L"screen-capture/target/print-on-pdf-printer");
    const struct {
        const char* what;
        uint32_t mode; // kUnwritten: nothing stored
        uint32_t target;
        std::wstring shownMode, shownTarget;
    } cases[] = {
        {"first use", kUnwritten, kUnwritten, area, pdf},
        {"the clipboard mode has no entry", 6, 1, area, text(L"screen-capture/target/copy-to-clipboard")},
        {"a stored choice", 4, 3, text(L"screen-capture/mode/active-window-content"),
         text(L"screen-capture/target/open-with-default-image-editor")},
    };
    for (const auto& c : cases) {
        if (c.mode != kUnwritten) {
            ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastMode", c.mode));
            ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastTarget", c.target));
        }
        std::vector<std::wstring> shown, afterwards;
        withDialog([] { screenCapture::capture(screenCapture::noMode, screenCapture::file); },
                   [&](HWND dialog) {
                       for (HWND combo : children(dialog, L"ComboBox"))
                           shown.push_back(windowText(combo)); // a drop-down list's text is its selection
                       choose(children(dialog, L"ComboBox").at(0), text(L"screen-capture/mode/screen"));
                   },
                   true, [&] {
                       Sleep(400); // a capture would have begun by now
                       for (HWND window : processWindows())
                           afterwards.push_back(windowClass(window) + L" " + windowText(window));
                   });
        EXPECT_EQ(shown, (std::vector<std::wstring>{c.shownMode, c.shownTarget})) << c.what;
        EXPECT_TRUE(afterwards.empty()) << c.what << ": no message box, overlay or other window";
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), c.mode) << c.what;
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), c.target) << c.what;
    }
}

// The tray note of the clipboard target, seen through the module's seam: when it came.
std::vector<Clock::time_point> notes;

TEST_F(CaptureDialog, StartStoresTheChoiceAndCapturesAfterTheDialogHasGone)
{
    InThisProgram run;
    const screenCapture::TrayNote kept = screenCapture::trayNote;
    screenCapture::trayNote = [](const ZString&, const ZString&) { notes.push_back(Clock::now()); };
    notes.clear();
    Clock::time_point gone;
    withDialog([] { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); },
               [](HWND dialog) {
                   const std::vector<HWND> lists = children(dialog, L"ComboBox");
                   choose(lists.at(0), text(L"screen-capture/mode/screen"));
                   choose(lists.at(1), text(L"screen-capture/target/copy-to-clipboard"));
                   const std::vector<HWND> buttons = children(dialog, L"Button");
                   if (buttons.size() != 1 || windowText(buttons[0]) != text(L"screen-capture/start"))
                       throw RobotFailure("no start button");
                   pressButton(dialog, GetDlgCtrlID(buttons[0]));
               },
               false, [&] { gone = Clock::now(); });
    screenCapture::trayNote = kept;
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), 1u);
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), 1u);
    ASSERT_EQ(notes.size(), 1u) << "the screen went to the clipboard";
    EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(notes[0] - gone).count(), 250);
}

// Presses a key in the dialog (from the robot) and waits until `done` holds.
void press(WORD key, const std::function<bool()>& done, const std::string& what, bool shift = false)
{
    pressKey(key, shift);
    if (!pumpUntil(done, 5000))
        throw RobotFailure("after a key press: " + what);
}

// The keyboard alone: the focus starts on the mode list, the button is the default, Tab and
// Shift+Tab cycle; an open list keeps Enter (which keeps the choice, here "screen") and Escape;
// Down on the target list chooses the clipboard; then the case's Tabs and its last key.
TEST_F(CaptureDialog, KeysChooseCycleAndStartFromAnyControlWithEnterOrCloseWithEscape)
{
    InThisProgram run;
    const screenCapture::TrayNote kept = screenCapture::trayNote;
    screenCapture::trayNote = [](const ZString&, const ZString&) {};
    const struct {
        const char* what;
        int tabs;
        WORD last;
    } cases[] = {{"Enter on the target list", 0, VK_RETURN},
                 {"Enter on the button", 1, VK_RETURN},
                 {"Enter on the mode list", 2, VK_RETURN},
                 {"Escape", 1, VK_ESCAPE}};
    for (const auto& c : cases) {
        ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastMode", 5)); // the markup's first choices
        ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastTarget", 2));
        ASSERT_TRUE(putTextOnClipboard(L"before"));
        std::vector<std::wstring> afterwards;
        withDialog([] { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); },
                   [&](HWND dialog) {
                       const std::vector<HWND> lists = children(dialog, L"ComboBox");
                       const std::vector<HWND> buttons = children(dialog, L"Button");
                       const auto focusOn = [&](HWND on) { return [=] { return focusedWindow(dialog) == on; }; };
                       if (!pumpUntil(focusOn(lists.at(0)), 5000) || buttons.size() != 1
                           || !(SendMessageW(buttons[0], WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON))
                           throw RobotFailure("no focus on the mode list, or no default button");
                       for (HWND next : {lists[1], buttons[0], lists[0]})
                           press(VK_TAB, focusOn(next), "Tab");
                       for (HWND previous : {buttons[0], lists[1], lists[0]})
                           press(VK_TAB, focusOn(previous), "Shift+Tab", true);
                       const auto open = [&] { return SendMessageW(lists[0], CB_GETDROPPEDSTATE, 0, 0) != 0; };
                       const std::wstring screen = text(L"screen-capture/mode/screen");
                       press(VK_F4, open, "the mode list opens");
                       press(VK_DOWN, [&] { return windowText(lists[0]) == screen; }, "screen chosen");
                       press(VK_RETURN, [&] { return !open(); }, "Enter closes the list");
                       press(VK_F4, open, "the dialog is still there");
                       press(VK_ESCAPE, [&] { return !open(); }, "Escape closes the list");
                       press(VK_TAB, focusOn(lists[1]), "the dialog is still there");
                       const std::wstring clipboard = text(L"screen-capture/target/copy-to-clipboard");
                       press(VK_DOWN, [&] { return windowText(lists[1]) == clipboard; }, "clipboard chosen");
                       for (int i = 0; i < c.tabs; ++i)
                           pressKey(VK_TAB);
                       pressKey(c.last);
                   },
                   false, [&] {
                       Sleep(400); // the capture has begun by now
                       for (HWND window : processWindows())
                           afterwards.push_back(windowClass(window) + L" " + windowText(window));
                   });
        const bool started = c.last == VK_RETURN;
        EXPECT_TRUE(afterwards.empty()) << c.what << ": no message box, overlay or other window";
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", 0), started ? 1u : 5u) << c.what;
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", 0), started ? 1u : 2u) << c.what;
        EXPECT_EQ(clipboardFormats().front(), static_cast<UINT>(started ? CF_BITMAP : CF_UNICODETEXT)) << c.what;
    }
    screenCapture::trayNote = kept;
}

} // namespace
