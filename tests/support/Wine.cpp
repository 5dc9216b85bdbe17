#include "tests/support/Wine.h"

#include <windows.h>

bool runningOnWine()
{
    HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll && GetProcAddress(ntdll, "wine_get_version");
}
