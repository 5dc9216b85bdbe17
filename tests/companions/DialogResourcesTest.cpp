// What the web bridge relies on for both dialog libraries: exports under their C names, a
// message when a dialog cannot be shown, and nothing left behind however often they open.

#include "companions/about/About.h"
#include "companions/formatoptions/FormatOptions.h"
#include "tests/companions/DialogKit.h"
#include "tests/support/ResourceCounters.h"

#include <gtest/gtest.h>

namespace {

TEST(CompanionDialogs, AreFoundByTheirCNamesAndLeaveNoWindowsHandlesGdiObjectsOrClassesBehind)
{
    EXPECT_NE(GetProcAddress(GetModuleHandleW(L"About.dll"), "about_show"), nullptr);
    EXPECT_NE(GetProcAddress(GetModuleHandleW(L"FormatOptions.dll"), "formatOptions_show"), nullptr);

    EnglishScratch env;
    // Each dialog is painted and has the mouse over it before it is closed, as when a user
    // looks at it, so that every run does the same.
    const auto openAndClose = [](const wchar_t* title, void (*show)(), CloseBy how) {
        EXPECT_EQ(withDialog(title, show,
                             [how](UiRobot&, HWND dialog) {
                                 RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
                                 SendMessageW(dialog, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
                                 closeDialog(dialog, how);
                             }),
                  "");
    };
    const auto openBoth = [&] {
        openAndClose(L"About Pryxa Creator", [] { about_show(nullptr); }, CloseBy::escape);
        openAndClose(L"PDF Options for Pictures", [] { formatOptions_show(nullptr); }, CloseBy::closeBox);
    };
    openBoth(); // what the system sets up once (libraries, fonts, settings it reads) is not a leak
    const ResourceCounts before = countResources();
    for (int i = 0; i < 4; ++i)
        openBoth();
    EXPECT_EQ(countResourcesSettled(before).describe(), before.describe());
    WNDCLASSEXW info = {};
    info.cbSize = sizeof info;
    for (const wchar_t* library : {L"About.dll", L"FormatOptions.dll"})
        EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(library), L"XhtmlFrameView", &info));
}

// Refuses the markup frames of this thread, as a system out of window resources would.
LRESULT CALLBACK refuseFrames(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_CREATEWND && windowClass(reinterpret_cast<HWND>(wParam)) == L"XhtmlFrameView")
        return 1;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST(CompanionDialogs, SayWhenTheirWindowCannotBeMadeAndLeaveNothingOpen)
{
    const HHOOK hook = SetWindowsHookExW(WH_CBT, refuseFrames, nullptr, GetCurrentThreadId());
    ASSERT_NE(hook, nullptr);
    std::vector<std::wstring> told;
    for (bool (*show)() : {+[] { about_show(nullptr); return false; }, +[] { return formatOptions_show(nullptr); }}) {
        MessageBoxInfo box;
        UiRobot robot([&](UiRobot& r) { box = answerMessageBox(r); });
        EXPECT_FALSE(show());
        EXPECT_EQ(robot.finish(), "");
        told.push_back(box.title + L": " + box.text + (box.icon == MB_ICONWARNING ? L"" : L" (no warning icon)"));
        EXPECT_TRUE(processWindows().empty());
    }
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(told, (std::vector<std::wstring>{L"Error: Could not show the About box", L"Error: Could not show the PDF options"}));
}

} // namespace
