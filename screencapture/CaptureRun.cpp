#include "screencapture/CaptureRun.h"

#include "screencapture/Delivery.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/GdiplusSession.h"
#include "screencapture/ModuleInstance.h"
#include "screencapture/ScreenCapture.h"

namespace screenCapture {

void performCapture(Mode mode, Target target)
{
    GdiplusSession gdiplus;
    captureAndDeliver(mode, target);
}

void captureAndDeliver(Mode mode, Target target)
{
    makeProcessDpiAware();
    ScreenCapture capture(moduleInstance());
    capture.grab(mode);
    if (capture.cancelled())
        return;
    if (!capture.image()) {
        MessageBoxW(nullptr, L"Could not capture the screen", L"Error", MB_OK | MB_ICONWARNING);
        return;
    }
    deliver(mode, target, capture);
}

} // namespace screenCapture
