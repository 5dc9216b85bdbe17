#pragma once
// The keyword values of style declarations, in one table, and which of them each kind of
// property accepts.

#include "base/ZString.h"

#include <cstdint>
#include <optional>

namespace xhtml {

// In table order. Names that are C++ keywords carry a suffix.
enum class StyleKeyword : int32_t {
    left, top, right, bottom, none, hidden, dotted, dashed, solid, center, justify, middle,
    baseline, textTop, xxSmall, xSmall, small, medium, large, xLarge, xxLarge, smaller, larger,
    normal, bold, bolder, lighter, weight100, weight200, weight300, weight400, weight500,
    weight600, weight700, weight800, weight900, autoValue, pointer, staticValue, fixed, relative,
    absolute, visible, block, inlineBlock, inlineValue, underline, overline, lineThrough, scroll,
    noRepeat, repeat, repeatX, repeatY,
};
constexpr int styleKeywordCount = static_cast<int>(StyleKeyword::repeatY) + 1;

// The groups of keywords that properties accept.
enum class KeywordSet {
    alignment,         // left right center justify
    verticalAlignment, // top middle bottom baseline text-top
    fontSize,          // xx-small .. xx-large, smaller, larger
    fontWeight,        // normal bold bolder lighter 100 .. 900
    borderStyle,       // none hidden dotted dashed solid
    cursor,            // auto pointer
    position,          // static fixed relative absolute
    visibility,        // visible hidden
    display,           // none block inline-block inline
    overflow,          // visible hidden scroll auto
    backgroundRepeat,  // no-repeat repeat repeat-x repeat-y
    textDecoration,    // underline line-through overline none
};

// The keyword as written in style text, for example u"text-top".
const char16_t* keywordName(StyleKeyword keyword);

// The keyword of the set with this name, ignoring the case of ASCII letters; none when the
// name is not a keyword of the set.
std::optional<StyleKeyword> findKeyword(const ZString& name, KeywordSet set);

} // namespace xhtml
