#pragma once
// Colours of the markup: names from the colour table and the "#" forms.

#include "base/ZString.h"

#include <cstdint>
#include <optional>

namespace xhtml {

// Red in the low byte, then green and blue; the top byte is 0 for an opaque colour.
using Colour = uint32_t;
constexpr Colour transparentColour = 0xFF000000;

// A colour written as 0xRRGGBB, in the markup's byte order.
constexpr Colour rgb(uint32_t rrggbb)
{
    return ((rrggbb >> 16) & 0xFF) | (rrggbb & 0xFF00) | ((rrggbb & 0xFF) << 16);
}

struct NamedColour {
    const char16_t* name;
    Colour value;
};

// The colour table: 141 rows, "Transparent" last. It departs from the common web table on
// purpose in BlanchedAlmond, Gray and YellowGreen and in the spelling "Lawngreen".
constexpr int namedColourCount = 141;
const NamedColour* namedColours();

// colour := name | "#" RRGGBB | "#" RRGGBBTT | "#" RGB | "#" RGBT
// A name matches without regard to case, first match in table order. In the "#" forms each
// pair of digits is one byte (a single digit is doubled); TT becomes the top byte. Anything
// else, including a "#" form with a non-hexadecimal digit, is no colour.
std::optional<Colour> parseColour(const ZString& text);

// True when the text is a name of the colour table (ignoring case).
bool isColourName(const ZString& text);

} // namespace xhtml
