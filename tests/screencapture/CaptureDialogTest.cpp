// The capture dialog as the user meets it: capture(0, ...) shows it, it starts from the
// stored choice, "start" stores the choice and runs the capture after the dialog has gone,
// and closing it does nothing. With the feature switched on, the in-app page lies over the
// bottom bar, and when it cannot show a page the user sees the bar as without it.

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

// The in-app page switched on, loading from a port of this machine that nobody listens on,
// so that no page can be shown (as when offline).
struct InAppPageOn {
    InAppPageOn()
    {
        userConfig_setBool(L"feature.embeddedBrowser", true);
        browser::setInAppEndpoint(L"http://127.0.0.1:1");
    }
    ~InAppPageOn() { browser::setInAppEndpoint(ZString()); }
};

const wchar_t* const kBrowserClass = L"PryxaEmbeddedBrowser";

// The browser's window in the dialog, visible or not; null when there is none.
HWND browserWindow(HWND dialog)
{
    return FindWindowExW(dialog, nullptr, kBrowserClass, nullptr);
}

// Waits until the browser in the dialog has made its control (its first child window).
void waitForControl(HWND dialog)
{
    const DWORD end = GetTickCount() + 10000;
    while (!GetWindow(browserWindow(dialog), GW_CHILD)) {
        if (GetTickCount() > end)
            throw RobotFailure("the browser made no control");
        Sleep(10);
    }
}

// Whether the dialog held an OLE session while it was up: a thread timer looks from inside
// its modal loop. (The thread's apartment cannot tell: Wine's input method initialises COM
// on a thread with windows.)
bool oleWhileDialog = false;
void CALLBACK lookAtOle(HWND, UINT, UINT_PTR, DWORD)
{
    if (FindWindowW(L"XhtmlFrameView", nullptr) && screenCapture::ScreenCaptureUi::oleSessions() > 0)
        oleWhileDialog = true;
}

bool oleOnThisThread()
{
    APTTYPE type;
    APTTYPEQUALIFIER qualifier;
    return SUCCEEDED(CoGetApartmentType(&type, &qualifier));
}

TEST_F(CaptureDialog, InAppPageIsOnlyThereWhenSwitchedOnAndNeverInTheUsersWay)
{
    InThisProgram run;
    browser::setInAppEndpoint(L"http://127.0.0.1:1");
    const struct {
        const char* what;
        bool featureOn, noEmbeddedBrowser;
        bool page; // a browser window (hidden) and OLE while the dialog is up
    } cases[] = {
        {"not switched on", false, false, false},
        {"switched on", true, false, true},
        {"switched on, but NoEmbeddedBrowser", true, true, false},
    };
    const RegistryKey program = RegistryKey::openForWriting(HKEY_CURRENT_USER, env.registryKey() + ZString(L"\\Program"));
    for (const auto& c : cases) {
        ASSERT_FALSE(oleOnThisThread()) << c.what;
        userConfig_setBool(L"feature.embeddedBrowser", c.featureOn);
        program.writeDword(L"NoEmbeddedBrowser", c.noEmbeddedBrowser ? 1 : 0);
        oleWhileDialog = false;
        const UINT_PTR timer = SetTimer(nullptr, 0, 20, lookAtOle);
        bool hasBrowser = false, browserShown = true;
        std::vector<HWND> topLevel;
        withDialog([] { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); },
                   [&](HWND dialog) {
                       if (c.page)
                           waitForControl(dialog);
                       Sleep(300); // time for a failed page to do something wrong
                       hasBrowser = browserWindow(dialog) != nullptr;
                       browserShown = !children(dialog, kBrowserClass).empty();
                       topLevel = processWindows();
                       if (topLevel != std::vector<HWND>{dialog})
                           throw RobotFailure("a window besides the dialog");
                   });
        KillTimer(nullptr, timer);
        EXPECT_EQ(hasBrowser, c.page) << c.what;
        EXPECT_FALSE(browserShown) << c.what << ": the bar shows its own content";
        EXPECT_EQ(oleWhileDialog, c.page) << c.what;
        EXPECT_FALSE(oleOnThisThread()) << c.what << ": OLE is given back with the dialog";
        EXPECT_EQ(browser::liveComObjects(), 0) << c.what;
    }
    browser::setInAppEndpoint(ZString());
}

// A page that only notes what the dialog asks of it.
std::vector<std::wstring> addresses;
struct NotingPage : screenCapture::InAppPage {
    void setBounds(const RECT&) override {}
    void navigate(const ZString& address) override { addresses.push_back(address.c_str()); }
};

TEST_F(CaptureDialog, InAppPageLoadsTheDialogsInAppAddressWithTheProgramsQuery)
{
    InThisProgram run;
    InAppPageOn on;
    const screenCapture::InAppPageFactory kept = screenCapture::inAppPageFactory;
    screenCapture::inAppPageFactory = [](HWND) -> std::unique_ptr<screenCapture::InAppPage> {
        return std::make_unique<NotingPage>();
    };
    addresses.clear();
    withDialog([] { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); }, [](HWND) {});
    screenCapture::inAppPageFactory = kept;
    ASSERT_EQ(addresses.size(), 1u);
    EXPECT_TRUE(std::regex_match(addresses[0], std::wregex(L"http://127\\.0\\.0\\.1:1/inapp/screenCapture/\\?"
                                                          L"name=Pryxa%20Creator&version=[0-9.]+&lang=[a-z]+&.*"
                                                          L"&uCountryCode=[A-Z]*&random=[0-9]+")))
        << std::string(addresses[0].begin(), addresses[0].end());
    EXPECT_EQ(screenCapture::inAppPageAddress(L"name=x").toUtf8(), "http://127.0.0.1:1/inapp/screenCapture/?name=x");
}

TEST_F(CaptureDialog, InAppPageCoversTheBottomBarWheneverTheLayoutChanges)
{
    InThisProgram run;
    InAppPageOn on;
    screenCapture::ScreenCaptureUi dialog;
    dialog.context().setResourceLoader(std::make_unique<xhtml::ModuleResourceLoader>(screenCapture::moduleInstance()));
    ASSERT_TRUE(xhtml::XhtmlFrameView::registerClass(screenCapture::moduleInstance()));
    ASSERT_TRUE(dialog.create(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, xhtml::XhtmlFrameView::className, L"",
                              WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, nullptr, nullptr,
                              screenCapture::moduleInstance(), &dialog));
    HWND page = browserWindow(dialog.handle());
    ASSERT_NE(page, nullptr);
    const auto covers = [&] {
        const xhtml::Rect bottom = dialog.elementRect(L"bottom");
        RECT placed = {};
        GetWindowRect(page, &placed);
        MapWindowPoints(nullptr, dialog.handle(), reinterpret_cast<POINT*>(&placed), 2);
        const RECT expected = {bottom.x, bottom.y, bottom.right(), bottom.bottom()};
        return bottom.width > 0 && EqualRect(&placed, &expected);
    };
    EXPECT_TRUE(covers());
    const int width = dialog.elementRect(L"bottom").width;
    dialog.setSizeToContent(false, false);
    const RECT frame = dialog.windowRect();
    dialog.setPosition(nullptr, 0, 0, frame.right - frame.left + 120, frame.bottom - frame.top + 40,
                       SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_GT(dialog.elementRect(L"bottom").width, width);
    EXPECT_TRUE(covers()) << "the page follows the bar";
    dialog.destroy();
}

// Each dialog initialises OLE, makes and closes the control and gives OLE back: nothing of
// it stays.
TEST_F(CaptureDialog, ManyDialogsWithTheInAppPageLeaveNothingBehind)
{
    InThisProgram run;
    InAppPageOn on;
    const auto oneDialog = [] {
        withDialog([] { screenCapture::performCapture(screenCapture::noMode, screenCapture::file); }, waitForControl);
    };
    // The counts once they have not changed for half a second: a request of the dialog before
    // may still be ending in the background.
    const auto quiet = [] {
        std::pair<ResourceCounts, int> last{countResources(), countThreads()};
        for (int look = 0; look < 20; ++look) {
            pumpMessages(500);
            const std::pair<ResourceCounts, int> now{countResources(), countThreads()};
            if (now == last)
                break;
            last = now;
        }
        return last;
    };
    oneDialog(); // pays for what a process loads once
    const auto [before, threadsBefore] = quiet();
    for (int run = 0; run < 8; ++run)
        oneDialog();
    EXPECT_EQ(countResourcesSettled(before, 5000).describe(), before.describe());
    EXPECT_EQ(countThreadsSettled(threadsBefore), threadsBefore);
    EXPECT_EQ(browser::liveComObjects(), 0);
}

} // namespace
