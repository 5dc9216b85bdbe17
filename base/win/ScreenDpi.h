#pragma once
// The screen's logical DPI, shared by the overlay's pen and the markup toolkit.

// Computed once per process from the screen DC, on the first call: the integer average of
// the horizontal and vertical logical pixels per inch; 96 when there is no screen DC.
int screenDpi();
