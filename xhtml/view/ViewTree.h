#pragma once
// The views of one document with what a host asks of them: building from the node tree,
// styling at a scale, layout in a viewport, look-up by id and by point, and pointer states.

#include "xhtml/HtmlNode.h"
#include "xhtml/StyleRules.h"
#include "xhtml/paint/Canvas.h"
#include "xhtml/view/View.h"

#include <functional>
#include <memory>

namespace xhtml {

class ViewTree {
public:
    // Builds the views of `root` (which must outlive them) with the host's `rules` and the
    // document's own style sheets, then styles them at `scale` (screen DPI / 96).
    void build(const HtmlTagNode& root, const StyleRuleList& rules, const ZString& baseAddress, double scale);
    void clear() { root_.reset(); }
    bool isEmpty() const { return !root_; }

    // Lays out in a viewport; -1 as height: not fixed. Returns the content's size.
    Size layout(Canvas& canvas, int width, int height);
    // The content's width when nothing that can stay on one line is wrapped.
    int preferredWidth(Canvas& canvas);

    View* root() { return root_.get(); }
    // The first view, in document order, whose element has this id.
    View* findById(const ZString& id);
    // The deepest displayed view under the point: a text view by its fragments, any other
    // by its box.
    View* viewAt(int x, int y);
    // Every view in document order.
    void forEach(const std::function<void(View&)>& visit);

    // Puts `view` (and nothing else) in `state` and restyles it and what it contains;
    // false when nothing changed.
    bool setState(View& view, PointerState state);
    // The nearest view, from `view` up, with a style for `state`, or null.
    static View* styledAncestor(View* view, PointerState state);
    // The nearest enclosing link, or null.
    static View* linkAncestor(View* view);

private:
    std::unique_ptr<View> root_;
    double scale_ = 1.0;
};

} // namespace xhtml
