#include "screencapture/AssistantHandOff.h"

#include "base/win/FileCopy.h"
#include "base/win/KernelHandle.h"
#include "base/win/TempFolder.h"
#include "companions/settings/Settings.h"

#include <shellapi.h>
#include <shlwapi.h>

namespace screenCapture {

namespace {

// A running document tool holds this mutex.
bool documentToolRunning()
{
    KernelHandle mutex(CreateMutexW(nullptr, FALSE, L"Pryxa-DocTool-Sink"));
    return mutex && GetLastError() == ERROR_ALREADY_EXISTS;
}

ZString fileNameOf(const ZString& path)
{
    return ZString(PathFindFileNameW(path.c_str()));
}

void dropIntoDocumentTool(const FileHandlerArgs& args)
{
    const ZString dropFolder = joinPath(moduleTempFolder(), L"Pryxa\\DocToolSink");
    createFolderTree(dropFolder);
    for (const ZString& file : args.files) {
        copyFileWithRetry(file, joinPath(dropFolder, fileNameOf(file)));
        if (args.deleteFile && PathFileExistsW(file.c_str()))
            DeleteFileW(file.c_str());
    }
}

// The suite's main window first, then the assistant's ("Assistent" is its class's spelling).
HWND assistantWindow()
{
    if (HWND creator = FindWindowW(L"Pryxa_Creator", nullptr)) {
        // Asked before every hand-off to the suite's window, as its other callers do; the
        // answer itself is not used.
        GetForegroundWindow();
        return creator;
    }
    return FindWindowW(L"Pryxa_Assistent", nullptr);
}

void startAssistant(const ZString& commandLine)
{
    const ZString program = joinPath(progConfig_getStr(L"BinDir", ZString()), L"pryxa-Assistant.exe");
    ShellExecuteW(nullptr, L"open", program.c_str(), commandLine.c_str(), nullptr, SW_SHOW);
}

} // namespace

void handToAssistant(const FileHandlerArgs& args)
{
    if (documentToolRunning()) {
        dropIntoDocumentTool(args);
        return;
    }
    const ZString commandLine = args.commandLine();
    if (HWND window = assistantWindow())
        sendCommandLine(window, commandLine);
    else
        startAssistant(commandLine);
}

} // namespace screenCapture
