#include "xhtml/layout/InlineItems.h"

#include <algorithm>

namespace xhtml {

namespace {

struct Placed {
    size_t item;
    int x;
};

struct Line {
    std::vector<Placed> placed;
    int width = 0;
};

// Breaks the items into lines: at a break opportunity when the next item would overflow,
// and at every br. Spaces at the start and end of a line are dropped.
std::vector<Line> breakLines(const std::vector<InlineItem>& items, int width)
{
    std::vector<Line> lines(1);
    int pendingSpace = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        const InlineItem& item = items[i];
        Line& line = lines.back();
        if (item.type == InlineItem::Type::lineBreak) {
            line.placed.push_back(Placed{i, line.width}); // an empty line is 0 wide
            lines.emplace_back();
            pendingSpace = 0;
            continue;
        }
        if (item.type == InlineItem::Type::space) {
            if (!line.placed.empty())
                pendingSpace = item.width;
            continue;
        }
        const bool overflows = line.width + pendingSpace + item.width > width;
        if (overflows && !line.placed.empty() && canBreakBefore(items, i)) {
            lines.emplace_back();
            pendingSpace = 0;
        }
        Line& target = lines.back();
        const int x = target.width + (target.placed.empty() ? 0 : pendingSpace);
        target.placed.push_back(Placed{i, x});
        target.width = x + item.width;
        pendingSpace = 0;
    }
    if (lines.back().placed.empty())
        lines.pop_back();
    return lines;
}

struct LineGeometry {
    int height = 0;
    int baseline = 0;
};

LineGeometry measureLine(const Line& line, const std::vector<InlineItem>& items)
{
    int ascent = 0;
    int descent = 0;
    int tallest = 0;
    for (const Placed& placed : line.placed) {
        const InlineItem& item = items[placed.item];
        if (item.align == StyleKeyword::baseline || item.align == StyleKeyword::textTop
            || item.type == InlineItem::Type::lineBreak) {
            ascent = std::max(ascent, item.ascent - item.shift);
            descent = std::max(descent, item.height - item.ascent + item.shift);
        } else {
            tallest = std::max(tallest, item.height);
        }
    }
    LineGeometry geometry;
    geometry.height = std::max(ascent + descent, tallest);
    // A baseline group shorter than the line sits in its middle, as text beside a taller
    // middle-aligned image does.
    geometry.baseline = (geometry.height - ascent - descent) / 2 + ascent;
    return geometry;
}

int itemTop(const InlineItem& item, const LineGeometry& line)
{
    switch (item.align) {
    case StyleKeyword::top:
        return 0;
    case StyleKeyword::bottom:
        return line.height - item.height;
    case StyleKeyword::middle:
        return (line.height - item.height) / 2;
    default:
        return line.baseline - item.ascent + item.shift;
    }
}

// Places the items of one line; consecutive words of one text view become one fragment.
void placeLine(const Line& line, std::vector<InlineItem>& items, const LineGeometry& geometry, int x, int y)
{
    TextFragment* open = nullptr;
    View* openView = nullptr;
    int openEnd = 0;
    for (const Placed& placed : line.placed) {
        InlineItem& item = items[placed.item];
        const int left = x + placed.x;
        const int top = y + itemTop(item, geometry);
        if (item.type == InlineItem::Type::atom) {
            View& atom = *item.view;
            atom.translate(left + marginOf(atom, 0, 0) - atom.box.x, top + marginOf(atom, 1, 0) - atom.box.y);
            open = nullptr;
        } else if (item.type == InlineItem::Type::lineBreak) {
            item.view->box = Rect{left, top, 0, item.height};
            open = nullptr;
        } else if (item.type == InlineItem::Type::word) {
            if (open && openView == item.view && openEnd <= left) {
                open->text += ZString(left > openEnd ? u" " : u"");
                open->text += item.text;
                open->box.width = left + item.width - open->box.x;
            } else {
                item.view->fragments.push_back(TextFragment{Rect{left, top, item.width, item.height}, item.text});
                open = &item.view->fragments.back();
                openView = item.view;
            }
            openEnd = left + item.width;
        }
    }
}

void clearFragments(View& view)
{
    view.fragments.clear();
    if (!view.isAtom() && !view.isBlockLevel()) {
        for (auto& child : view.children)
            clearFragments(*child);
    }
}

// Grows `all` to cover `part`; the first part (`any` still false) is taken as it is.
void cover(Rect& all, bool& any, const Rect& part)
{
    if (!any) {
        all = part;
        any = true;
        return;
    }
    const int right = std::max(all.right(), part.right());
    const int bottom = std::max(all.bottom(), part.bottom());
    all.x = std::min(all.x, part.x);
    all.y = std::min(all.y, part.y);
    all.width = right - all.x;
    all.height = bottom - all.y;
}

// An inline container's box: what its pieces cover.
Rect unionBoxes(View& view)
{
    Rect all;
    bool any = false;
    if (view.kind == ViewKind::text) {
        for (const TextFragment& fragment : view.fragments)
            cover(all, any, fragment.box);
    } else if (view.isAtom() || view.isBlockLevel() || view.kind == ViewKind::lineBreak) {
        return view.box;
    } else {
        for (auto& child : view.children) {
            const Rect part = unionBoxes(*child);
            if (!part.isEmpty() && child->isDisplayed())
                cover(all, any, part);
        }
    }
    view.box = all;
    return all;
}

} // namespace

int layoutLines(const std::vector<View*>& run, const ComputedStyle& container, LayoutEnv& env, int x, int y, int width)
{
    for (View* view : run)
        clearFragments(*view);
    std::vector<InlineItem> items;
    gatherInlineItems(run, env, width, true, items);
    int cursor = y;
    for (const Line& line : breakLines(items, width)) {
        const LineGeometry geometry = measureLine(line, items);
        placeLine(line, items, geometry, x + alignOffset(container.textAlign, width - line.width), cursor);
        cursor += geometry.height;
    }
    for (View* view : run)
        unionBoxes(*view);
    return cursor - y;
}

} // namespace xhtml
