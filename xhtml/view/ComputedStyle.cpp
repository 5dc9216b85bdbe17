#include "xhtml/view/ComputedStyle.h"

#include <algorithm>
#include <cmath>

namespace xhtml {

namespace {

constexpr int kDefaultFontPixels = 12;

int scaled(double pixels, double scale)
{
    return static_cast<int>(std::lround(pixels * scale));
}

// The property's value when it is set and of kind T, else null.
template <typename T>
const T* valueOf(const StyleDef& style, StyleProperty property)
{
    const StyleValue* value = style.get(property);
    return value ? std::get_if<T>(value) : nullptr;
}

// Without the quote that opens the text and the unit that closes it.
ZString unquoted(const ZString& text)
{
    if (text.length() >= 2 && (text[0] == '\'' || text[0] == '"'))
        return text.substring(1, text.length() - 2);
    return text;
}

Length lengthOf(const StyleDef& style, StyleProperty property, double scale)
{
    const auto* number = valueOf<StyleNumber>(style, property);
    if (!number)
        return Length();
    if (number->isPercent)
        return Length{true, true, number->value()};
    return Length::pixels(scaled(number->value(), scale));
}

// Named sizes at 96 DPI, "xx-small" to "xx-large".
int namedFontPixels(StyleKeyword keyword)
{
    static const int sizes[] = {9, 10, 13, 16, 18, 24, 32};
    return sizes[static_cast<int>(keyword) - static_cast<int>(StyleKeyword::xxSmall)];
}

int resolveFontSize(const StyleValue& value, int parentPixels, double scale)
{
    if (const StyleKeyword* keyword = std::get_if<StyleKeyword>(&value)) {
        if (*keyword == StyleKeyword::smaller)
            return std::max(1, parentPixels * 5 / 6);
        if (*keyword == StyleKeyword::larger)
            return parentPixels * 6 / 5;
        return scaled(namedFontPixels(*keyword), scale);
    }
    const StyleNumber& number = std::get<StyleNumber>(value);
    if (number.isPercent)
        return std::max(1, static_cast<int>(std::lround(parentPixels * number.value() / 100)));
    return std::max(1, scaled(number.value(), scale));
}

int resolveWeight(StyleKeyword keyword, int parentWeight)
{
    switch (keyword) {
    case StyleKeyword::normal: return 400;
    case StyleKeyword::bold: return 700;
    case StyleKeyword::bolder: return std::min(900, parentWeight + 300);
    case StyleKeyword::lighter: return std::max(100, parentWeight - 300);
    default: return (static_cast<int>(keyword) - static_cast<int>(StyleKeyword::weight100) + 1) * 100;
    }
}

void applyFont(const StyleDef& declared, ComputedStyle& style, double scale)
{
    if (const auto* family = valueOf<ZString>(declared, StyleProperty::fontFamily)) {
        // The first family of a list, without quotes; the canvas's font mapper does the rest.
        const ZString first = unquoted(family->substring(0, family->find(ZChar(','))).trim());
        if (!first.isEmpty())
            style.font.family = first;
    }
    if (const StyleValue* size = declared.get(StyleProperty::fontSize))
        style.font.pixelSize = resolveFontSize(*size, style.font.pixelSize, scale);
    if (const auto* weight = valueOf<StyleKeyword>(declared, StyleProperty::fontWeight))
        style.font.weight = resolveWeight(*weight, style.font.weight);
    if (declared.has(StyleProperty::fontStyle))
        style.font.italic = true;
    if (const auto* decoration = valueOf<StyleKeyword>(declared, StyleProperty::textDecoration)) {
        if (*decoration == StyleKeyword::none)
            style.font.underline = style.font.lineThrough = false;
        else if (*decoration == StyleKeyword::underline)
            style.font.underline = true;
        else if (*decoration == StyleKeyword::lineThrough)
            style.font.lineThrough = true;
    }
}

void applyInherited(const StyleDef& declared, ComputedStyle& style, double scale)
{
    applyFont(declared, style, scale);
    if (const auto* colour = valueOf<Colour>(declared, StyleProperty::color))
        style.colour = *colour;
    if (const auto* align = valueOf<StyleKeyword>(declared, StyleProperty::textAlign))
        style.textAlign = *align;
    if (const auto* align = valueOf<StyleKeyword>(declared, StyleProperty::verticalAlign))
        style.verticalAlign = *align;
    if (const auto* align = valueOf<StyleKeyword>(declared, StyleProperty::verticalAlignLine))
        style.verticalAlign = *align;
    if (declared.has(StyleProperty::whiteSpace))
        style.noWrap = true;
    if (const auto* visibility = valueOf<StyleKeyword>(declared, StyleProperty::visibility))
        style.visible = *visibility == StyleKeyword::visible;
    if (const auto* cursor = valueOf<StyleKeyword>(declared, StyleProperty::cursor))
        style.pointerCursor = *cursor == StyleKeyword::pointer;
    if (const auto* spacing = valueOf<StyleNumber>(declared, StyleProperty::lineSpacing))
        style.lineSpacing = scaled(spacing->value(), scale);
}

void applyBox(const StyleDef& declared, ComputedStyle& style, double scale)
{
    style.width = lengthOf(declared, StyleProperty::width, scale);
    style.height = lengthOf(declared, StyleProperty::height, scale);
    style.minWidth = lengthOf(declared, StyleProperty::minWidth, scale);
    style.minHeight = lengthOf(declared, StyleProperty::minHeight, scale);
    for (int side = 0; side < 4; ++side) {
        style.padding[side] = lengthOf(declared, propertyAfter(StyleProperty::paddingLeft, side), scale);
        style.margin[side] = lengthOf(declared, propertyAfter(StyleProperty::marginLeft, side), scale);
        BorderSide& border = style.border[side];
        if (const auto* width = valueOf<StyleNumber>(declared, propertyAfter(StyleProperty::borderLeftWidth, side))) {
            border.width = scaled(width->value(), scale);
            border.style = StyleKeyword::solid; // a width alone draws a solid line
        }
        if (const auto* kind = valueOf<StyleKeyword>(declared, propertyAfter(StyleProperty::borderLeftStyle, side))) {
            border.style = *kind;
            if (!declared.has(propertyAfter(StyleProperty::borderLeftWidth, side)))
                border.width = std::max(1, scaled(1, scale));
        }
        if (const auto* colour = valueOf<Colour>(declared, propertyAfter(StyleProperty::borderLeftColor, side)))
            border.colour = *colour;
    }
}

void applyBackground(const StyleDef& declared, ComputedStyle& style)
{
    if (const auto* colour = valueOf<Colour>(declared, StyleProperty::backgroundColor))
        style.background = *colour;
    if (const auto* gradient = valueOf<StyleGradient>(declared, StyleProperty::backgroundGradient))
        style.gradient = *gradient;
    if (const auto* image = valueOf<ZString>(declared, StyleProperty::backgroundImage)) {
        ZString address = image->trim();
        // url(...) is accepted as well as the bare address.
        if (address.startsWith(ZString(u"url(")) && address.endsWith(ZString(u")")))
            address = address.substring(4, address.length() - 5).trim();
        style.backgroundImage = unquoted(address);
    }
    if (const auto* repeat = valueOf<StyleKeyword>(declared, StyleProperty::backgroundRepeat))
        style.backgroundRepeat = *repeat;
}

} // namespace

int Length::resolve(int base, int fallback) const
{
    if (!set)
        return fallback;
    if (!percent)
        return static_cast<int>(value);
    if (base < 0)
        return fallback;
    return static_cast<int>(std::lround(base * value / 100));
}

FontDescription defaultFont()
{
    FontDescription font;
    font.family = ZString(u"Tahoma");
    font.pixelSize = kDefaultFontPixels;
    return font;
}

ComputedStyle computeStyle(const StyleDef& declared, const ComputedStyle* parent, StyleKeyword display, double scale)
{
    ComputedStyle style;
    if (parent) {
        style.font = parent->font;
        style.colour = parent->colour;
        style.textAlign = parent->textAlign;
        style.verticalAlign = parent->verticalAlign;
        style.noWrap = parent->noWrap;
        style.visible = parent->visible;
        style.pointerCursor = parent->pointerCursor;
        style.lineSpacing = parent->lineSpacing;
    } else {
        style.font = defaultFont();
        style.font.pixelSize = scaled(kDefaultFontPixels, scale);
    }
    style.display = display;
    applyInherited(declared, style, scale);
    applyBox(declared, style, scale);
    applyBackground(declared, style);
    if (const auto* shown = valueOf<StyleKeyword>(declared, StyleProperty::display))
        style.display = *shown;
    if (const auto* align = valueOf<StyleKeyword>(declared, StyleProperty::verticalAlignContent))
        style.contentAlign = *align;
    if (const auto* overflow = valueOf<StyleKeyword>(declared, StyleProperty::overflow))
        style.clipsContent = *overflow == StyleKeyword::hidden || *overflow == StyleKeyword::scroll;
    if (const auto* spacing = valueOf<StyleNumber>(declared, StyleProperty::cellSpacing))
        style.cellSpacing = scaled(spacing->value(), scale);
    if (const auto* padding = valueOf<StyleNumber>(declared, StyleProperty::cellPadding))
        style.cellPadding = scaled(padding->value(), scale);
    return style;
}

} // namespace xhtml
