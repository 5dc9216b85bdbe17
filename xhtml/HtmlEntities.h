#pragma once
// Character entities: "&name;" and the numeric forms "&#65;", "&#x41;", "&#0x41;", "&#0101;".

#include "base/ZString.h"

namespace xhtml {

struct NamedEntity {
    const char16_t* name; // with its "&" and ";"
    char16_t unit;
};

// The 125 named entities: the four of markup, the Latin-1 ones in code order, then the
// typographic ones of HTML 4. Greek letters, arrows and mathematical symbols are not among
// them and stay as written.
constexpr int namedEntityCount = 125;
const NamedEntity* namedEntities();

// Decodes the entities of `text` in place. An "&" without a ";" before the next "&" or the
// end is an ordinary character; a reference that is unknown or malformed stays as written.
void decodeEntities(ZString& text);

} // namespace xhtml
