// The markup host's keyboard, driven by real key presses (SendInput) in the foreground frame:
// the Tab order over its controls, the default button, Enter and Escape, and the focus kept
// over a deactivation.

#include "base/win/GdiHandles.h"
#include "base/win/IMessageListener.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/TestPixels.h"
#include "tests/support/UiRobot.h"
#include "xhtml/win/KeyboardNavigation.h"
#include "xhtml/win/XhtmlFrameView.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace xhtml;

namespace {

// A disabled list between the first two that take the focus; a text area, which wants every
// key itself; "go" is the default button.
const wchar_t* const kKeyed =
    L"<select id=s><option value=a>Alpha</option><option value=b>Beta</option></select>"
    L"<select id=off disabled><option>off</option></select>"
    L"<select id=m multiple><option value=1>one</option><option value=2>two</option></select>"
    L"<textarea id=t></textarea>"
    L"<input id=go type=button name=go value=Go/><input id=stop type=button name=stop value=Stop/>";

struct Presses : ButtonListener {
    std::vector<std::wstring> heard;
    void onButtonPressed(const ZString& name) override { heard.push_back(name.c_str()); }
};

HWND openFrame(XhtmlFrameView& frame, ButtonListener& listener)
{
    XhtmlFrameView::registerClass(GetModuleHandleW(nullptr));
    frame.create(0, XhtmlFrameView::className, L"keys", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                 nullptr, GetModuleHandleW(nullptr), &frame);
    frame.context().setButtonListener(&listener);
    frame.setMarkup(kKeyed);
    return frame.handle();
}

// Presses the key and handles this thread's messages until `done` holds.
bool press(WORD key, const std::function<bool()>& done, bool shift = false)
{
    pressKey(key, shift);
    return pumpUntil(done, 5000);
}

// What the window looks like now, as it paints itself.
PixelGrid looks(HWND window)
{
    RECT box = {};
    GetWindowRect(window, &box);
    WindowDC screen;
    BitmapHandle bitmap(CreateCompatibleBitmap(screen.get(), box.right - box.left, box.bottom - box.top));
    {
        MemoryDC dc(screen.get());
        SelectedObject selected(dc.get(), bitmap.get());
        PrintWindow(window, dc.get(), 0);
    }
    return readBitmapPixels(bitmap.get());
}

// A control shows the focus in its own look, a text field by its caret.
bool showsFocus(HWND control, const PixelGrid& unfocused)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetCurrentThreadId(), &info);
    return info.hwndCaret == control || looks(control).pixels != unfocused.pixels;
}

class MarkupKeys : public testing::Test {
protected:
    MarkupKeys() { openFrame(frame, presses); }

    HWND control(const wchar_t* id) { return frame.controlWindow(id); }

    // The ids of the buttons that look like the default one.
    std::wstring defaultLook()
    {
        std::wstring ids;
        for (const wchar_t* id : {L"go", L"stop"}) {
            if (SendMessageW(control(id), WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON)
                ids += ids.empty() ? id : std::wstring(L" ") + id;
        }
        return ids;
    }

    Presses presses;
    XhtmlFrameView frame;
};

TEST(KeyAction, AKeyTheFocusedWindowAsksForStaysWithIt)
{
    const struct {
        WPARAM key;
        UINT dialogCode;
        bool shift;
        KeyAction action;
    } cases[] = {
        {VK_TAB, DLGC_WANTARROWS | DLGC_WANTCHARS, false, KeyAction::nextControl},
        {VK_TAB, 0, true, KeyAction::previousControl},
        {VK_TAB, DLGC_WANTTAB, false, KeyAction::none},
        {VK_RETURN, DLGC_UNDEFPUSHBUTTON, false, KeyAction::pressDefault},
        {VK_ESCAPE, DLGC_WANTARROWS, false, KeyAction::close},
        {VK_RETURN, DLGC_WANTARROWS | DLGC_WANTMESSAGE, false, KeyAction::none}, // an open drop-down list
        {VK_ESCAPE, DLGC_WANTMESSAGE, false, KeyAction::none},
        {VK_TAB, DLGC_WANTALLKEYS, true, KeyAction::none}, // a text area
        {VK_DOWN, 0, false, KeyAction::none},
    };
    for (const auto& c : cases)
        EXPECT_EQ(keyAction(c.key, c.dialogCode, c.shift), c.action) << c.key << " " << c.dialogCode;
}

// Hears whether the frame was told to show focus rectangles (Windows may hide them in a
// window that was opened with the mouse; Wine always shows them).
struct FocusCues : BaseWindow::IMessageListener {
    bool shown = false;
    void onMessage(BaseWindow&, UINT message, WPARAM wParam, LPARAM) override
    {
        shown |= message == WM_CHANGEUISTATE && wParam == MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS);
    }
};

// The disabled list is passed over; a focused push button is the default while it has the focus.
TEST_F(MarkupKeys, TabAndShiftTabCycleOverTheControlsInDocumentOrderShowingTheFocusAndTheDefault)
{
    ASSERT_EQ(GetFocus(), control(L"s")) << "the first control starts with the focus";
    EXPECT_EQ(defaultLook(), L"go");
    FocusCues cues;
    frame.addMessageListener(&cues);
    const struct {
        bool shift;
        const wchar_t* focused;
        const wchar_t* defaultButton;
    } steps[] = {
        {false, L"m", L"go"},     {false, L"t", L"go"},  {false, L"go", L"go"}, {false, L"stop", L"stop"},
        {false, L"s", L"go"},     {true, L"stop", L"stop"}, {true, L"go", L"go"}, {true, L"t", L"go"},
        {true, L"m", L"go"},
    };
    for (const auto& step : steps) {
        HWND target = control(step.focused);
        const PixelGrid unfocused = looks(target);
        ASSERT_TRUE(press(VK_TAB, [&] { return GetFocus() == target; }, step.shift)) << step.focused;
        EXPECT_TRUE(showsFocus(target, unfocused)) << step.focused;
        EXPECT_EQ(defaultLook(), step.defaultButton) << step.focused;
        EXPECT_TRUE(std::exchange(cues.shown, false)) << step.focused;
    }
    frame.removeMessageListener(&cues);
}

TEST_F(MarkupKeys, EnterPressesTheFocusedOrElseTheDefaultButtonAndEscapeClosesTheFrame)
{
    const struct {
        const wchar_t* focused;
        const wchar_t* pressed;
    } cases[] = {{L"s", L"go"}, {L"m", L"go"}, {L"stop", L"stop"}};
    for (const auto& c : cases) {
        SetFocus(control(c.focused));
        presses.heard.clear();
        EXPECT_TRUE(press(VK_RETURN, [&] { return !presses.heard.empty(); })) << c.focused;
        EXPECT_EQ(presses.heard, std::vector<std::wstring>{c.pressed}) << c.focused;
    }
    SetFocus(control(L"t"));
    EXPECT_TRUE(press(VK_RETURN, [&] { return windowText(control(L"t")) == L"\r\n"; })) << "a new line";
    ASSERT_TRUE(press(VK_TAB, [&] { return GetFocus() == control(L"m"); }, true)) << "keys handled in order";
    EXPECT_EQ(presses.heard.size(), 1u) << "Enter in the text area pressed nothing";

    // The first push button is the default even when it is disabled; it is not pressed then.
    presses.heard.clear();
    frame.setMarkup(L"<select id=s><option>a</option></select><input type=button name=off value=Off disabled/>"
                    L"<input id=on type=button name=on value=On/>");
    ASSERT_EQ(GetFocus(), control(L"s")) << "new markup: its first control takes the focus";
    pressKey(VK_RETURN);
    EXPECT_TRUE(press(VK_TAB, [&] { return GetFocus() == control(L"on"); })) << "the keys are handled in order";
    EXPECT_TRUE(presses.heard.empty());

    frame.setMarkup(L"<p>no controls</p>");
    ASSERT_EQ(GetFocus(), frame.handle()) << "without controls the frame has the focus";
    EXPECT_TRUE(press(VK_ESCAPE, [&] { return !IsWindow(frame.handle()); }));
    EXPECT_TRUE(presses.heard.empty()) << "Escape presses nothing";
}

TEST_F(MarkupKeys, TheControlThatHadTheFocusGetsItBackWhenTheFrameIsActiveAgain)
{
    SetFocus(control(L"stop"));
    HWND other = CreateWindowExW(0, L"STATIC", L"other", WS_POPUP | WS_VISIBLE, 500, 0, 50, 50, nullptr, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
    SetForegroundWindow(other);
    ASSERT_TRUE(pumpUntil([&] { return GetActiveWindow() == other; }, 5000));
    EXPECT_NE(GetFocus(), control(L"stop"));
    SetForegroundWindow(frame.handle());
    EXPECT_TRUE(pumpUntil([&] { return GetFocus() == control(L"stop"); }, 5000));
    DestroyWindow(other);
}

TEST(MarkupKeysOverMany, FramesClosedWithEscapeLeaveNoWindowGdiObjectOrHandleBehind)
{
    const auto openAndEscape = [] {
        Presses presses;
        XhtmlFrameView frame;
        HWND window = openFrame(frame, presses);
        EXPECT_TRUE(pumpUntil([&] { return GetFocus() == frame.controlWindow(L"s"); }, 5000));
        EXPECT_TRUE(press(VK_ESCAPE, [&] { return !IsWindow(window); }));
    };
    openAndEscape(); // the class, fonts and the like, set up once
    const ResourceCounts before = countResources();
    for (int i = 0; i < 20; ++i)
        openAndEscape();
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_TRUE(after == before) << after.describe() << " after, " << before.describe() << " before";
}

} // namespace
