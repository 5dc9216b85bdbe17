// pryxa-Assistant: the suite's assistant as far as the screen capture needs it. It takes
// the capture module's launch arguments on its command line and, while it runs, through
// WM_COPYDATA (code 111) to its hidden window of class "Pryxa_Assistent"; it saves each
// file it is given into its output folder and tells the user where it went, or why it
// could not. Files are saved on a worker thread, so a sender is answered at once. One
// instance runs at a time: a second one hands its command line to the first and ends. It
// ends itself a minute after the last file has been saved.

#include "base/win/KernelHandle.h"
#include "base/win/TempFolder.h"
#include "companions/notifyicon/NotifyIcon.h"
#include "companions/settings/Settings.h"
#include "screencapture/AssistantHandOff.h"
#include "screencapture/FileHandlerArgs.h"
#include "tools/assistant/AssistantWindow.h"
#include "tools/assistant/CommandLine.h"
#include "tools/assistant/Inbox.h"

#include <windows.h>
#include <shlobj.h>

namespace {

constexpr UINT kIdleMs = 60000;

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

// Another instance runs (or is starting): hand it the command line.
int forwardToRunningInstance()
{
    HWND window = nullptr;
    for (int i = 0; i < 100 && !(window = FindWindowW(kAssistantWindowClass, nullptr)); ++i)
        Sleep(50);
    if (!window)
        return 1;
    return screenCapture::sendCommandLine(window, ownArguments()) ? 0 : 1;
}

int run()
{
    KernelHandle single(CreateMutexW(nullptr, FALSE, L"Pryxa-Assistant-Instance"));
    if (single && GetLastError() == ERROR_ALREADY_EXISTS)
        return forwardToRunningInstance();

    Inbox inbox(defaultOutputFolder(), joinPath(moduleTempFolder(), L"pryxa-Assistant.log"), notifyIcon_info);
    AssistantWindow window([&inbox](const ZString& line) { inbox.receive(splitArguments(line)); }, kIdleMs);
    if (!window.open())
        return 1;
    const ZString arguments = ownArguments();
    if (!arguments.isEmpty())
        window.receive(arguments);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int)
{
    try {
        return run();
    } catch (...) {
        // No usable temporary folder: the user has been told.
        return 1;
    }
}
