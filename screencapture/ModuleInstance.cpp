#include "screencapture/ModuleInstance.h"

#include "base/win/ThisModule.h"

namespace screenCapture {

namespace {
HINSTANCE chosenInstance = nullptr;
}

HINSTANCE moduleInstance()
{
    return chosenInstance ? chosenInstance : thisModule();
}

void setModuleInstance(HINSTANCE instance)
{
    chosenInstance = instance;
}

} // namespace screenCapture
