#pragma once
// The module (DLL or EXE) that the calling code is linked into, and its folder.

#include "base/ZString.h"

#include <windows.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

inline HMODULE thisModule()
{
    return reinterpret_cast<HMODULE>(&__ImageBase);
}

// The folder of a loaded module, without a trailing backslash; empty on failure.
ZString moduleFolder(HMODULE module);
