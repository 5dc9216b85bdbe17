#pragma once

namespace screenCapture {

// Makes the process DPI aware on Windows Vista and later, so that rectangles and bitmaps
// are in physical pixels. Silent when the system lacks what it needs. Done on every
// capture; only the look-up of RtlGetVersion is kept.
void makeProcessDpiAware();

} // namespace screenCapture
