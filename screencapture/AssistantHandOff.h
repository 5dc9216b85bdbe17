#pragma once
// Hands files to the suite: into a running document tool's drop folder, to a running
// assistant window by WM_COPYDATA, or on the command line of a newly started assistant,
// in that order of preference. Silent on failure.

#include "screencapture/FileHandlerArgs.h"

#include <windows.h>

namespace screenCapture {

// WM_COPYDATA's dwData for a command line sent to the assistant.
constexpr ULONG_PTR kCommandLineCopyData = 111;

// Sends a command line, terminator included, to the window of a running suite or assistant;
// true if the window took it. A second assistant hands its own line on the same way.
inline bool sendCommandLine(HWND window, const ZString& commandLine)
{
    COPYDATASTRUCT data = {};
    data.dwData = kCommandLineCopyData;
    data.cbData = static_cast<DWORD>((commandLine.length() + 1) * sizeof(wchar_t));
    data.lpData = const_cast<wchar_t*>(commandLine.c_str());
    return SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)) != 0;
}

void handToAssistant(const FileHandlerArgs& args);

} // namespace screenCapture
