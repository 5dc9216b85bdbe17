#pragma once
// What an element says of its presentation without a style attribute: the defaults of its
// name (b is bold, a is a blue underlined link, ...) and its presentational attributes
// (width, height, align, valign, color, bgcolor, face, size, border, cellspacing,
// cellpadding). Style rules and the element's own style apply over it.

#include "xhtml/HtmlNode.h"
#include "xhtml/StyleDef.h"

namespace xhtml {

StyleDef presentationalStyle(const HtmlTagNode& element);

// The pixel size of an HTML font size 1 to 7, "+n" or "-n" (relative to 3); 0 when unreadable.
int fontSizeAttributePixels(const ZString& value);

} // namespace xhtml
