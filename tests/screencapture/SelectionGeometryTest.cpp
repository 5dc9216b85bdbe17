#include "screencapture/SelectionGeometry.h"

#include <gtest/gtest.h>

namespace screenCapture {
namespace {

bool sameRect(const RECT& a, const RECT& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

LPARAM mouseLParam(int x, int y)
{
    const DWORD low = static_cast<WORD>(x);
    const DWORD high = static_cast<WORD>(y);
    return static_cast<LPARAM>(low | (high << 16));
}

TEST(SelectionGeometry, SelectionIsTheSameRectangleWhicheverWayItWasDragged)
{
    const POINT a = {10, 20}, b = {110, 70};
    const RECT expected = {10, 20, 110, 70};
    const std::pair<POINT, POINT> drags[] = {{a, b}, {b, a}, {{10, 70}, {110, 20}}, {{110, 20}, {10, 70}}};
    for (const auto& [start, current] : drags)
        EXPECT_TRUE(sameRect(selectionRect(start, current), expected)) << start.x << "," << start.y;
}

TEST(SelectionGeometry, AClickWithoutMovementIsEmpty)
{
    const RECT r = selectionRect({40, 50}, {40, 50});
    EXPECT_EQ(r.right - r.left, 0);
    EXPECT_EQ(r.bottom - r.top, 0);
    EXPECT_EQ(selectionRect({40, 50}, {90, 50}).bottom - selectionRect({40, 50}, {90, 50}).top, 0);
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
    for (const Case& c : cases) {
        const RECT r = damagedArea(c.start, c.current, c.next);
        EXPECT_TRUE(sameRect(r, c.expected)) << r.left << "," << r.top << "," << r.right << "," << r.bottom;
    }
}

TEST(SelectionGeometry, MousePositionsAreSignExtended)
{
    struct Case {
        int x, y;
    };
    const Case cases[] = {{0, 0}, {1919, 1079}, {-1, -1}, {-1920, 5}, {7, -1080}, {32767, -32768}};
    for (const Case& c : cases) {
        const POINT p = mousePosition(mouseLParam(c.x, c.y));
        EXPECT_EQ(p.x, c.x);
        EXPECT_EQ(p.y, c.y);
    }
    // The bits above the low 32 play no part.
    const POINT p = mousePosition(mouseLParam(-3, 4) | static_cast<LPARAM>(static_cast<ULONG_PTR>(0xABCD) << 32));
    EXPECT_EQ(p.x, -3);
    EXPECT_EQ(p.y, 4);
}

} // namespace
} // namespace screenCapture
