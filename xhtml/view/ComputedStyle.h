#pragma once
// The style a view is laid out and painted with: the declared properties resolved against
// the parent's computed style, defaults filled in and lengths scaled to the screen DPI.

#include "xhtml/ColourTable.h"
#include "xhtml/StyleDef.h"
#include "xhtml/StyleKeyword.h"
#include "xhtml/paint/FontDescription.h"

#include <optional>

namespace xhtml {

// A length in device pixels, or a percentage of the containing box; unset means "auto".
struct Length {
    bool set = false;
    bool percent = false;
    double value = 0;

    static Length pixels(double value) { return Length{true, false, value}; }
    // The pixels it stands for against `base` (a percentage base), or `fallback` when unset
    // or when a percentage has no base (base < 0).
    int resolve(int base, int fallback = 0) const;
};

struct BorderSide {
    int width = 0;
    StyleKeyword style = StyleKeyword::none;
    Colour colour = rgb(0x808080);

    // Only a side with a drawing style and a width takes room.
    int room() const { return style == StyleKeyword::none || style == StyleKeyword::hidden ? 0 : width; }
};

struct ComputedStyle {
    // Inherited from the parent.
    FontDescription font;
    Colour colour = rgb(0x000000);
    StyleKeyword textAlign = StyleKeyword::left;
    // How an inline item sits in its line; inherited, so that a row's container can align
    // all of its items at once (the dialog's top row does).
    StyleKeyword verticalAlign = StyleKeyword::baseline;
    bool noWrap = false;
    bool visible = true;
    bool pointerCursor = false;
    int lineSpacing = 0;

    // The element's own.
    StyleKeyword display = StyleKeyword::inlineValue;
    Length width, height, minWidth, minHeight;
    Length padding[4], margin[4]; // left, top, right, bottom
    BorderSide border[4];
    Colour background = transparentColour;
    std::optional<StyleGradient> gradient;
    ZString backgroundImage;
    StyleKeyword backgroundRepeat = StyleKeyword::repeat;
    // Where a cell or block puts its content vertically when it is taller than the content.
    StyleKeyword contentAlign = StyleKeyword::top;
    bool clipsContent = false;
    int cellSpacing = -1; // -1: the table's default
    int cellPadding = -1;
};

// Resolves `declared` over the inheritable part of `parent` (null for the root), scaling
// pixel lengths by `scale` (screen DPI / 96). `display` is the element's default display.
ComputedStyle computeStyle(const StyleDef& declared, const ComputedStyle* parent, StyleKeyword display, double scale);

// The default font of the toolkit at 96 DPI.
FontDescription defaultFont();

} // namespace xhtml
