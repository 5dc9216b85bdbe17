#include "screencapture/CaptureRun.h"

#include "base/win/GdiplusSession.h"
#include "screencapture/Delivery.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/ModuleInstance.h"
#include "screencapture/ScreenCapture.h"
#include "screencapture/ui/ScreenCaptureUi.h"
#include "xhtml/win/ModuleResourceLoader.h"

namespace screenCapture {

namespace {

// How long the run waits after "start" so that the dialog has left the screen.
constexpr DWORD kDialogVanishMs = 250;

// Asks for mode and target in the capture dialog; false when the user closed it instead.
bool askUser(Mode& mode, Target& target)
{
    ScreenCaptureUi dialog;
    dialog.context().setResourceLoader(std::make_unique<xhtml::ModuleResourceLoader>(moduleInstance()));
    xhtml::XhtmlFrameView::registerClass(moduleInstance());
    if (!dialog.create(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, xhtml::XhtmlFrameView::className, L"",
                       WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, nullptr, nullptr, moduleInstance(),
                       &dialog))
        return false;
    dialog.makeModal();
    if (!dialog.accepted())
        return false;
    mode = dialog.mode();
    target = dialog.target();
    Sleep(kDialogVanishMs);
    return true;
}

} // namespace

void performCapture(Mode mode, Target target)
{
    GdiplusSession gdiplus;
    // Without a mode the dialog decides both; the target given is not used then.
    if (mode == noMode && !askUser(mode, target))
        return;
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
