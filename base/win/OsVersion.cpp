#include "base/win/OsVersion.h"

namespace {

using RtlGetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOEXW*);

// GetVersionEx lies to programs without a manifest; ntdll's RtlGetVersion does not.
RtlGetVersionFunction rtlGetVersion()
{
    static const RtlGetVersionFunction function = [] {
        HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
        return ntdll ? reinterpret_cast<RtlGetVersionFunction>(
                           reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetVersion")))
                     : nullptr;
    }();
    return function;
}

// RtlGetVersion fills in the extended record only when its size field says 284 bytes.
static_assert(sizeof(OSVERSIONINFOEXW) == 284, "OSVERSIONINFOEXW layout");

} // namespace

bool osVersion(OSVERSIONINFOEXW& version)
{
    const RtlGetVersionFunction getVersion = rtlGetVersion();
    if (!getVersion)
        return false;
    version = {};
    version.dwOSVersionInfoSize = sizeof version;
    return getVersion(&version) == 0;
}
