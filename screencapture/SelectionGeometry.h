#pragma once
// The overlay's geometry, apart from any window: all points and rectangles are in the
// overlay's client coordinates, which are also those of its snapshot.

#include <windows.h>

namespace screenCapture {

// The rectangle spanned by two points, whichever way they lie. Right and bottom are
// exclusive, so two equal points give an empty rectangle.
RECT selectionRect(POINT start, POINT current);

// What a mouse move to `next` makes stale: the bounding box of the old selection (start to
// current) and of the new point.
RECT damagedArea(POINT start, POINT current, POINT next);

// The mouse position of a mouse message: the low and high 16 bits of lParam, each
// sign-extended, so that positions left of or above the primary monitor stay negative.
POINT mousePosition(LPARAM lParam);

} // namespace screenCapture
