// The capture dialog as the user meets it: capture(0, ...) shows it, it starts from the
// stored choice, "start" stores the choice and runs the capture after the dialog has gone,
// and closing it does nothing. A screenshot of it is kept in the build tree.

#include "companions/language/Language.h"
#include "companions/settings/Settings.h"
#include "image/GdiplusHelpers.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/Delivery.h"
#include "screencapture/ModuleInstance.h"
#include "screencapture/ui/InAppPage.h"
#include "base/win/RegistryKey.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/UiRobot.h"

#include <chrono>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

const uint32_t kUnwritten = 0xDEADBEEF;

std::wstring text(const wchar_t* key)
{
    return lang_getStr(key).c_str();
}

bool isDialog(HWND window)
{
    return windowClass(window) == L"XhtmlFrameView" && windowText(window) == text(L"screen-capture/capture-screen");
}

HWND waitForDialog(UiRobot& robot)
{
    return robot.waitForWindow(isDialog, "the capture dialog");
}

// The dialog's two selects in markup order: mode, then target.
std::vector<HWND> selects(HWND dialog)
{
    std::vector<HWND> found;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (windowClass(child) == L"ComboBox")
            found.push_back(child);
    }
    return found;
}

std::wstring shownText(HWND combo)
{
    const LRESULT index = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (index < 0)
        return L"";
    std::wstring label(static_cast<size_t>(SendMessageW(combo, CB_GETLBTEXTLEN, index, 0)) + 1, L'\0');
    SendMessageW(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(label.data()));
    label.resize(wcslen(label.c_str()));
    return label;
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

HWND startButton(HWND dialog)
{
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (windowClass(child) == L"Button" && windowText(child) == text(L"screen-capture/start"))
            return child;
    }
    throw RobotFailure("no start button");
}

struct Opened {
    std::wstring mode;
    std::wstring target;
};

// Shows the dialog through the module's export, reads what it starts with and closes it.
Opened openAndClose()
{
    Opened opened;
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = waitForDialog(r);
        const std::vector<HWND> lists = selects(dialog);
        if (lists.size() != 2)
            throw RobotFailure("the dialog should have two selects");
        opened = Opened{shownText(lists[0]), shownText(lists[1])};
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        r.waitForWindowGone(dialog);
    });
    screenCapture::capture(screenCapture::noMode, screenCapture::file);
    EXPECT_EQ(robot.finish(), "");
    return opened;
}

using CaptureDialog = CaptureTest;

TEST_F(CaptureDialog, OpensWithTheStoredChoiceOrTheMarkupsDefaults)
{
    const std::wstring area = text(L"screen-capture/mode/user-defined-area");
    const std::wstring pdf = text(L"screen-capture/target/print-on-pdf-printer");
    struct Case {
        const char* what;
        uint32_t mode;   // kUnwritten: nothing stored
        uint32_t target; // kUnwritten: nothing stored
        std::wstring shownMode;
        std::wstring shownTarget;
    } cases[] = {
        {"first use", kUnwritten, kUnwritten, area, pdf},
        {"the clipboard mode has no entry", 6, 1, area, text(L"screen-capture/target/copy-to-clipboard")},
        {"a stored choice", 4, 3, text(L"screen-capture/mode/active-window-content"),
         text(L"screen-capture/target/open-with-default-image-editor")},
        {"values out of range", 99, 0, area, pdf},
    };
    for (const Case& c : cases) {
        if (c.mode != kUnwritten) {
            ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastMode", c.mode));
            ASSERT_TRUE(userConfig_setDword(L"screenCapture.lastTarget", c.target));
        }
        const Opened opened = openAndClose();
        EXPECT_EQ(opened.mode, c.shownMode) << c.what;
        EXPECT_EQ(opened.target, c.shownTarget) << c.what;
    }
}

TEST_F(CaptureDialog, ClosingCapturesNothingAndStoresNothing)
{
    std::vector<std::wstring> afterwards;
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = waitForDialog(r);
        const std::vector<HWND> lists = selects(dialog);
        choose(lists.at(0), text(L"screen-capture/mode/screen"));
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        r.waitForWindowGone(dialog);
        Sleep(400); // a capture would have begun by now
        for (HWND window : processWindows())
            afterwards.push_back(windowClass(window) + L" " + windowText(window));
    });
    screenCapture::capture(screenCapture::noMode, screenCapture::toClipboard);
    ASSERT_EQ(robot.finish(), "");
    EXPECT_TRUE(afterwards.empty()) << "no message box, overlay or other window";
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), kUnwritten);
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), kUnwritten);
}

// The tray note of the clipboard target, seen through the module's seam: when it came.
Clock::time_point noteTime;
int notes = 0;
void recordNote(const ZString&, const ZString&)
{
    noteTime = Clock::now();
    ++notes;
}

TEST_F(CaptureDialog, StartStoresTheChoiceAndCapturesAfterTheDialogHasGone)
{
    // The run in this program, so that its tray note can be seen; the markup and images
    // are the module's resources.
    screenCapture::setModuleInstance(GetModuleHandleW(L"screencapture.dll"));
    const screenCapture::TrayNote kept = screenCapture::trayNote;
    screenCapture::trayNote = recordNote;
    notes = 0;
    Clock::time_point gone;
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = waitForDialog(r);
        const std::vector<HWND> lists = selects(dialog);
        choose(lists.at(0), text(L"screen-capture/mode/screen"));
        choose(lists.at(1), text(L"screen-capture/target/copy-to-clipboard"));
        pressButton(dialog, GetDlgCtrlID(startButton(dialog)));
        r.waitForWindowGone(dialog);
        gone = Clock::now();
    });
    screenCapture::performCapture(screenCapture::noMode, screenCapture::file);
    screenCapture::trayNote = kept;
    screenCapture::setModuleInstance(nullptr);
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", kUnwritten), 1u);
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastTarget", kUnwritten), 1u);
    ASSERT_EQ(notes, 1) << "the screen went to the clipboard";
    EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(noteTime - gone).count(), 250);
    const std::vector<UINT> formats = clipboardFormats();
    EXPECT_NE(std::find(formats.begin(), formats.end(), static_cast<UINT>(CF_BITMAP)), formats.end());
}

// The dialog's client area as the screen shows it, with its place on the screen.
struct DialogLook {
    std::wstring title;
    RECT client = {};
    std::vector<std::pair<std::wstring, RECT>> children; // client coordinates
    PixelGrid pixels;
};

DialogLook lookAtDialog()
{
    DialogLook look;
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = waitForDialog(r);
        Sleep(300); // painted, and any deferred fit done
        look.title = windowText(dialog);
        GetClientRect(dialog, &look.client);
        for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
            if (!IsWindowVisible(child))
                continue;
            RECT box;
            GetWindowRect(child, &box);
            MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&box), 2);
            look.children.emplace_back(windowClass(child), box);
        }
        RECT onScreen = look.client;
        MapWindowPoints(dialog, nullptr, reinterpret_cast<POINT*>(&onScreen), 2);
        look.pixels = readScreenPixels(onScreen);
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        r.waitForWindowGone(dialog);
    });
    screenCapture::capture(screenCapture::noMode, screenCapture::noTarget);
    EXPECT_EQ(robot.finish(), "");
    return look;
}

std::wstring buildFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    folder.resize(folder.find_last_of(L'\\')); // bin
    folder.resize(folder.find_last_of(L'\\'));
    return folder;
}

void savePng(const PixelGrid& grid, const std::wstring& path)
{
    Gdiplus::Bitmap image(grid.width, grid.height, PixelFormat32bppRGB);
    for (int y = 0; y < grid.height; ++y) {
        for (int x = 0; x < grid.width; ++x)
            image.SetPixel(x, y, Gdiplus::Color(0xFF000000 | grid.at(x, y)));
    }
    CLSID png;
    ASSERT_GE(findEncoder(L"image/png", &png), 0);
    CreateDirectoryW(path.substr(0, path.find_last_of(L'\\')).c_str(), nullptr);
    EXPECT_EQ(image.Save(path.c_str(), &png, nullptr), Gdiplus::Ok);
}

int grey(uint32_t pixel)
{
    return static_cast<int>(pixel & 0xFF);
}

TEST_F(CaptureDialog, LooksAsDesigned)
{
    const DialogLook look = lookAtDialog();
    ASSERT_GT(look.pixels.width, 0);
    savePng(look.pixels, buildFolder() + L"\\screenshots\\capture-dialog.png");

    EXPECT_EQ(look.title, text(L"screen-capture/capture-screen"));
    ASSERT_EQ(look.children.size(), 3u) << "two selects and the start button";
    for (const auto& child : look.children) {
        const RECT& box = child.second;
        EXPECT_TRUE(box.left >= 0 && box.top >= 0 && box.right <= look.client.right && box.bottom <= look.client.bottom)
            << "a " << std::string(child.first.begin(), child.first.end()) << " lies outside the client area";
    }

    // Down the left edge: the top band from white to #E8E8E8, one white line, then the
    // bottom bar from #E8E8E8 back to white.
    const PixelGrid& p = look.pixels;
    int separator = -1;
    for (int y = 1; y + 1 < p.height; ++y) {
        if (p.at(2, y) == 0xFFFFFF && grey(p.at(2, y - 1)) < 0xF0 && grey(p.at(2, y + 1)) < 0xF0) {
            EXPECT_EQ(separator, -1) << "one separator line";
            separator = y;
        }
    }
    ASSERT_GT(separator, 20) << "a white line between two grey edges";
    EXPECT_EQ(p.at(2, 0), 0xFFFFFFu) << "the band starts white";
    EXPECT_NEAR(grey(p.at(2, separator - 1)), 0xE8, 2) << "and ends light grey";
    for (int y = 1; y < separator; ++y) {
        EXPECT_LE(grey(p.at(2, y)), grey(p.at(2, y - 1))) << "the band darkens downwards at row " << y;
        EXPECT_EQ(p.at(2, y) & 0xFF, (p.at(2, y) >> 16) & 0xFF) << "a grey";
    }
    EXPECT_EQ(p.height - separator - 1, 50) << "the bottom bar";
    EXPECT_NEAR(grey(p.at(2, separator + 1)), 0xE8, 2);
}

// A page that records where the dialog puts it and what it is asked to show.
struct PageRecord {
    int made = 0;
    RECT bounds = {};
    std::wstring address;
};
PageRecord pageRecord;

class RecordingPage : public screenCapture::InAppPage {
public:
    void setBounds(const RECT& bounds) override { pageRecord.bounds = bounds; }
    void navigate(const ZString& address) override { pageRecord.address = address.c_str(); }
};

std::unique_ptr<screenCapture::InAppPage> makeRecordingPage(HWND)
{
    ++pageRecord.made;
    return std::make_unique<RecordingPage>();
}

// Runs the dialog of this program's run with the recording page installed and closes it;
// returns the bottom bar's place in the client area as the robot measured it.
RECT runWithInAppPage()
{
    screenCapture::setModuleInstance(GetModuleHandleW(L"screencapture.dll"));
    screenCapture::inAppPageFactory = makeRecordingPage;
    pageRecord = PageRecord();
    RECT bottomBar = {};
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = waitForDialog(r);
        RECT client;
        GetClientRect(dialog, &client);
        bottomBar = RECT{0, client.bottom - 50, client.right, client.bottom};
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        r.waitForWindowGone(dialog);
    });
    screenCapture::performCapture(screenCapture::noMode, screenCapture::noTarget);
    screenCapture::inAppPageFactory = nullptr;
    screenCapture::setModuleInstance(nullptr);
    EXPECT_EQ(robot.finish(), "");
    return bottomBar;
}

TEST_F(CaptureDialog, InAppPageCoversTheBottomBarOnlyWhenTheFeatureIsOn)
{
    runWithInAppPage();
    EXPECT_EQ(pageRecord.made, 0) << "the feature is off unless switched on";

    const ZString user = env.registryKey() + L"\\User";
    ASSERT_TRUE(RegistryKey::openForWriting(HKEY_CURRENT_USER, user).writeDword(L"feature.embeddedBrowser", 1));
    const RECT bar = runWithInAppPage();
    ASSERT_EQ(pageRecord.made, 1);
    EXPECT_EQ(pageRecord.bounds.left, bar.left);
    EXPECT_EQ(pageRecord.bounds.top, bar.top);
    EXPECT_EQ(pageRecord.bounds.right, bar.right);
    EXPECT_EQ(pageRecord.bounds.bottom, bar.bottom);
    EXPECT_EQ(pageRecord.address.rfind(L"https://", 0), 0u);
    EXPECT_NE(pageRecord.address.find(L"/inapp/screenCapture/"), std::wstring::npos);

    const ZString program = env.registryKey() + L"\\Program";
    ASSERT_TRUE(RegistryKey::openForWriting(HKEY_CURRENT_USER, program).writeDword(L"NoEmbeddedBrowser", 1));
    runWithInAppPage();
    EXPECT_EQ(pageRecord.made, 0) << "the program setting switches it off";
}

} // namespace
