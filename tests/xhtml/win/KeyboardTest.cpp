// The markup host's keyboard under real key presses (SendInput) in the foreground frame: the
// Tab order, focus rectangles and the default button, Enter and Escape, the focus kept over
// a deactivation.

#include "base/win/IMessageListener.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"
#include "xhtml/win/XhtmlFrameView.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace xhtml;

namespace {

// "off" is disabled; the text area wants every key itself; "go" is the default button.
const wchar_t* const kKeyed =
    L"<select id=s><option>Alpha</option><option>Beta</option></select><select id=off disabled></select>"
    L"<select id=m multiple><option>one</option></select><textarea id=t></textarea>"
    L"<input id=go type=button name=go value=Go/><input id=stop type=button name=stop value=Stop/>";

// Hears whether the frame asked to show focus rectangles, which Windows (not Wine) may hide
// in a window that the mouse opened.
struct FocusCues : BaseWindow::IMessageListener {
    bool shown = false;
    void onMessage(BaseWindow&, UINT message, WPARAM wParam, LPARAM) override
    {
        shown |= message == WM_CHANGEUISTATE && wParam == MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS);
    }
};

void openKeyed(XhtmlFrameView& frame, ButtonListener* listener)
{
    XhtmlFrameView::registerClass(GetModuleHandleW(nullptr));
    frame.create(0, XhtmlFrameView::className, L"keys", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                 nullptr, GetModuleHandleW(nullptr), &frame);
    frame.context().setButtonListener(listener);
    frame.setMarkup(kKeyed);
}

class MarkupKeys : public testing::Test, public ButtonListener {
protected:
    MarkupKeys() { openKeyed(frame, this); }

    void onButtonPressed(const ZString& name) override { heard.push_back(name.c_str()); }
    HWND control(const wchar_t* id) { return frame.controlWindow(id); }
    // Presses the key, then handles this thread's messages until the control has the focus.
    bool focusAfter(WORD key, const wchar_t* id, bool shift = false)
    {
        pressKey(key, shift);
        return pumpUntil([&] { return GetFocus() == control(id); }, 5000);
    }
    bool isDefault(const wchar_t* id) { return SendMessageW(control(id), WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON; }

    std::vector<std::wstring> heard;
    XhtmlFrameView frame;
};

// A focused push button is the default while it has the focus.
TEST_F(MarkupKeys, TabAndShiftTabCycleInDocumentOrderShowingTheFocusWhichADeactivationKeeps)
{
    ASSERT_EQ(GetFocus(), control(L"s")) << "the first control starts with the focus";
    FocusCues cues;
    frame.addMessageListener(&cues);
    const struct {
        bool shift;
        const wchar_t* focused;
        bool isButton; // and so the default button while it has the focus; else "go" is
    } steps[] = {{false, L"m", false}, {false, L"t", false},   {false, L"go", true}, {false, L"stop", true},
                 {false, L"s", false}, {true, L"stop", true}, {true, L"go", true},  {true, L"t", false}};
    for (const auto& step : steps) {
        ASSERT_TRUE(focusAfter(VK_TAB, step.focused, step.shift)) << step.focused;
        EXPECT_TRUE(std::exchange(cues.shown, false)) << step.focused;
        const bool goIsDefault = !step.isButton || step.focused == std::wstring(L"go");
        EXPECT_TRUE(isDefault(L"go") == goIsDefault && isDefault(L"stop") != goIsDefault) << step.focused;
    }
    frame.removeMessageListener(&cues);

    HWND other = CreateWindowExW(0, L"STATIC", L"other", WS_POPUP | WS_VISIBLE, 500, 0, 50, 50, nullptr, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
    SetForegroundWindow(other);
    ASSERT_TRUE(pumpUntil([&] { return GetActiveWindow() == other; }, 5000));
    SetForegroundWindow(frame.handle());
    EXPECT_TRUE(pumpUntil([&] { return GetFocus() == control(L"t"); }, 5000)) << "the focus is back";
    DestroyWindow(other);
}

// After each Enter a Tab shows that the key was handled: the posted press would have come first.
TEST_F(MarkupKeys, EnterPressesTheFocusedOrDefaultButtonUnlessTheControlWantsItAndEscapeCloses)
{
    const struct {
        const wchar_t* focused;
        const wchar_t* pressed; // none: the text area takes Enter as a new line
        const wchar_t* next;
    } cases[] = {{L"s", L"go", L"m"}, {L"m", L"go", L"t"}, {L"stop", L"stop", L"s"}, {L"t", nullptr, L"go"}};
    for (const auto& c : cases) {
        SetFocus(control(c.focused));
        heard.clear();
        pressKey(VK_RETURN);
        ASSERT_TRUE(focusAfter(VK_TAB, c.next)) << c.focused;
        EXPECT_EQ(heard, c.pressed ? std::vector<std::wstring>{c.pressed} : std::vector<std::wstring>{}) << c.focused;
    }
    EXPECT_EQ(windowText(control(L"t")), L"\r\n");

    heard.clear();
    frame.setMarkup(L"<select id=s></select><input type=button name=off value=Off disabled/>"
                    L"<input id=on type=button name=on value=On/>");
    ASSERT_EQ(GetFocus(), control(L"s")) << "new markup: its first control takes the focus";
    pressKey(VK_RETURN);
    ASSERT_TRUE(focusAfter(VK_TAB, L"on"));
    EXPECT_TRUE(heard.empty()) << "the default button, the first one, is disabled";

    SetFocus(nullptr); // no window has the focus when markup without controls comes
    frame.setMarkup(L"<p>no controls</p>");
    pressKey(VK_ESCAPE);
    EXPECT_TRUE(pumpUntil([&] { return !IsWindow(frame.handle()); }, 5000));
    EXPECT_TRUE(heard.empty());
}

TEST(MarkupKeysOverMany, FramesClosedWithEscapeLeaveNoWindowGdiObjectOrHandleBehind)
{
    const auto openAndEscape = [] {
        XhtmlFrameView frame;
        openKeyed(frame, nullptr);
        pressKey(VK_ESCAPE);
        EXPECT_TRUE(pumpUntil([&] { return !IsWindow(frame.handle()); }, 5000));
    };
    openAndEscape(); // what is set up once
    const ResourceCounts before = countResources();
    for (int i = 0; i < 20; ++i)
        openAndEscape();
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_TRUE(after == before) << after.describe() << " after, " << before.describe() << " before";
}

} // namespace
