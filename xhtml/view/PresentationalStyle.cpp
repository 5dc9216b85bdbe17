#include "xhtml/view/PresentationalStyle.h"

#include "xhtml/MarkupText.h"

namespace xhtml {

namespace {

struct ElementDefault {
    const char16_t* name;
    const char16_t* declarations;
};

// At 96 DPI; scaled with everything else.
const ElementDefault kElementDefaults[] = {
    {u"b", u"font-weight:bold"},
    {u"strong", u"font-weight:bold"},
    {u"i", u"font-style:italic"},
    {u"u", u"text-decoration:underline"},
    {u"strike", u"text-decoration:line-through"},
    {u"a", u"color:#0000FF; text-decoration:underline; cursor:pointer"},
    {u"big", u"font-size:larger"},
    {u"small", u"font-size:smaller"},
    {u"sup", u"font-size:smaller"},
    {u"sub", u"font-size:smaller"},
    {u"center", u"text-align:center"},
    {u"nobr", u"white-space:nobreak"},
    {u"nowrap", u"white-space:nobreak"},
    {u"p", u"margin-top:12px; margin-bottom:12px"},
    {u"h1", u"font-size:24px; font-weight:bold; margin-top:8px; margin-bottom:8px"},
    {u"h2", u"font-size:18px; font-weight:bold; margin-top:8px; margin-bottom:8px"},
    {u"h3", u"font-size:16px; font-weight:bold; margin-top:6px; margin-bottom:6px"},
    {u"h4", u"font-size:14px; font-weight:bold; margin-top:6px; margin-bottom:6px"},
    {u"h5", u"font-size:12px; font-weight:bold; margin-top:4px; margin-bottom:4px"},
    {u"h6", u"font-size:10px; font-weight:bold; margin-top:4px; margin-bottom:4px"},
    {u"hr", u"margin-top:4px; margin-bottom:4px; height:2px"},
    {u"td", u"vertical-align-content:middle"},
};

bool named(const HtmlTagNode& element, const char16_t* name)
{
    return equals(element.name(), name);
}

void applyDefaults(const HtmlTagNode& element, StyleDef& style)
{
    for (const ElementDefault& entry : kElementDefaults) {
        if (named(element, entry.name))
            style.parse(ZString(entry.declarations));
    }
}

void mapAttribute(const HtmlTagNode& element, const char16_t* attribute, const char16_t* property, StyleDef& style)
{
    if (const ZString* value = element.attribute(ZString(attribute)))
        style.parseDeclaration(ZString(property), value->trim());
}

// align: the text of a block or cell, the line position of an image; a table's own place
// is read by the table layout.
void mapAlign(const HtmlTagNode& element, StyleDef& style)
{
    const ZString* align = element.attribute(ZString(u"align"));
    if (!align)
        return;
    if (named(element, u"img") || named(element, u"input") || named(element, u"select"))
        style.parseDeclaration(ZString(u"vertical-align"), *align);
    else if (!named(element, u"table"))
        style.parseDeclaration(ZString(u"text-align"), *align);
}

void mapBorder(const HtmlTagNode& element, StyleDef& style)
{
    const ZString* border = element.attribute(ZString(u"border"));
    if (!border || !(named(element, u"table") || named(element, u"img")))
        return;
    const auto width = parseLength(*border);
    if (!width || width->value() <= 0)
        return;
    style.parse(ZString(u"border-style:solid; border-color:#808080"));
    style.parseDeclaration(ZString(u"border-width"), *border);
}

void mapFontSize(const HtmlTagNode& element, StyleDef& style)
{
    if (!named(element, u"font"))
        return;
    if (const ZString* size = element.attribute(ZString(u"size"))) {
        if (const int pixels = fontSizeAttributePixels(*size))
            style.parseDeclaration(ZString(u"font-size"), ZString::fromInt(pixels));
    }
}

} // namespace

int fontSizeAttributePixels(const ZString& value)
{
    static const int pixels[] = {10, 13, 16, 18, 24, 32, 48};
    const ZString text = value.trim();
    if (text.isEmpty())
        return 0;
    const bool relative = text[0] == '+' || text[0] == '-';
    int number = 0;
    if (!(relative ? text.substring(1) : text).toInt(number))
        return 0;
    int index = relative ? 3 + (text[0] == '-' ? -number : number) : number;
    index = index < 1 ? 1 : index > 7 ? 7 : index;
    return pixels[index - 1];
}

StyleDef presentationalStyle(const HtmlTagNode& element)
{
    StyleDef style;
    applyDefaults(element, style);
    if (!named(element, u"input") && !named(element, u"select") && !named(element, u"textarea")) {
        mapAttribute(element, u"width", u"width", style);
        mapAttribute(element, u"height", u"height", style);
    }
    mapAttribute(element, u"valign", u"vertical-align-content", style);
    mapAttribute(element, u"color", u"color", style);
    mapAttribute(element, u"bgcolor", u"background-color", style);
    mapAttribute(element, u"face", u"font-family", style);
    mapAttribute(element, u"cellspacing", u"cell-spacing", style);
    mapAttribute(element, u"cellpadding", u"cell-padding", style);
    mapAlign(element, style);
    mapBorder(element, style);
    mapFontSize(element, style);
    return style;
}

} // namespace xhtml
