#include "base/win/ScreenDpi.h"

#include "base/win/GdiHandles.h"

namespace {

constexpr int kDefaultDpi = 96;

int readScreenDpi()
{
    WindowDC screen;
    if (!screen)
        return kDefaultDpi;
    const int horizontal = GetDeviceCaps(screen.get(), LOGPIXELSX);
    const int vertical = GetDeviceCaps(screen.get(), LOGPIXELSY);
    return (horizontal + vertical) / 2;
}

} // namespace

int screenDpi()
{
    // Done once, even when no DC was available: the value then stays at 96.
    static const int dpi = readScreenDpi();
    return dpi;
}
