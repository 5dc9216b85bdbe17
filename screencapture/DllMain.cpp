#include "screencapture/ModuleInstance.h"

namespace {
HINSTANCE recordedInstance = nullptr;
}

HINSTANCE screenCapture::moduleInstance()
{
    return recordedInstance ? recordedInstance : GetModuleHandleW(nullptr);
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH) {
        recordedInstance = instance;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}
