#include "screencapture/SelectionGeometry.h"

#include <gtest/gtest.h>

namespace screenCapture {
namespace {

// Left of and above the primary monitor, positions are negative; bits above the low 32 play no part.
TEST(SelectionGeometry, MousePositionsAreSignExtended)
{
    const int cases[][2] = {{0, 0}, {1919, 1079}, {-1, -1}, {-1920, 5}, {7, -1080}, {32767, -32768}};
    // Bits above the low 32 exist on x86-64 only; on x86 this is 0.
    const auto highBits = static_cast<LPARAM>(static_cast<ULONG_PTR>(0xABCDull << 32));
    for (const auto& [x, y] : cases) {
        const LPARAM low = static_cast<LPARAM>(static_cast<WORD>(x) | (static_cast<DWORD>(static_cast<WORD>(y)) << 16));
        for (const LPARAM lParam : {low, low | highBits}) {
            const POINT p = mousePosition(lParam);
            EXPECT_EQ(std::pair(p.x, p.y), std::pair(LONG(x), LONG(y))) << std::hex << lParam;
        }
    }
}

} // namespace
} // namespace screenCapture
