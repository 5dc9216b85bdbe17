#include "screencapture/SelectionGeometry.h"

#include <algorithm>

namespace screenCapture {

RECT selectionRect(POINT start, POINT current)
{
    return {std::min(start.x, current.x), std::min(start.y, current.y), std::max(start.x, current.x),
            std::max(start.y, current.y)};
}

RECT damagedArea(POINT start, POINT current, POINT next)
{
    return {std::min({start.x, current.x, next.x}), std::min({start.y, current.y, next.y}),
            std::max({start.x, current.x, next.x}), std::max({start.y, current.y, next.y})};
}

POINT mousePosition(LPARAM lParam)
{
    const auto bits = static_cast<DWORD_PTR>(lParam);
    return {static_cast<short>(bits & 0xFFFF), static_cast<short>((bits >> 16) & 0xFFFF)};
}

} // namespace screenCapture
