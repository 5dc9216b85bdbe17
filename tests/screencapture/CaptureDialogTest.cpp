// The capture dialog as the user meets it: capture(0, ...) shows it, it starts from the
// stored choice, "start" (by mouse or keyboard) stores the choice and runs the capture after
// the dialog has gone, and closing it does nothing. With the feature switched on, the in-app
// page lies over the bottom bar, and when it cannot show a page the user sees the bar as without it.

#include "base/win/RegistryKey.h"
#include "browser/ComObject.h"
#include "browser/InAppAddress.h"
#include "companions/language/Language.h"
#include "companions/settings/Settings.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/Delivery.h"
#include "screencapture/ModuleInstance.h"
#include "screencapture/ui/ScreenCaptureUi.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"
#include "xhtml/win/ModuleResourceLoader.h"

#include <chrono>
#include <functional>
#include <regex>
#include <utility>
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
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        if ((!className || windowClass(child) == className) && IsWindowVisible(child))
            found.push_back(child);
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

void runInThisProgram() { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); }

// Runs `capture` while a robot waits for the dialog, lets `act` use it, closes it unless
// `act` started the capture, waits until it has gone and then runs `gone`.
void withDialog(const std::function<void(HWND dialog)>& act, bool close = true, const std::function<void()>& gone = [] {},
                const std::function<void()>& capture = runInThisProgram)
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

// The windows of this process a moment after the dialog has gone, when a capture has begun.
size_t windowsAMomentLater()
{
    Sleep(400);
    return processWindows().size();
}

// The tray note of the clipboard target, seen through the module's seam: when it came.
std::vector<Clock::time_point> notes;

// The run in this program, so that its seams can be used; the markup and images are the
// module's resources. The in-app page, once switched on, loads from a port of this machine
// that nobody listens on, so that no page can be shown (as when offline).
class CaptureDialog : public CaptureTest {
protected:
    CaptureDialog()
    {
        screenCapture::setModuleInstance(GetModuleHandleW(L"screencapture.dll"));
        browser::setInAppEndpoint(L"http://127.0.0.1:1");
    }
    ~CaptureDialog() override
    {
        browser::setInAppEndpoint(ZString());
        screenCapture::trayNote = kept;
        screenCapture::setModuleInstance(nullptr);
    }
    const screenCapture::TrayNote kept =
        std::exchange(screenCapture::trayNote, [](const ZString&, const ZString&) { notes.push_back(Clock::now()); });
};

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
        std::vector<std::wstring> shown;
        size_t afterwards = 0;
        withDialog(
            [&](HWND dialog) {
                for (HWND combo : children(dialog, L"ComboBox"))
                    shown.push_back(windowText(combo)); // a drop-down list's text is its selection
                choose(children(dialog, L"ComboBox").at(0), text(L"screen-capture/mode/screen"));
            },
            true, [&] { afterwards = windowsAMomentLater(); },
            [] { screenCapture::capture(screenCapture::noMode, screenCapture::file); });
        EXPECT_EQ(shown, (std::vector<std::wstring>{c.shownMode, c.shownTarget})) << c.what;
        EXPECT_EQ(afterwards, 0u) << c.what << ": no message box, overlay or other window";
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), c.mode) << c.what;
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), c.target) << c.what;
    }
}

// Presses a key in the dialog (from the robot) and waits until `done` holds.
void press(WORD key, const std::function<bool()>& done, const std::string& what, bool shift = false)
{
    pressKey(key, shift);
    if (!pumpUntil(done, 5000))
        throw RobotFailure("after a key press: " + what);
}

// The mouse: the lists' entries and the start button. The keyboard alone: the focus starts
// on the mode list, the button is the default, Tab and Shift+Tab cycle; an open list keeps
// Enter (which keeps the choice, here "screen") and Escape; Down on the target list chooses
// the clipboard; then the case's Tabs and its last key. Either way "start" stores the choice
// and the screen goes to the clipboard after the dialog has gone.
TEST_F(CaptureDialog, MouseOrKeysChooseAndStartFromAnyControlOrCloseWithEscape)
{
    const struct {
        const char* what;
        int tabs;
        WORD last; // 0: the mouse alone
    } cases[] = {{"the mouse", 0, 0},
                 {"Enter on the target list", 0, VK_RETURN},
                 {"Enter on the button", 1, VK_RETURN},
                 {"Enter on the mode list", 2, VK_RETURN},
                 {"Escape", 1, VK_ESCAPE}};
    const std::wstring screen = text(L"screen-capture/mode/screen"), clipboard = text(L"screen-capture/target/copy-to-clipboard");
    for (const auto& c : cases) {
        ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastMode", 5)); // the markup's first choices
        ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastTarget", 2));
        ASSERT_TRUE(putTextOnClipboard(L"before"));
        notes.clear();
        size_t afterwards = 0;
        Clock::time_point gone;
        withDialog(
            [&](HWND dialog) {
                const std::vector<HWND> lists = children(dialog, L"ComboBox"), buttons = children(dialog, L"Button");
                const auto focusOn = [&](HWND on) { return [=] { return focusedWindow(dialog) == on; }; };
                if (!pumpUntil(focusOn(lists.at(0)), 5000) || buttons.size() != 1
                    || windowText(buttons[0]) != text(L"screen-capture/start")
                    || !(SendMessageW(buttons[0], WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON))
                    throw RobotFailure("no focus on the mode list, or no default start button");
                if (!c.last) {
                    choose(lists[0], screen);
                    choose(lists[1], clipboard);
                    return pressButton(dialog, GetDlgCtrlID(buttons[0]));
                }
                for (HWND next : {lists[1], buttons[0], lists[0]})
                    press(VK_TAB, focusOn(next), "Tab");
                for (HWND previous : {buttons[0], lists[1], lists[0]})
                    press(VK_TAB, focusOn(previous), "Shift+Tab", true);
                const auto open = [&] { return SendMessageW(lists[0], CB_GETDROPPEDSTATE, 0, 0) != 0; };
                press(VK_F4, open, "the mode list opens");
                press(VK_DOWN, [&] { return windowText(lists[0]) == screen; }, "screen chosen");
                press(VK_RETURN, [&] { return !open(); }, "Enter closes the list");
                press(VK_F4, open, "the dialog is still there");
                press(VK_ESCAPE, [&] { return !open(); }, "Escape closes the list");
                press(VK_TAB, focusOn(lists[1]), "the dialog is still there");
                press(VK_DOWN, [&] { return windowText(lists[1]) == clipboard; }, "clipboard chosen");
                for (int i = 0; i < c.tabs; ++i)
                    pressKey(VK_TAB);
                pressKey(c.last);
            },
            false, [&] {
                gone = Clock::now();
                afterwards = windowsAMomentLater();
            });
        const bool started = c.last != VK_ESCAPE;
        EXPECT_EQ(afterwards, 0u) << c.what << ": no message box, overlay or other window";
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", 0), started ? 1u : 5u) << c.what;
        EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", 0), started ? 1u : 2u) << c.what;
        EXPECT_EQ(clipboardFormats().front(), static_cast<UINT>(started ? CF_BITMAP : CF_UNICODETEXT)) << c.what;
        ASSERT_EQ(notes.size(), started ? 1u : 0u) << c.what;
        if (started) {
            EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(notes[0] - gone).count(), 250) << c.what;
        }
    }
}

HWND browserWindow(HWND dialog) { return FindWindowExW(dialog, nullptr, L"PryxaEmbeddedBrowser", nullptr); }

// Waits until the browser in the dialog has made its control (its first child window).
void waitForControl(HWND dialog)
{
    if (!pumpUntil([&] { return GetWindow(browserWindow(dialog), GW_CHILD) != nullptr; }, 10000))
        throw RobotFailure("the browser made no control");
}

// Whether the dialog held an OLE session while it was up, seen by a thread timer from inside
// its modal loop. (The thread's apartment cannot tell: Wine's input method initialises COM.)
bool oleWhileDialog = false;
void CALLBACK lookAtOle(HWND, UINT, UINT_PTR, DWORD)
{
    oleWhileDialog |= FindWindowW(L"XhtmlFrameView", nullptr) && screenCapture::ScreenCaptureUi::oleSessions() > 0;
}

bool comOnThisThread()
{
    APTTYPE type;
    APTTYPEQUALIFIER qualifier;
    return SUCCEEDED(CoGetApartmentType(&type, &qualifier));
}

TEST_F(CaptureDialog, InAppPageIsOnlyThereWhenSwitchedOnAndNeverInTheUsersWay)
{
    const struct {
        const char* what;
        bool featureOn, noEmbeddedBrowser;
        bool page; // a browser window (hidden) and OLE while the dialog is up
    } cases[] = {
        {"not switched on", false, false, false},
        {"switched on", true, false, true},
        {"switched on, but NoEmbeddedBrowser", true, true, false},
    };
    const RegistryKey program = env.programValues();
    for (const auto& c : cases) {
        ASSERT_FALSE(comOnThisThread()) << c.what;
        userConfig_setBool(L"feature.embeddedBrowser", c.featureOn);
        program.writeDword(L"NoEmbeddedBrowser", c.noEmbeddedBrowser ? 1 : 0);
        oleWhileDialog = false;
        const UINT_PTR timer = SetTimer(nullptr, 0, 20, lookAtOle);
        bool hasBrowser = false, browserShown = true;
        withDialog([&](HWND dialog) {
            if (c.page)
                waitForControl(dialog);
            Sleep(300); // time for a failed page to do something wrong
            hasBrowser = browserWindow(dialog) != nullptr;
            browserShown = IsWindowVisible(browserWindow(dialog));
            if (processWindows() != std::vector<HWND>{dialog})
                throw RobotFailure("a window besides the dialog");
        });
        KillTimer(nullptr, timer);
        EXPECT_EQ(hasBrowser, c.page) << c.what;
        EXPECT_FALSE(browserShown) << c.what << ": the bar shows its own content";
        EXPECT_EQ(oleWhileDialog, c.page) << c.what;
        EXPECT_FALSE(comOnThisThread()) << c.what << ": OLE is given back with the dialog";
        EXPECT_EQ(browser::liveComObjects(), 0) << c.what;
    }
}

// A page that notes what the dialog asks of it.
std::vector<std::wstring> addresses;
std::vector<RECT> bounds;
struct NotingPage : screenCapture::InAppPage {
    void setBounds(const RECT& placed) override { bounds.push_back(placed); }
    void navigate(const ZString& address) override { addresses.push_back(address.c_str()); }
};

TEST_F(CaptureDialog, InAppPageLoadsTheInAppAddressOverTheBottomBarWheneverTheLayoutChanges)
{
    userConfig_setBool(L"feature.embeddedBrowser", true);
    const auto kept = std::exchange(screenCapture::inAppPageFactory, [](HWND) -> std::unique_ptr<screenCapture::InAppPage> {
        return std::make_unique<NotingPage>();
    });
    screenCapture::ScreenCaptureUi dialog;
    dialog.context().setResourceLoader(std::make_unique<xhtml::ModuleResourceLoader>(screenCapture::moduleInstance()));
    ASSERT_TRUE(xhtml::XhtmlFrameView::registerClass(screenCapture::moduleInstance()));
    ASSERT_TRUE(dialog.create(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, xhtml::XhtmlFrameView::className, L"",
                              WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, nullptr, nullptr,
                              screenCapture::moduleInstance(), &dialog));
    screenCapture::inAppPageFactory = kept;
    ASSERT_EQ(addresses.size(), 1u);
    EXPECT_TRUE(std::regex_match(addresses[0], std::wregex(L"http://127\\.0\\.0\\.1:1/inapp/screenCapture/\\?name="
                                                          L"Pryxa%20Creator&version=[0-9.]+&lang=[a-z]+&.*&random=[0-9]+")))
        << ZString(addresses[0].c_str()).toUtf8();
    const auto coversTheBar = [&] {
        const xhtml::Rect bar = dialog.elementRect(L"bottom");
        const RECT expected = {bar.x, bar.y, bar.right(), bar.bottom()};
        return bar.width > 0 && !bounds.empty() && EqualRect(&bounds.back(), &expected);
    };
    EXPECT_TRUE(coversTheBar());
    const int width = dialog.elementRect(L"bottom").width;
    dialog.setSizeToContent(false, false);
    const RECT frame = dialog.windowRect();
    dialog.setPosition(nullptr, 0, 0, frame.right - frame.left + 120, frame.bottom - frame.top, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_GT(dialog.elementRect(L"bottom").width, width);
    EXPECT_TRUE(coversTheBar()) << "the page follows the bar";
    dialog.destroy();
}

// Each dialog initialises OLE, makes and closes the control and gives OLE back: nothing of
// it stays.
TEST_F(CaptureDialog, ManyDialogsWithTheInAppPageLeaveNothingBehind)
{
    userConfig_setBool(L"feature.embeddedBrowser", true);
    // The counts once unchanged for half a second: the dialog before may still be ending a request.
    const auto quiet = [] {
        std::pair<ResourceCounts, int> last{countResources(), countThreads()}, now = last;
        for (int look = 0; look < 20 && (look == 0 || !(now == last)); ++look) {
            last = now;
            pumpMessages(500);
            now = {countResources(), countThreads()};
        }
        return now;
    };
    withDialog(waitForControl); // pays for what a process loads once
    const auto [before, threadsBefore] = quiet();
    for (int run = 0; run < 8; ++run)
        withDialog(waitForControl);
    EXPECT_EQ(countResourcesSettled(before, 5000).describe(), before.describe());
    EXPECT_EQ(countThreadsSettled(threadsBefore), threadsBefore);
    EXPECT_EQ(browser::liveComObjects(), 0);
}

} // namespace
