#include "base/win/OsVersion.h"

namespace {

using RtlGetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOEXW*);

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
