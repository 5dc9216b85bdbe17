#include "xhtml/layout/LayoutEngine.h"

#include "xhtml/MarkupText.h"

#include <algorithm>

namespace xhtml {

int marginOf(const View& view, int side, int available)
{
    return view.style.margin[side].resolve(available);
}

void resolvePadding(View& view, int available)
{
    for (int side = 0; side < 4; ++side)
        view.resolvedPadding[side] = std::max(0, view.style.padding[side].resolve(available));
}

int frameWidth(const View& view)
{
    return view.paddingOf(0) + view.paddingOf(2) + view.borderRoom(0) + view.borderRoom(2);
}

int frameHeight(const View& view)
{
    return view.paddingOf(1) + view.paddingOf(3) + view.borderRoom(1) + view.borderRoom(3);
}

int horizontalFrame(View& view, int available)
{
    resolvePadding(view, available);
    return frameWidth(view);
}

namespace {

// Lays out the content of a block whose box position and width are set; sets its height.
void layoutContent(View& view, LayoutEnv& env, int containingHeight)
{
    const int givenHeight = view.style.height.resolve(containingHeight, -1);
    const Rect inner{view.box.x + view.borderRoom(0) + view.paddingOf(0), view.box.y + view.borderRoom(1) + view.paddingOf(1),
                     view.box.width - frameWidth(view), 0};
    const int contentHeight = layoutFlow(view, env, inner.x, inner.y, std::max(0, inner.width), givenHeight);
    int height = givenHeight >= 0 ? givenHeight : contentHeight;
    height = std::max(height, view.style.minHeight.resolve(containingHeight, 0));
    alignContent(view, contentHeight, height);
    view.box.height = height + frameHeight(view);
}

// Where a block narrower than its container goes: a table by its "align", any block by
// the container's text alignment ("center" centres what it holds).
int horizontalOffset(const View& child, const ComputedStyle& container, int room)
{
    StyleKeyword align = container.textAlign;
    if (child.kind == ViewKind::table) {
        const ZString* attribute = child.attribute(u"align");
        align = StyleKeyword::left;
        if (attribute && equalsNoCase(*attribute, u"center"))
            align = StyleKeyword::center;
        else if (attribute && equalsNoCase(*attribute, u"right"))
            align = StyleKeyword::right;
    }
    return alignOffset(align, room);
}

} // namespace

int alignOffset(StyleKeyword align, int room)
{
    if (room <= 0)
        return 0;
    if (align == StyleKeyword::center)
        return room / 2;
    if (align == StyleKeyword::right)
        return room;
    return 0;
}

void alignContent(View& view, int contentHeight, int innerHeight)
{
    const int room = innerHeight - contentHeight;
    if (room <= 0)
        return;
    int offset = 0;
    if (view.style.contentAlign == StyleKeyword::middle)
        offset = room / 2;
    else if (view.style.contentAlign == StyleKeyword::bottom)
        offset = room;
    if (offset == 0)
        return;
    for (auto& child : view.children)
        child->translate(0, offset);
}

void layoutBlockOfWidth(View& view, LayoutEnv& env, int x, int y, int borderWidth, int containingHeight)
{
    resolvePadding(view, borderWidth);
    view.box = Rect{x, y, borderWidth, 0};
    layoutContent(view, env, containingHeight);
}

void layoutBlock(View& view, LayoutEnv& env, int x, int y, int available, int containingHeight)
{
    if (view.kind == ViewKind::table) {
        layoutTable(view, env, x, y, available, containingHeight);
        return;
    }
    const int marginLeft = marginOf(view, 0, available);
    const int marginRight = marginOf(view, 2, available);
    const int frame = horizontalFrame(view, available);
    int content = view.style.width.set ? view.style.width.resolve(available)
                                       : available - marginLeft - marginRight - frame;
    content = std::max({content, view.style.minWidth.resolve(available, 0), 0});
    view.box = Rect{x + marginLeft, y + marginOf(view, 1, available), content + frame, 0};
    layoutContent(view, env, containingHeight);
}

int layoutFlow(View& container, LayoutEnv& env, int x, int y, int width, int containingHeight)
{
    int cursor = y;
    std::vector<View*> run;
    auto flush = [&] {
        if (!run.empty())
            cursor += layoutLines(run, container.style, env, x, cursor, width);
        run.clear();
    };
    for (auto& owned : container.children) {
        View& child = *owned;
        if (!child.isDisplayed()) {
            child.box = Rect{x, cursor, 0, 0};
            continue;
        }
        if (!child.isBlockLevel()) {
            run.push_back(&child);
            continue;
        }
        flush();
        layoutBlock(child, env, x, cursor, width, containingHeight);
        const int used = child.box.width + marginOf(child, 0, width) + marginOf(child, 2, width);
        if (const int offset = horizontalOffset(child, container.style, width - used))
            child.translate(offset, 0);
        cursor = child.box.bottom() + marginOf(child, 3, width);
    }
    flush();
    return cursor - y;
}

} // namespace xhtml
