// The exported functions, in C++ and with C names.

#include "screencapture/CaptureApi.h"

#include "base/win/TempFolder.h"
#include "screencapture/CaptureRun.h"
#include "screencapture/CaptureVocabulary.h"

#include <windows.h>

namespace screenCapture {

// An unusable temporary folder is the one failure that reaches the host, after the user
// has been told. Nothing else may leave the module.
void capture(Mode mode, Target target)
{
    try {
        performCapture(mode, target);
    } catch (const TempFolderError&) {
        throw;
    } catch (...) {
    }
}

// Only whether CF_BITMAP is offered: no data is read, so hosts can call this often.
bool canCaptureClipboard()
{
    if (!OpenClipboard(nullptr))
        return false;
    UINT format = EnumClipboardFormats(0);
    while (format != 0 && format != CF_BITMAP)
        format = EnumClipboardFormats(format);
    CloseClipboard();
    return format == CF_BITMAP;
}

const wchar_t* modeToName(Mode mode) { return nameOf(mode); }
Mode nameToMode(const wchar_t* name) { return modeNamed(name); }
const wchar_t* targetToName(Target target) { return nameOf(target); }
Target nameToTarget(const wchar_t* name) { return targetNamed(name); }

} // namespace screenCapture

// C hosts cannot take an exception: for them the message box is the whole report.
void SCREENCAPTURE_CALL screenCapture_capture(int32_t mode, int32_t target)
{
    try {
        screenCapture::capture(static_cast<screenCapture::Mode>(mode), static_cast<screenCapture::Target>(target));
    } catch (...) {
    }
}

int32_t SCREENCAPTURE_CALL screenCapture_canCaptureClipboard(void) { return screenCapture::canCaptureClipboard() ? 1 : 0; }

const wchar_t* SCREENCAPTURE_CALL screenCapture_modeToName(int32_t mode)
{
    return screenCapture::modeToName(static_cast<screenCapture::Mode>(mode));
}

int32_t SCREENCAPTURE_CALL screenCapture_nameToMode(const wchar_t* name) { return screenCapture::nameToMode(name); }

const wchar_t* SCREENCAPTURE_CALL screenCapture_targetToName(int32_t target)
{
    return screenCapture::targetToName(static_cast<screenCapture::Target>(target));
}

int32_t SCREENCAPTURE_CALL screenCapture_nameToTarget(const wchar_t* name) { return screenCapture::nameToTarget(name); }
