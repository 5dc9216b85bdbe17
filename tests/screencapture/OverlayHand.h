#pragma once
// The user's hand on the selection overlay, for tests: mouse and key messages posted to
// the overlay's window from a robot thread while the test's thread sits in its message
// loop, and how the overlay looks on the screen.

#include "screencapture/ScreenCapture.h"
#include "tests/support/TestPixels.h"
#include "tests/support/UiRobot.h"

#include <functional>

struct OverlayHand {
    // Waits for the overlay to appear.
    explicit OverlayHand(UiRobot& robot);

    // `p` in the overlay's client coordinates: (0, 0) is the virtual screen's top left.
    void post(UINT message, WPARAM keys, POINT p);
    void press(POINT p) { post(WM_LBUTTONDOWN, MK_LBUTTON, p); }
    void moveTo(POINT p) { post(WM_MOUSEMOVE, MK_LBUTTON, p); }
    void release(POINT p) { post(WM_LBUTTONUP, 0, p); }
    void keyUp(UINT key);

    HWND window;
};

// Runs the overlay of `capture` on this thread while the robot acts as the user.
void selectWith(screenCapture::ScreenCapture& capture, const std::function<void(OverlayHand&)>& user);

// The virtual screen, in screen coordinates.
RECT virtualScreen();

// Reads `area` of the screen once `ready` holds, or after a few seconds. Wine may hold back
// drawing done outside WM_PAINT until the window's thread takes another message, so each try
// posts one to the overlay.
PixelGrid screenOnce(HWND overlay, const RECT& area, const std::function<bool(const PixelGrid&)>& ready);

// Calm colours, far from black, white and their own veiled look.
uint32_t calmPattern(int x, int y);

// `seen` is `clear` under the overlay's white veil: each channel blended with white at 150 of 255.
bool isVeiled(uint32_t seen, uint32_t clear);
