#pragma once
// A file copy that the user can repeat: five tries, then a "File copy error" box with
// Retry and Cancel.

#include "base/ZString.h"

#include <windows.h>

// Copies `source` over `destination` (an existing file is overwritten). False without a
// message if the source is empty or missing; false when the user cancels the error box.
bool copyFileWithRetry(const ZString& source, const ZString& destination);

// The call that copies one file, CopyFileW unless replaced. Tests replace it to count
// the tries; the previous call is returned so that it can be put back.
using CopyFileCall = BOOL(WINAPI*)(LPCWSTR source, LPCWSTR destination, BOOL failIfExists);
CopyFileCall replaceCopyFileCall(CopyFileCall call);
