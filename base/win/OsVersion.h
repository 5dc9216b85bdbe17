#pragma once
// The running system's version from ntdll's RtlGetVersion, which, unlike GetVersionEx, does
// not depend on the program's manifest.

#include <windows.h>

// Fills `version` (the extended record); false when RtlGetVersion is missing or fails. The
// function is looked up in the loaded ntdll once per process, thread-safely; a missing one
// is remembered as well.
bool osVersion(OSVERSIONINFOEXW& version);
