#pragma once
// Hands files to the suite: into a running document tool's drop folder, to a running
// assistant window by WM_COPYDATA, or on the command line of a newly started assistant,
// in that order of preference. Silent on failure.

#include "screencapture/FileHandlerArgs.h"

#include <windows.h>

namespace screenCapture {

// WM_COPYDATA's dwData for a command line sent to the assistant.
constexpr ULONG_PTR kCommandLineCopyData = 111;

void handToAssistant(const FileHandlerArgs& args);

} // namespace screenCapture
