#include "xhtml/paint/Painter.h"

#include <algorithm>

namespace xhtml {

namespace {

bool meets(const Rect& a, const Rect& b)
{
    return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

void paintBackgroundImage(const View& view, Canvas& canvas, const Rect& area)
{
    const std::optional<Size> natural = canvas.imageSize(view.style.backgroundImage);
    if (!natural || natural->width <= 0 || natural->height <= 0)
        return;
    const StyleKeyword repeat = view.style.backgroundRepeat;
    const bool alongX = repeat == StyleKeyword::repeat || repeat == StyleKeyword::repeatX;
    const bool alongY = repeat == StyleKeyword::repeat || repeat == StyleKeyword::repeatY;
    canvas.pushClip(area);
    for (int y = area.y; y < area.bottom(); y += natural->height) {
        for (int x = area.x; x < area.right(); x += natural->width) {
            canvas.drawImage(view.style.backgroundImage, Rect{x, y, natural->width, natural->height});
            if (!alongX)
                break;
        }
        if (!alongY)
            break;
    }
    canvas.popClip();
}

void paintBackground(const View& view, Canvas& canvas)
{
    const Rect area = view.paddingBox();
    if (area.isEmpty())
        return;
    if (view.style.background != transparentColour)
        canvas.fillRect(area, view.style.background);
    if (view.style.gradient)
        canvas.fillGradient(area, *view.style.gradient);
    if (!view.style.backgroundImage.isEmpty())
        paintBackgroundImage(view, canvas, area);
}

void paintBorders(const View& view, Canvas& canvas)
{
    const Rect& box = view.box;
    const Rect sides[4] = {
        Rect{box.x, box.y, view.borderRoom(0), box.height},
        Rect{box.x, box.y, box.width, view.borderRoom(1)},
        Rect{box.right() - view.borderRoom(2), box.y, view.borderRoom(2), box.height},
        Rect{box.x, box.bottom() - view.borderRoom(3), box.width, view.borderRoom(3)},
    };
    for (int side = 0; side < 4; ++side) {
        if (sides[side].isEmpty())
            continue;
        for (const Rect& piece : borderPieces(sides[side], view.style.border[side].style, side % 2 == 1))
            canvas.fillRect(piece, view.style.border[side].colour);
    }
}

// A horizontal rule: a grooved line, dark above and light below.
void paintRule(const View& view, Canvas& canvas)
{
    const Rect& box = view.box;
    const int half = std::max(1, box.height / 2);
    canvas.fillRect(Rect{box.x, box.y, box.width, half}, rgb(0xA0A0A0));
    canvas.fillRect(Rect{box.x, box.y + half, box.width, box.height - half}, rgb(0xFFFFFF));
}

void paintContent(const View& view, Canvas& canvas)
{
    if (view.kind == ViewKind::text) {
        for (const TextFragment& fragment : view.fragments)
            canvas.drawText(fragment.box.x, fragment.box.y, fragment.text, view.style.font, view.style.colour);
    } else if (view.kind == ViewKind::image && !view.source.isEmpty()) {
        const Rect content = view.contentBox();
        if (!content.isEmpty())
            canvas.drawImage(view.source, content);
    } else if (view.kind == ViewKind::rule) {
        paintRule(view, canvas);
    }
}

} // namespace

std::vector<Rect> borderPieces(const Rect& side, StyleKeyword style, bool horizontal)
{
    if (style == StyleKeyword::none || style == StyleKeyword::hidden || side.isEmpty())
        return {};
    if (style != StyleKeyword::dotted && style != StyleKeyword::dashed)
        return {side};
    const int thickness = horizontal ? side.height : side.width;
    const int length = horizontal ? side.width : side.height;
    const int dash = style == StyleKeyword::dotted ? thickness : 3 * thickness;
    std::vector<Rect> pieces;
    for (int at = 0; at < length; at += 2 * dash) {
        const int piece = std::min(dash, length - at);
        pieces.push_back(horizontal ? Rect{side.x + at, side.y, piece, side.height}
                                    : Rect{side.x, side.y + at, side.width, piece});
    }
    return pieces;
}

void paintView(const View& view, Canvas& canvas, const Rect& dirty)
{
    if (!view.isDisplayed())
        return;
    const bool isBox = view.kind != ViewKind::text && view.kind != ViewKind::inlineBox;
    if (isBox && !meets(view.box, dirty) && view.kind != ViewKind::block)
        return;
    if (view.style.visible) {
        if (isBox && view.kind != ViewKind::rule) {
            paintBackground(view, canvas);
            paintBorders(view, canvas);
        }
        paintContent(view, canvas);
    }
    if (view.style.clipsContent)
        canvas.pushClip(view.paddingBox());
    for (const auto& child : view.children)
        paintView(*child, canvas, dirty);
    if (view.style.clipsContent)
        canvas.popClip();
}

} // namespace xhtml
