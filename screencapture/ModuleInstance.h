#pragma once
// The instance handle that the module was loaded with, recorded by DllMain.

#include <windows.h>

namespace screenCapture {

// The module's own instance, or the calling process's (GetModuleHandleW(NULL)) when the
// module has not been told its handle yet.
HINSTANCE moduleInstance();
void setModuleInstance(HINSTANCE instance);

} // namespace screenCapture
