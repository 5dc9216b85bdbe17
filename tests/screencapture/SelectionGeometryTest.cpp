#include "screencapture/SelectionGeometry.h"

#include <gtest/gtest.h>

#include <tuple>

namespace screenCapture {
namespace {

auto sides(const RECT& r)
{
    return std::tuple(r.left, r.top, r.right, r.bottom);
}

TEST(SelectionGeometry, DamagedAreaCoversTheOldSelectionAndTheNewPoint)
{
    struct Case {
        POINT start, current, next;
        RECT expected;
    };
    const Case cases[] = {
        {{100, 100}, {200, 150}, {300, 250}, {100, 100, 300, 250}}, // grows
        {{100, 100}, {200, 150}, {120, 110}, {100, 100, 200, 150}}, // shrinks: the old one is stale
        {{100, 100}, {200, 150}, {40, 30}, {40, 30, 200, 150}},     // flips over the start
        {{100, 100}, {100, 100}, {130, 90}, {100, 90, 130, 100}},   // first move
        {{-50, -20}, {10, 5}, {-80, 40}, {-80, -20, 10, 40}},       // left of and above the origin
    };
    for (const Case& c : cases)
        EXPECT_EQ(sides(damagedArea(c.start, c.current, c.next)), sides(c.expected));
}

// Left of and above the primary monitor, positions are negative; bits above the low 32 play no part.
TEST(SelectionGeometry, MousePositionsAreSignExtended)
{
    const int cases[][2] = {{0, 0}, {1919, 1079}, {-1, -1}, {-1920, 5}, {7, -1080}, {32767, -32768}};
    for (const auto& [x, y] : cases) {
        const LPARAM low = static_cast<LPARAM>(static_cast<WORD>(x) | (static_cast<DWORD>(static_cast<WORD>(y)) << 16));
        for (const LPARAM lParam : {low, low | static_cast<LPARAM>(static_cast<ULONG_PTR>(0xABCD) << 32)}) {
            const POINT p = mousePosition(lParam);
            EXPECT_EQ(std::pair(p.x, p.y), std::pair(LONG(x), LONG(y))) << std::hex << lParam;
        }
    }
}

} // namespace
} // namespace screenCapture
