#pragma once
// Markup parsed, built into views and laid out with fixed metrics, for the layout and
// painting tests.

#include "tests/xhtml/FixedMetricsCanvas.h"
#include "xhtml/HtmlDocument.h"
#include "xhtml/view/ViewTree.h"

#include <stdexcept>

struct LaidOutMarkup {
    LaidOutMarkup(const char16_t* markup, int width, std::map<std::string, xhtml::Size> images = {}, double scale = 1.0)
    {
        canvas.images = std::move(images);
        xhtml::MarkupTextFilter unchanged;
        document.setMarkup(ZString(markup), unchanged, ZString(u"res:///page.xhtml"));
        tree.build(document.root(), rules, document.baseAddress(), scale);
        size = tree.layout(canvas, width, -1);
    }

    xhtml::View& byId(const char16_t* id)
    {
        if (xhtml::View* view = tree.findById(ZString(id)))
            return *view;
        throw std::runtime_error("no view with that id");
    }

    FixedMetricsCanvas canvas;
    xhtml::HtmlDocument document;
    xhtml::StyleRuleList rules;
    xhtml::ViewTree tree;
    xhtml::Size size;
};

inline int centreY(const xhtml::Rect& r)
{
    return r.y + r.height / 2;
}
inline int centreX(const xhtml::Rect& r)
{
    return r.x + r.width / 2;
}
