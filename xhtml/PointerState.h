#pragma once
// Pointer states: an element may carry a style for each, besides its normal style.

#include "base/ZString.h"

#include <cstdint>
#include <optional>

namespace xhtml {

enum class PointerState : int32_t {
    normal = 0,
    over = 1,            // the pointer is over the element
    leftButtonDown = 2,  // the left button is held down on it
    rightButtonDown = 3, // the right button is held down on it
};

// A state named in text, trimmed and lowered first: "hover", "hoover" (an accepted second
// spelling) and "mo" are over; "leftbuttondown" and "lbd" the left button; "rightbuttondown"
// and "rbd" the right button. "normal" is the normal state; other names are no state.
std::optional<PointerState> pointerStateFromName(const ZString& name);

// The attribute that holds an element's declarations for the state, lower case as in the
// tree: "style", "mostyle", "lbdstyle", "rbdstyle".
const char16_t* styleAttributeName(PointerState state);

} // namespace xhtml
