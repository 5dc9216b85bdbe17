#pragma once
// The instance whose resources and window classes the module uses.

#include <windows.h>

namespace screenCapture {

// The module that this code is linked into (screencapture.dll, or a test program that
// links the code itself), unless another instance has been set.
HINSTANCE moduleInstance();
// Null goes back to the module's own instance. Tests point a program at the DLL's
// resources with it.
void setModuleInstance(HINSTANCE instance);

} // namespace screenCapture
