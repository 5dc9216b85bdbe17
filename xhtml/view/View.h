#pragma once
// One node of the view tree: what is laid out and painted for an element or a run of text.
// Views are built from the node tree by ViewBuilder, positioned by layout and drawn by
// Painter. A view points at its element, which the host's document owns and which must
// outlive the view tree.

#include "xhtml/HtmlNode.h"
#include "xhtml/PointerState.h"
#include "xhtml/StyleDef.h"
#include "xhtml/view/ComputedStyle.h"
#include "xhtml/view/ControlModel.h"
#include "xhtml/view/Geometry.h"

#include <array>
#include <memory>
#include <vector>

namespace xhtml {

enum class ViewKind {
    block,     // body, div, p, h1-h6, center, object
    inlineBox, // span, a, b, i, u, big, small, strong, strike, sup, sub, font, nobr, nowrap
    text,      // a run of text, white space collapsed and entities decoded
    image,     // img
    lineBreak, // br
    rule,      // hr
    table,
    row,     // tr
    cell,    // td
    control, // input, select, textarea
};

// A piece of a text view on one line.
struct TextFragment {
    Rect box;
    ZString text;
};

class View {
public:
    View(ViewKind kind, const HtmlTagNode* element) : kind(kind), element(element) {}

    View* appendChild(std::unique_ptr<View> child);
    // The element's attribute, or null (always null for text).
    const ZString* attribute(const char16_t* name) const;

    // Block-level views stack vertically; the others flow in lines.
    bool isBlockLevel() const;
    // Laid out as one unbreakable item of a line: images, controls, inline blocks.
    bool isAtom() const;
    bool isDisplayed() const { return style.display != StyleKeyword::none; }

    // Moves the laid-out view and everything in it.
    void translate(int dx, int dy);
    // The padding box (inside the borders) and the content box.
    Rect paddingBox() const;
    Rect contentBox() const;
    int borderRoom(int side) const { return style.border[side].room(); }
    int paddingOf(int side) const { return resolvedPadding[side]; }

    const ViewKind kind;
    const HtmlTagNode* element; // null for text
    View* parent = nullptr;
    std::vector<std::unique_ptr<View>> children;

    // The declared style for each pointer state (normal, over, left and right button down);
    // a state's style applies over the normal one.
    std::array<StyleDef, 4> declared;
    std::array<bool, 4> hasStateStyle = {true, false, false, false};
    PointerState state = PointerState::normal;
    StyleKeyword defaultDisplay = StyleKeyword::inlineValue;
    ComputedStyle style;
    int baselineShift = 0; // sup and sub, in device pixels (positive: down)

    ZString id;
    ZString text;   // text views
    ZString source; // images: the resolved address
    ZString href;   // links
    std::unique_ptr<ControlModel> control;
    int columnSpan = 1;
    int rowSpan = 1;

    // Layout results, in document coordinates.
    Rect box; // the border box
    std::array<int, 4> resolvedPadding = {0, 0, 0, 0};
    std::vector<TextFragment> fragments;
};

} // namespace xhtml
