#pragma once
// Where the tests run differs in a few places; tests ask instead of guessing.

#include <windows.h>

// True under Wine (its ntdll exports wine_get_version).
inline bool runningOnWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}
