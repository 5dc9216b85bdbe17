#include "screencapture/ModuleInstance.h"

namespace screenCapture {

namespace {
HINSTANCE recordedInstance = nullptr;
}

HINSTANCE moduleInstance()
{
    return recordedInstance ? recordedInstance : GetModuleHandleW(nullptr);
}

void setModuleInstance(HINSTANCE instance)
{
    recordedInstance = instance;
}

} // namespace screenCapture
