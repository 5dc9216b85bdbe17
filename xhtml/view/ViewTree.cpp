#include "xhtml/view/ViewTree.h"

#include "xhtml/layout/DocumentLayout.h"
#include "xhtml/view/StyleResolver.h"
#include "xhtml/view/ViewBuilder.h"

namespace xhtml {

namespace {

void visitAll(View& view, const std::function<void(View&)>& visit)
{
    visit(view);
    for (auto& child : view.children)
        visitAll(*child, visit);
}

View* deepestAt(View& view, int x, int y)
{
    if (!view.isDisplayed())
        return nullptr;
    for (auto it = view.children.rbegin(); it != view.children.rend(); ++it) {
        if (View* found = deepestAt(**it, x, y))
            return found;
    }
    if (view.kind == ViewKind::text) {
        for (const TextFragment& fragment : view.fragments) {
            if (fragment.box.contains(x, y))
                return &view;
        }
        return nullptr;
    }
    return view.box.contains(x, y) ? &view : nullptr;
}

} // namespace

void ViewTree::build(const HtmlTagNode& root, const StyleRuleList& rules, const ZString& baseAddress, double scale)
{
    StyleRuleList documentRules = rules;
    root_ = ViewBuilder::build(root, documentRules, baseAddress);
    scale_ = scale;
    restyle(*root_, nullptr, scale_);
}

Size ViewTree::layout(Canvas& canvas, int width, int height)
{
    if (!root_)
        return Size{};
    return layoutDocument(*root_, canvas, scale_, width, height);
}

int ViewTree::preferredWidth(Canvas& canvas)
{
    return root_ ? preferredDocumentWidth(*root_, canvas, scale_) : 0;
}

View* ViewTree::findById(const ZString& id)
{
    View* found = nullptr;
    if (root_ && !id.isEmpty()) {
        forEach([&](View& view) {
            if (!found && view.id == id)
                found = &view;
        });
    }
    return found;
}

View* ViewTree::viewAt(int x, int y)
{
    return root_ ? deepestAt(*root_, x, y) : nullptr;
}

void ViewTree::forEach(const std::function<void(View&)>& visit)
{
    if (root_)
        visitAll(*root_, visit);
}

bool ViewTree::setState(View& view, PointerState state)
{
    if (view.state == state)
        return false;
    view.state = state;
    restyle(view, view.parent ? &view.parent->style : nullptr, scale_);
    return true;
}

View* ViewTree::styledAncestor(View* view, PointerState state)
{
    for (; view; view = view->parent) {
        if (view->hasStateStyle[static_cast<int>(state)])
            return view;
    }
    return nullptr;
}

View* ViewTree::linkAncestor(View* view)
{
    for (; view; view = view->parent) {
        if (!view->href.isEmpty())
            return view;
    }
    return nullptr;
}

} // namespace xhtml
