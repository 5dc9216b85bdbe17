// pryxa-Assistant: the suite's assistant as far as the screen capture needs it. It takes
// the capture module's launch arguments on its command line and, while it runs, through
// WM_COPYDATA (code 111) to its hidden window of class "Pryxa_Assistent"; it saves each
// file it is given into its output folder and tells the user where it went, or why it
// could not. One instance runs at a time: a second one hands its command line to the
// first and ends. It ends itself a minute after the last file.

#include "base/win/KernelHandle.h"
#include "base/win/TempFolder.h"
#include "companions/notifyicon/NotifyIcon.h"
#include "companions/settings/Settings.h"
#include "screencapture/AssistantHandOff.h"
#include "screencapture/FileHandlerArgs.h"
#include "tools/assistant/Inbox.h"

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

#include <memory>
#include <vector>

namespace {

const wchar_t* const kWindowClass = L"Pryxa_Assistent";
constexpr UINT_PTR kIdleTimer = 1;
constexpr UINT kIdleMs = 60000;

std::unique_ptr<Inbox> inbox;

struct LocalFreeDeleter {
    void operator()(LPWSTR* memory) const { LocalFree(memory); }
};

// The items after the program name of a whole command line.
std::vector<ZString> argumentsOf(const ZString& commandLine)
{
    int count = 0;
    const std::unique_ptr<LPWSTR, LocalFreeDeleter> split(CommandLineToArgvW(commandLine.c_str(), &count));
    std::vector<ZString> items;
    for (int i = 1; split && i < count; ++i)
        items.emplace_back(split.get()[i]);
    return items;
}

// The items of a command line that holds arguments only.
std::vector<ZString> splitArguments(const ZString& arguments)
{
    // CommandLineToArgvW reads its first item by the rules for a program name.
    return argumentsOf(L"pryxa-Assistant " + arguments);
}

ZString ownArguments()
{
    return screenCapture::joinArguments(argumentsOf(GetCommandLineW()));
}

ZString defaultOutputFolder()
{
    wchar_t documents[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, documents);
    return userConfig_getStr(L"assistant.outputDir", joinPath(documents, L"Pryxa"));
}

void receive(HWND window, const ZString& arguments)
{
    inbox->receive(splitArguments(arguments));
    SetTimer(window, kIdleTimer, kIdleMs, nullptr);
}

LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_COPYDATA: {
        const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        if (data->dwData != screenCapture::kCommandLineCopyData || data->cbData < sizeof(wchar_t))
            return FALSE;
        // The text is only valid during the message: copy it, without trusting a terminator.
        receive(window, ZString(static_cast<const wchar_t*>(data->lpData),
                                static_cast<int>(data->cbData / sizeof(wchar_t)) - 1));
        return TRUE;
    }
    case WM_TIMER:
    case WM_CLOSE:
        DestroyWindow(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

// Another instance runs (or is starting): hand it the command line.
int forwardToRunningInstance()
{
    HWND window = nullptr;
    for (int i = 0; i < 100 && !(window = FindWindowW(kWindowClass, nullptr)); ++i)
        Sleep(50);
    if (!window)
        return 1;
    return screenCapture::sendCommandLine(window, ownArguments()) ? 0 : 1;
}

int run(HINSTANCE instance)
{
    KernelHandle single(CreateMutexW(nullptr, FALSE, L"Pryxa-Assistant-Instance"));
    if (single && GetLastError() == ERROR_ALREADY_EXISTS)
        return forwardToRunningInstance();

    inbox = std::make_unique<Inbox>(defaultOutputFolder(), joinPath(moduleTempFolder(), L"pryxa-Assistant.log"),
                                    notifyIcon_info);
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = windowProc;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass);
    HWND window = CreateWindowExW(0, kWindowClass, L"Pryxa Assistant", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                  instance, nullptr);
    if (!window)
        return 1;
    const ZString arguments = ownArguments();
    if (arguments.isEmpty())
        SetTimer(window, kIdleTimer, kIdleMs, nullptr);
    else
        receive(window, arguments);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int)
{
    try {
        return run(instance);
    } catch (...) {
        // No usable temporary folder: the user has been told.
        return 1;
    }
}
