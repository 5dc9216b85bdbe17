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

bool dropped(HWND combo)
{
    return SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0) != 0;
}

// The size of the bitmap on the clipboard; 0 x 0 without one.
SIZE clipboardBitmapSize()
{
    BITMAP bitmap = {};
    if (OpenClipboard(nullptr)) {
        if (HANDLE data = GetClipboardData(CF_BITMAP))
            GetObjectW(data, sizeof bitmap, &bitmap);
        CloseClipboard();
    }
    return SIZE{bitmap.bmWidth, bitmap.bmHeight};
}

// From the mode list at the start: Down chooses "screen", Tab, Down chooses the clipboard,
// then Tab as often as the case says before Enter.
TEST_F(CaptureDialog, ArrowsChooseAndEnterStartsTheCaptureWhicheverControlHasTheFocus)
{
    InThisProgram run;
    const screenCapture::TrayNote kept = screenCapture::trayNote;
    screenCapture::trayNote = [](const ZString&, const ZString&) {};
    const struct {
        const char* focused;
        int tabs;
    } cases[] = {{"the target list", 0}, {"the button", 1}, {"the mode list", 2}};
    for (const auto& c : cases) {
        // The markup's own first choices, so that the values stored afterwards are news.
        ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastMode", 5));
        ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastTarget", 2));
        ASSERT_TRUE(putTextOnClipboard(L"before"));
        withDialog([] { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); },
                   [&](HWND dialog) {
                       const std::vector<HWND> lists = children(dialog, L"ComboBox");
                       if (!pumpUntil([&] { return focusedWindow(dialog) == lists.at(0); }, 5000))
                           throw RobotFailure("the mode list has no focus");
                       const std::wstring screen = text(L"screen-capture/mode/screen");
                       press(VK_DOWN, [&] { return windowText(lists[0]) == screen; }, "screen chosen");
                       press(VK_TAB, [&] { return focusedWindow(dialog) == lists[1]; }, "on the target list");
                       const std::wstring clipboard = text(L"screen-capture/target/copy-to-clipboard");
                       press(VK_DOWN, [&] { return windowText(lists[1]) == clipboard; }, "clipboard chosen");
                       for (int i = 0; i < c.tabs; ++i)
                           pressKey(VK_TAB);
                       pressKey(VK_RETURN);
                   },
                   false);
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), 1u) << c.focused;
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), 1u) << c.focused;
        const SIZE picture = clipboardBitmapSize();
        EXPECT_EQ(picture.cx, GetSystemMetrics(SM_CXSCREEN)) << c.focused << ": the screen is on the clipboard";
        EXPECT_EQ(picture.cy, GetSystemMetrics(SM_CYSCREEN)) << c.focused;
    }
    screenCapture::trayNote = kept;
}

// An open list keeps Enter and Escape for itself; Escape on the closed lists then closes the
// dialog, and the choice made meanwhile is neither stored nor captured.
TEST_F(CaptureDialog, TabCyclesAndEscapeClosesButAnOpenListKeepsEnterAndEscape)
{
    ASSERT_TRUE(putTextOnClipboard(L"before"));
    std::vector<std::wstring> afterwards;
    withDialog([] { screenCapture::capture(screenCapture::noMode, screenCapture::toClipboard); },
               [&](HWND dialog) {
                   const std::vector<HWND> lists = children(dialog, L"ComboBox");
                   const std::vector<HWND> buttons = children(dialog, L"Button");
                   if (!pumpUntil([&] { return focusedWindow(dialog) == lists.at(0); }, 5000))
                       throw RobotFailure("the mode list has no focus");
                   if (buttons.size() != 1 || !(SendMessageW(buttons[0], WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON))
                       throw RobotFailure("the start button is not the default button");
                   const struct {
                       bool shift;
                       HWND focused;
                   } cycle[] = {{false, lists[1]}, {false, buttons[0]}, {false, lists[0]},
                                {true, buttons[0]}, {true, lists[1]},   {true, lists[0]}};
                   for (const auto& step : cycle)
                       press(VK_TAB, [&] { return focusedWindow(dialog) == step.focused; }, "Tab order",
                             step.shift);

                   const std::wstring screen = text(L"screen-capture/mode/screen");
                   press(VK_F4, [&] { return dropped(lists[0]); }, "the mode list open");
                   press(VK_DOWN, [&] { return windowText(lists[0]) == screen; }, "screen chosen");
                   press(VK_RETURN, [&] { return !dropped(lists[0]); }, "Enter closes the list");
                   press(VK_F4, [&] { return dropped(lists[0]); }, "the mode list open again");
                   press(VK_ESCAPE, [&] { return !dropped(lists[0]); }, "Escape closes the list");
                   // Keys are handled in order, so the dialog would be gone by now.
                   press(VK_TAB, [&] { return focusedWindow(dialog) == lists[1]; }, "still open");
                   if (windowText(lists[0]) != screen)
                       throw RobotFailure("the choice made in the open list was not kept");
                   pressKey(VK_ESCAPE);
               },
               false, [&] {
                   Sleep(400); // a capture would have begun by now
                   for (HWND window : processWindows())
                       afterwards.push_back(windowClass(window) + L" " + windowText(window));
               });
    EXPECT_TRUE(afterwards.empty()) << "no message box, overlay or other window";
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), kUnwritten);
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), kUnwritten);
    EXPECT_EQ(clipboardFormats().front(), static_cast<UINT>(CF_UNICODETEXT)) << "nothing captured";
}

} // namespace
