#include "tests/screencapture/OverlayHand.h"

#include <gtest/gtest.h>

#include <cstdlib>

OverlayHand::OverlayHand(UiRobot& robot)
    : window(robot.waitForWindow(
        [](HWND w) { return _wcsicmp(windowClass(w).c_str(), L"Static") == 0 && windowText(w) == L"ScreenCapture"; },
        "the overlay"))
{
}

void OverlayHand::post(UINT message, WPARAM keys, POINT p)
{
    PostMessageW(window, message, keys, MAKELPARAM(static_cast<WORD>(p.x), static_cast<WORD>(p.y)));
}

void OverlayHand::keyUp(UINT key)
{
    PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void selectWith(screenCapture::ScreenCapture& capture, const std::function<void(OverlayHand&)>& user)
{
    UiRobot robot([&](UiRobot& r) {
        OverlayHand overlay(r);
        user(overlay);
    });
    capture.selectArea();
    EXPECT_EQ(robot.finish(), "");
}

RECT virtualScreen()
{
    const int x = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int y = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return {x, y, x + GetSystemMetrics(SM_CXVIRTUALSCREEN), y + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

PixelGrid screenOnce(HWND overlay, const RECT& area, const std::function<bool(const PixelGrid&)>& ready)
{
    pumpUntil([&] { return PostMessageW(overlay, WM_NULL, 0, 0) && ready(readScreenPixels(area)); }, 3000);
    Sleep(100);
    return readScreenPixels(area);
}

uint32_t calmPattern(int x, int y)
{
    return rgb(40 + (x % 64), 80 + (y % 64), 120 + ((x + y) % 32));
}

bool isVeiled(uint32_t seen, uint32_t clear)
{
    for (int shift : {0, 8, 16}) {
        const int expected = (static_cast<int>((clear >> shift) & 0xFF) * 105 + 255 * 150 + 127) / 255;
        if (std::abs(static_cast<int>((seen >> shift) & 0xFF) - expected) > 2)
            return false;
    }
    return true;
}
