#pragma once
// Sends the picture of one capture to its target: the clipboard (with a tray note), the
// image editor, a PNG file the user names, or the PDF path for every other target.
// Failures are shown in message boxes; nothing is returned.

#include "base/ZString.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/Gdiplus.h"

namespace screenCapture {

class ScreenCapture;

void deliver(Mode mode, Target target, ScreenCapture& capture);

// The suggested document name, without extension: what was captured, or the window's
// title when it has 1 to 200 characters.
ZString defaultName(Mode mode, const ZString& windowTitle);

// A chosen file name with ".png" appended unless it already ends so (in any case).
ZString withPngExtension(const ZString& path);

// Saves the image as a PNG in the module's temporary folder; empty (after telling the
// user) when that failed.
ZString saveTemporaryPng(Gdiplus::Bitmap& image);

// How the clipboard target tells the user; tests replace it to see the texts.
using TrayNote = void (*)(const ZString& heading, const ZString& message);
extern TrayNote trayNote;

} // namespace screenCapture
