#pragma once
// Computes the style of every view of a tree from its declared styles, its pointer state
// and its parent's computed style.

#include "xhtml/view/View.h"

namespace xhtml {

// `scale` is the screen DPI over 96. `parent` is the parent view's computed style, null for
// the root.
void restyle(View& view, const ComputedStyle* parent, double scale);

// The declared style for the view's current pointer state: the normal style with the
// state's style applied over it.
StyleDef effectiveDeclared(const View& view);

} // namespace xhtml
