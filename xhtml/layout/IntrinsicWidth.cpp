#include "xhtml/layout/InlineItems.h"

#include <algorithm>

namespace xhtml {

namespace {

constexpr int kUnbounded = 1 << 28;

int fixedMargins(const View& view)
{
    return marginOf(view, 0, 0) + marginOf(view, 2, 0);
}

// The widths of a block's content: its block children and its runs of inline children.
void blockContentWidths(View& view, LayoutEnv& env, int& minWidth, int& maxWidth)
{
    minWidth = maxWidth = 0;
    std::vector<View*> run;
    auto flush = [&] {
        if (run.empty())
            return;
        int runMin = 0;
        int runMax = 0;
        inlineRunWidths(run, env, runMin, runMax);
        minWidth = std::max(minWidth, runMin);
        maxWidth = std::max(maxWidth, runMax);
        run.clear();
    };
    for (auto& child : view.children) {
        if (!child->isDisplayed())
            continue;
        if (!child->isBlockLevel()) {
            run.push_back(child.get());
            continue;
        }
        flush();
        int childMin = 0;
        int childMax = 0;
        intrinsicWidths(*child, env, childMin, childMax);
        minWidth = std::max(minWidth, childMin);
        maxWidth = std::max(maxWidth, childMax);
    }
    flush();
}

// A percentage width follows the container, so in a container that sizes itself to its
// content it asks only for its minimum: a 100 % table then fills what the rest needs
// instead of widening the container to its longest sentence.
void blockWidths(View& view, LayoutEnv& env, int& minWidth, int& maxWidth)
{
    if (view.kind == ViewKind::table) {
        tableWidths(view, env, minWidth, maxWidth);
    } else if (view.kind == ViewKind::image || view.kind == ViewKind::control) {
        minWidth = maxWidth = atomSize(view, env, 0).width;
    } else {
        const int frame = horizontalFrame(view, 0);
        if (view.style.width.set && !view.style.width.percent) {
            minWidth = maxWidth = view.style.width.resolve(0) + frame;
        } else {
            blockContentWidths(view, env, minWidth, maxWidth);
            if (view.style.width.percent)
                maxWidth = minWidth;
            const int minimum = view.style.minWidth.percent ? 0 : view.style.minWidth.resolve(0, 0);
            minWidth = std::max(minWidth, minimum) + frame;
            maxWidth = std::max(maxWidth, minimum) + frame;
        }
    }
    minWidth += fixedMargins(view);
    maxWidth += fixedMargins(view);
}

} // namespace

void inlineRunWidths(const std::vector<View*>& run, LayoutEnv& env, int& minWidth, int& maxWidth)
{
    std::vector<InlineItem> items;
    gatherInlineItems(run, env, kUnbounded, false, items);
    minWidth = maxWidth = 0;
    int line = 0;         // the current line without wrapping
    int piece = 0;        // the current unbreakable piece
    int pendingSpace = 0; // a space between pieces of the current line
    for (size_t i = 0; i < items.size(); ++i) {
        const InlineItem& item = items[i];
        if (item.type == InlineItem::Type::lineBreak) {
            line = piece = pendingSpace = 0;
            continue;
        }
        if (item.type == InlineItem::Type::space) {
            if (line > 0)
                pendingSpace = item.width;
            if (!item.noWrap)
                piece = 0;
            else if (piece > 0)
                piece += item.width;
            continue;
        }
        if (canBreakBefore(items, i))
            piece = 0;
        line += pendingSpace + item.width;
        piece += item.width;
        pendingSpace = 0;
        maxWidth = std::max(maxWidth, line);
        minWidth = std::max(minWidth, piece);
    }
}

void intrinsicWidths(View& view, LayoutEnv& env, int& minWidth, int& maxWidth)
{
    minWidth = maxWidth = 0;
    if (!view.isDisplayed())
        return;
    if (view.isBlockLevel() || view.isAtom())
        blockWidths(view, env, minWidth, maxWidth);
    else
        inlineRunWidths({&view}, env, minWidth, maxWidth);
}

int maxContentWidth(View& view, LayoutEnv& env)
{
    int minWidth = 0;
    int maxWidth = 0;
    intrinsicWidths(view, env, minWidth, maxWidth);
    return maxWidth;
}

int minContentWidth(View& view, LayoutEnv& env)
{
    int minWidth = 0;
    int maxWidth = 0;
    intrinsicWidths(view, env, minWidth, maxWidth);
    return minWidth;
}

} // namespace xhtml
