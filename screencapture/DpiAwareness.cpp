#include "screencapture/DpiAwareness.h"

#include <windows.h>

namespace screenCapture {

void makeProcessDpiAware()
{
    // Looked up rather than imported: user32 has it from Windows Vista on, and its absence
    // is the whole test for an older system. The module imports user32, so it is loaded.
    using SetProcessDpiAwareFunction = BOOL(WINAPI*)();
    const auto setAware = reinterpret_cast<SetProcessDpiAwareFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetProcessDPIAware")));
    if (setAware)
        setAware();
}

} // namespace screenCapture
