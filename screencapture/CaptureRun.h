#pragma once
// One capture from the call to the delivered picture, on the calling thread.

#include "screencapture/CaptureApi.h"

namespace screenCapture {

// The whole of one exported capture() call: GDI+ for its length, then the capture.
void performCapture(Mode mode, Target target);

// Grabs with `mode` and delivers to `target`; tells the user when nothing was grabbed.
// Needs GDI+ started.
void captureAndDeliver(Mode mode, Target target);

} // namespace screenCapture
