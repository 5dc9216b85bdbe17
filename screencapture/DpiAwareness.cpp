#include "screencapture/DpiAwareness.h"

#include "base/win/OsVersion.h"

#include <windows.h>

namespace screenCapture {

namespace {

using SetProcessDpiAwareFunction = BOOL(WINAPI*)();

template <typename Function>
Function lookUp(HMODULE module, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool isVistaOrLater()
{
    OSVERSIONINFOEXW version;
    return osVersion(version) && version.dwMajorVersion >= 6;
}

} // namespace

void makeProcessDpiAware()
{
    if (!isVistaOrLater())
        return;
    HMODULE user32 = LoadLibraryW(L"user32.dll");
    if (!user32)
        return;
    if (auto setAware = lookUp<SetProcessDpiAwareFunction>(user32, "SetProcessDPIAware"))
        setAware();
    FreeLibrary(user32);
}

} // namespace screenCapture
