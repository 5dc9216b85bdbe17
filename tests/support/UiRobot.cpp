#include "tests/support/UiRobot.h"

#include "base/ZString.h"

namespace {

constexpr DWORD kPollMs = 20;

std::string narrow(const std::wstring& text)
{
    return ZString(text.c_str()).toUtf8();
}

// Checks `done` every kPollMs until it holds (true) or the time is up (false); `pump`
// dispatches this thread's messages meanwhile.
bool poll(const std::function<bool()>& done, DWORD timeoutMs, bool pump)
{
    for (const DWORD start = GetTickCount();;) {
        for (MSG message; pump && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (done())
            return true;
        if (GetTickCount() - start >= timeoutMs)
            return false;
        if (pump)
            MsgWaitForMultipleObjects(0, nullptr, FALSE, kPollMs, QS_ALLINPUT);
        else
            Sleep(kPollMs);
    }
}

// The windows that EnumChildWindows hands out, or EnumWindows for no parent.
std::vector<HWND> enumerate(HWND parent)
{
    std::vector<HWND> windows;
    const WNDENUMPROC add = [](HWND window, LPARAM list) CALLBACK -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    };
    if (parent)
        EnumChildWindows(parent, add, reinterpret_cast<LPARAM>(&windows));
    else
        EnumWindows(add, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

// The box's icon is a static control showing one of the system's shared icons. Its id
// differs between Windows (20) and Wine, so it is found by its style.
UINT iconKind(HWND box)
{
    for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (_wcsicmp(windowClass(child).c_str(), L"Static") != 0
            || (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) != SS_ICON)
            continue;
        const auto icon = reinterpret_cast<HICON>(SendMessageW(child, STM_GETICON, 0, 0));
        for (const auto& [id, kind] : {std::pair{IDI_HAND, MB_ICONERROR}, {IDI_EXCLAMATION, MB_ICONWARNING},
                                       {IDI_ASTERISK, MB_ICONINFORMATION}, {IDI_QUESTION, MB_ICONQUESTION}}) {
            if (icon && icon == LoadIconW(nullptr, id))
                return kind;
        }
        return 0;
    }
    return 0;
}

} // namespace

UiRobot::UiRobot(Script script)
    : thread_([this, script] {
          try {
              script(*this);
          } catch (const std::exception& e) {
              failure_ = std::string("robot: ") + e.what();
          } catch (...) {
              failure_ = "robot: unknown exception";
          }
          if (!failure_.empty()) {
              for (HWND window : processWindows())
                  PostMessageW(window, WM_CLOSE, 0, 0);
          }
          ended_ = true;
      })
{
}

UiRobot::~UiRobot()
{
    finish();
}

std::string UiRobot::finish()
{
    if (thread_.joinable())
        poll([this] { return ended_.load(); }, INFINITE, true);
    if (thread_.joinable())
        thread_.join();
    return failure_;
}

HWND UiRobot::waitForWindow(const std::wstring& className, const std::wstring& title, DWORD timeoutMs)
{
    return waitForWindow(
        [&](HWND window) {
            return (className.empty() || windowClass(window) == className)
                && (title.empty() || windowText(window) == title);
        },
        "of class \"" + narrow(className) + "\" titled \"" + narrow(title) + "\"", timeoutMs);
}

HWND UiRobot::waitForWindow(const std::function<bool(HWND)>& matches, const std::string& what, DWORD timeoutMs)
{
    HWND found = nullptr;
    const auto find = [&] {
        for (HWND window : processWindows()) {
            if (matches(window))
                return (found = window) != nullptr;
        }
        return false;
    };
    if (poll(find, timeoutMs, false))
        return found;
    std::string seen;
    for (HWND window : processWindows())
        seen += " [" + narrow(windowClass(window)) + " \"" + narrow(windowText(window)) + "\"]";
    throw RobotFailure("no window " + what + " within " + std::to_string(timeoutMs) + " ms; visible:"
                       + (seen.empty() ? " none" : seen));
}

void UiRobot::waitForWindowGone(HWND window, DWORD timeoutMs)
{
    if (!poll([&] { return !IsWindow(window); }, timeoutMs, false))
        throw RobotFailure("window \"" + narrow(windowText(window)) + "\" still open after "
                           + std::to_string(timeoutMs) + " ms");
}

MessageBoxInfo readMessageBox(HWND box)
{
    MessageBoxInfo info{windowText(box), windowText(GetDlgItem(box, 0xFFFF)), iconKind(box), {}};
    for (int id = IDOK; id <= IDCONTINUE; ++id) {
        HWND button = GetDlgItem(box, id);
        if (button && IsWindowVisible(button))
            info.buttons.push_back(id);
    }
    return info;
}

void pressButton(HWND dialog, int controlId)
{
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(controlId, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, controlId)));
}

HWND findDescendant(HWND parent, const std::wstring& className, int controlId)
{
    for (HWND window : enumerate(parent)) {
        if ((className.empty() || _wcsicmp(windowClass(window).c_str(), className.c_str()) == 0)
            && (controlId < 0 || GetDlgCtrlID(window) == controlId))
            return window;
    }
    return nullptr;
}

void typeText(HWND edit, const std::wstring& text)
{
    SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void pressKey(WORD key, bool shift)
{
    std::vector<INPUT> inputs;
    const auto add = [&](WORD code, bool up) {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = code;
        input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(code, MAPVK_VK_TO_VSC));
        input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
        inputs.push_back(input);
    };
    if (shift)
        add(VK_SHIFT, false);
    add(key, false);
    add(key, true);
    if (shift)
        add(VK_SHIFT, true);
    if (SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) != inputs.size())
        throw RobotFailure("the keyboard input was not taken");
}

HWND focusedWindow(HWND window)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) ? info.hwndFocus : nullptr;
}

void postKey(HWND focus, UINT virtualKey)
{
    // Repeat count 1 and the scan code; a release also has the previous-state and transition bits.
    const UINT scanCode = MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC) << 16;
    PostMessageW(focus, WM_KEYDOWN, virtualKey, static_cast<LPARAM>(scanCode | 1u));
    PostMessageW(focus, WM_KEYUP, virtualKey, static_cast<LPARAM>(scanCode | 0xC0000001u));
}

std::wstring windowText(HWND window)
{
    std::wstring text(static_cast<size_t>(window ? GetWindowTextLengthW(window) : 0) + 1, L'\0');
    text.resize(window ? static_cast<size_t>(GetWindowTextW(window, &text[0], static_cast<int>(text.size()))) : 0);
    return text;
}

std::wstring windowClass(HWND window)
{
    wchar_t name[256] = {};
    GetClassNameW(window, name, 256);
    return name;
}

std::vector<HWND> processWindows()
{
    std::vector<HWND> windows;
    for (HWND window : enumerate(nullptr)) {
        DWORD processId = 0;
        GetWindowThreadProcessId(window, &processId);
        if (processId == GetCurrentProcessId() && IsWindowVisible(window))
            windows.push_back(window);
    }
    return windows;
}

void pumpMessages(DWORD milliseconds)
{
    poll([] { return false; }, milliseconds, true);
}

bool pumpUntil(const std::function<bool()>& condition, DWORD timeoutMs)
{
    return poll(condition, timeoutMs, true);
}
