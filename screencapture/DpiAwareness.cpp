#include "screencapture/DpiAwareness.h"

#include <windows.h>

namespace screenCapture {

namespace {

using RtlGetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOEXW*);
using SetProcessDpiAwareFunction = BOOL(WINAPI*)();

template <typename Function>
Function lookUp(HMODULE module, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// GetVersionEx lies to programs without a manifest; ntdll's RtlGetVersion does not.
RtlGetVersionFunction rtlGetVersion()
{
    static const RtlGetVersionFunction function = [] {
        HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
        return ntdll ? lookUp<RtlGetVersionFunction>(ntdll, "RtlGetVersion") : nullptr;
    }();
    return function;
}

// RtlGetVersion fills in the extended record only when its size field says 284 bytes.
static_assert(sizeof(OSVERSIONINFOEXW) == 284, "OSVERSIONINFOEXW layout");

bool isVistaOrLater()
{
    const RtlGetVersionFunction getVersion = rtlGetVersion();
    if (!getVersion)
        return false;
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    return getVersion(&version) == 0 && version.dwMajorVersion >= 6;
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
