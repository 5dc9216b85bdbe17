#pragma once
// The properties of a style definition: their names in the order the declaration reader
// tests them, and the syntax of each one's value.

#include "base/ZString.h"
#include "xhtml/StyleKeyword.h"

#include <cstdint>
#include <optional>

namespace xhtml {

// In the order in which names are tested.
enum class StyleProperty : int32_t {
    width, height, minWidth, minHeight, color, textAlign, textDecoration, verticalAlign,
    verticalAlignContent, verticalAlignLine, fontFamily, fontWeight, fontSize, fontStyle,
    borderWidth, borderLeftWidth, borderTopWidth, borderRightWidth, borderBottomWidth,
    borderColor, borderLeftColor, borderTopColor, borderRightColor, borderBottomColor,
    borderStyle, borderLeftStyle, borderTopStyle, borderRightStyle, borderBottomStyle,
    padding, paddingLeft, paddingTop, paddingRight, paddingBottom,
    margin, marginLeft, marginTop, marginRight, marginBottom,
    cursor, position, left, top, right, bottom,
    border, borderLeft, borderTop, borderRight, borderBottom,
    backgroundColor, backgroundImage, backgroundRepeat, backgroundPosition, backgroundGradient,
    visibility, display, overflow, overflowX, overflowY, whiteSpace, opacity, lineSpacing,
    cellSpacing, cellPadding,
};
constexpr int stylePropertyCount = static_cast<int>(StyleProperty::cellPadding) + 1;

// The property `by` places after `property`. The sides of a box or border group follow
// their shorthand, and each other, in the order left, top, right, bottom.
constexpr StyleProperty propertyAfter(StyleProperty property, int by)
{
    return static_cast<StyleProperty>(static_cast<int>(property) + by);
}

// How a property's value is written.
enum class ValueSyntax {
    length,   // number with an ignored unit, "%" for a percentage, or "0x" integer
    colour,   // see parseColour
    keyword,  // one of the property's keyword set
    fontSize, // a font-size keyword, else a length
    text,     // kept as written (font family, image address, background position)
    italic,   // only "italic"
    nobreak,  // only "nobreak"
    border,   // words in any order: width, style, colour
    gradient, // exactly three words: colour, colour, direction
};

struct StylePropertyInfo {
    const char16_t* name;
    ValueSyntax syntax;
    KeywordSet keywords; // read only for ValueSyntax::keyword
};

const StylePropertyInfo& propertyInfo(StyleProperty property);
inline const char16_t* propertyName(StyleProperty property)
{
    return propertyInfo(property).name;
}

// The property with exactly this (lower-case) name, names tested in table order.
std::optional<StyleProperty> findProperty(const ZString& name);

} // namespace xhtml
