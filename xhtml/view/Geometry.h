#pragma once
// Rectangles and sizes of laid-out views, in device pixels.

namespace xhtml {

struct Size {
    int width = 0;
    int height = 0;
    friend bool operator==(const Size& a, const Size& b) { return a.width == b.width && a.height == b.height; }
    friend bool operator!=(const Size& a, const Size& b) { return !(a == b); }
};

struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    bool contains(int px, int py) const { return px >= x && py >= y && px < right() && py < bottom(); }
    Rect translated(int dx, int dy) const { return Rect{x + dx, y + dy, width, height}; }
    friend bool operator==(const Rect& a, const Rect& b)
    {
        return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
    }
};

// The four sides of a box, in the order the style properties list them.
struct Edges {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int horizontal() const { return left + right; }
    int vertical() const { return top + bottom; }
};

} // namespace xhtml
