#include "screencapture/ModuleInstance.h"

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH) {
        screenCapture::setModuleInstance(instance);
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}
