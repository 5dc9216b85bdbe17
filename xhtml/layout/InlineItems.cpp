#include "xhtml/layout/InlineItems.h"

#include <algorithm>

namespace xhtml {

namespace {

int inheritedShift(const View& view)
{
    int shift = 0;
    for (const View* v = &view; v && !v->isBlockLevel(); v = v->parent)
        shift += v->baselineShift;
    return shift;
}

void addText(View& view, LayoutEnv& env, std::vector<InlineItem>& items)
{
    const FontDescription& font = view.style.font;
    const FontMetrics metrics = env.metrics(font);
    InlineItem base;
    base.view = &view;
    base.height = metrics.height() + view.style.lineSpacing;
    base.ascent = metrics.ascent;
    base.align = view.style.verticalAlign;
    base.noWrap = view.style.noWrap;
    base.shift = inheritedShift(view);
    const ZString& text = view.text;
    int at = 0;
    while (at < text.length()) {
        InlineItem item = base;
        if (text[at] == ' ') {
            item.type = InlineItem::Type::space;
            item.text = ZString(u" ");
            ++at;
        } else {
            int end = text.find(ZChar(' '), at);
            if (end == ZString::npos)
                end = text.length();
            item.type = InlineItem::Type::word;
            item.text = text.substring(at, end - at);
            at = end;
        }
        item.width = env.textWidth(font, item.text);
        items.push_back(std::move(item));
    }
}

void addAtom(View& view, LayoutEnv& env, int available, bool layoutAtoms, std::vector<InlineItem>& items)
{
    InlineItem item;
    item.type = InlineItem::Type::atom;
    item.view = &view;
    item.align = view.style.verticalAlign;
    item.noWrap = view.style.noWrap;
    item.shift = inheritedShift(view) - view.baselineShift;
    const int marginX = marginOf(view, 0, available) + marginOf(view, 2, available);
    const int marginY = marginOf(view, 1, available) + marginOf(view, 3, available);
    if (view.kind == ViewKind::image || view.kind == ViewKind::control) {
        const Size size = atomSize(view, env, available);
        view.box = Rect{0, 0, size.width, size.height};
    } else if (layoutAtoms) {
        // An inline block (or a block inside an inline): as wide as its content allows.
        int minWidth = 0;
        int maxWidth = 0;
        intrinsicWidths(view, env, minWidth, maxWidth);
        layoutBlockOfWidth(view, env, 0, 0, std::max(std::min(maxWidth, available), minWidth) - marginX, -1);
    } else {
        view.box = Rect{0, 0, maxContentWidth(view, env) - marginX, 0};
    }
    item.width = view.box.width + marginX;
    item.height = view.box.height + marginY;
    item.ascent = item.height;
    items.push_back(std::move(item));
}

void gather(View& view, LayoutEnv& env, int available, bool layoutAtoms, std::vector<InlineItem>& items)
{
    if (!view.isDisplayed())
        return;
    if (view.kind == ViewKind::text) {
        addText(view, env, items);
    } else if (view.kind == ViewKind::lineBreak) {
        InlineItem item;
        item.type = InlineItem::Type::lineBreak;
        item.view = &view;
        item.height = env.metrics(view.style.font).height();
        item.ascent = env.metrics(view.style.font).ascent;
        items.push_back(item);
    } else if (view.isAtom() || view.isBlockLevel()) {
        addAtom(view, env, available, layoutAtoms, items);
    } else {
        for (auto& child : view.children)
            gather(*child, env, available, layoutAtoms, items);
    }
}

} // namespace

void gatherInlineItems(const std::vector<View*>& run, LayoutEnv& env, int available, bool layoutAtoms,
                       std::vector<InlineItem>& items)
{
    for (View* view : run)
        gather(*view, env, available, layoutAtoms, items);
}

bool canBreakBefore(const std::vector<InlineItem>& items, size_t index)
{
    if (index == 0)
        return false;
    const InlineItem& item = items[index];
    const InlineItem& previous = items[index - 1];
    if (previous.type == InlineItem::Type::space)
        return !previous.noWrap;
    if (item.type == InlineItem::Type::atom || previous.type == InlineItem::Type::atom)
        return !item.noWrap && !previous.noWrap;
    return false;
}

} // namespace xhtml
