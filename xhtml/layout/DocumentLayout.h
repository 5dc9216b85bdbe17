#pragma once
// Layout of a whole view tree in a viewport, and the size the tree would like to have.

#include "xhtml/paint/Canvas.h"
#include "xhtml/view/View.h"

namespace xhtml {

// Lays out the tree rooted at `root` (the document's root view) in a viewport of `width`
// and `height` (-1: the height is not fixed, percentages of it are ignored). Returns the
// size of the laid-out content. `scale` is the screen DPI over 96.
Size layoutDocument(View& root, Canvas& canvas, double scale, int width, int height);

// The width the content takes when nothing that can stay on one line is wrapped.
int preferredDocumentWidth(View& root, Canvas& canvas, double scale);

} // namespace xhtml
