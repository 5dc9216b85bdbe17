#pragma once
// Paints a laid-out view tree through a Canvas: backgrounds (colour, gradient, image),
// borders, text and images, in tree order. Controls are native windows and paint
// themselves; invisible views paint nothing but their visible descendants still do.

#include "xhtml/paint/Canvas.h"
#include "xhtml/view/View.h"

namespace xhtml {

// Paints what of the tree meets `dirty`.
void paintView(const View& view, Canvas& canvas, const Rect& dirty);

// The border of one side as the filled rectangles that draw it: one for a solid line,
// dashes of three widths or dots of one width with gaps of the same length.
std::vector<Rect> borderPieces(const Rect& side, StyleKeyword style, bool horizontal);

} // namespace xhtml
