#include "tests/companions/DialogKit.h"

std::string withDialog(const std::wstring& title, const std::function<void()>& show,
                       const std::function<void(UiRobot&, HWND dialog)>& act)
{
    UiRobot robot([&](UiRobot& r) {
        HWND dialog = r.waitForWindow(L"XhtmlFrameView", title);
        act(r, dialog);
        r.waitForWindowGone(dialog);
    });
    show();
    return robot.finish();
}

void closeDialog(HWND dialog, CloseBy how)
{
    if (how == CloseBy::escape)
        postKey(focusOf(dialog), VK_ESCAPE);
    else
        PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); // what a click on the close box sends
}

std::vector<HWND> controls(HWND dialog, const wchar_t* className)
{
    std::vector<HWND> found;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (_wcsicmp(windowClass(child).c_str(), className) == 0 && IsWindowVisible(child))
            found.push_back(child);
    }
    return found;
}

HWND buttonLabelled(HWND dialog, const std::wstring& label)
{
    for (HWND button : controls(dialog, L"Button")) {
        if (windowText(button) == label)
            return button;
    }
    throw RobotFailure("no button labelled as expected");
}

HWND focusOf(HWND window)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

MessageBoxInfo answerMessageBox(UiRobot& robot)
{
    HWND box = robot.waitForWindow(L"#32770");
    const MessageBoxInfo info = readMessageBox(box);
    pressButton(box, IDOK);
    robot.waitForWindowGone(box);
    return info;
}
