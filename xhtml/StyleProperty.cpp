#include "xhtml/StyleProperty.h"

#include "xhtml/MarkupText.h"

namespace xhtml {

namespace {

using S = ValueSyntax;
using K = KeywordSet;

constexpr StylePropertyInfo propertyTable[stylePropertyCount] = {
    {u"width", S::length, K::alignment},
    {u"height", S::length, K::alignment},
    {u"min-width", S::length, K::alignment},
    {u"min-height", S::length, K::alignment},
    {u"color", S::colour, K::alignment},
    {u"text-align", S::keyword, K::alignment},
    {u"text-decoration", S::keyword, K::textDecoration},
    {u"vertical-align", S::keyword, K::verticalAlignment},
    {u"vertical-align-content", S::keyword, K::verticalAlignment},
    {u"vertical-align-line", S::keyword, K::verticalAlignment},
    {u"font-family", S::text, K::alignment},
    {u"font-weight", S::keyword, K::fontWeight},
    {u"font-size", S::fontSize, K::fontSize},
    {u"font-style", S::italic, K::alignment},
    {u"border-width", S::length, K::alignment},
    {u"border-left-width", S::length, K::alignment},
    {u"border-top-width", S::length, K::alignment},
    {u"border-right-width", S::length, K::alignment},
    {u"border-bottom-width", S::length, K::alignment},
    {u"border-color", S::colour, K::alignment},
    {u"border-left-color", S::colour, K::alignment},
    {u"border-top-color", S::colour, K::alignment},
    {u"border-right-color", S::colour, K::alignment},
    {u"border-bottom-color", S::colour, K::alignment},
    {u"border-style", S::keyword, K::borderStyle},
    {u"border-left-style", S::keyword, K::borderStyle},
    {u"border-top-style", S::keyword, K::borderStyle},
    {u"border-right-style", S::keyword, K::borderStyle},
    {u"border-bottom-style", S::keyword, K::borderStyle},
    {u"padding", S::length, K::alignment},
    {u"padding-left", S::length, K::alignment},
    {u"padding-top", S::length, K::alignment},
    {u"padding-right", S::length, K::alignment},
    {u"padding-bottom", S::length, K::alignment},
    {u"margin", S::length, K::alignment},
    {u"margin-left", S::length, K::alignment},
    {u"margin-top", S::length, K::alignment},
    {u"margin-right", S::length, K::alignment},
    {u"margin-bottom", S::length, K::alignment},
    {u"cursor", S::keyword, K::cursor},
    {u"position", S::keyword, K::position},
    {u"left", S::length, K::alignment},
    {u"top", S::length, K::alignment},
    {u"right", S::length, K::alignment},
    {u"bottom", S::length, K::alignment},
    {u"border", S::border, K::alignment},
    {u"border-left", S::border, K::alignment},
    {u"border-top", S::border, K::alignment},
    {u"border-right", S::border, K::alignment},
    {u"border-bottom", S::border, K::alignment},
    {u"background-color", S::colour, K::alignment},
    {u"background-image", S::text, K::alignment},
    {u"background-repeat", S::keyword, K::backgroundRepeat},
    {u"background-position", S::text, K::alignment},
    {u"background-gradient", S::gradient, K::alignment},
    {u"visibility", S::keyword, K::visibility},
    {u"display", S::keyword, K::display},
    {u"overflow", S::keyword, K::overflow},
    {u"overflow-x", S::keyword, K::overflow},
    {u"overflow-y", S::keyword, K::overflow},
    {u"white-space", S::nobreak, K::alignment},
    {u"opacity", S::length, K::alignment},
    {u"line-spacing", S::length, K::alignment},
    {u"cell-spacing", S::length, K::alignment},
    {u"cell-padding", S::length, K::alignment},
};

} // namespace

const StylePropertyInfo& propertyInfo(StyleProperty property)
{
    return propertyTable[static_cast<int>(property)];
}

std::optional<StyleProperty> findProperty(const ZString& name)
{
    for (int i = 0; i < stylePropertyCount; ++i) {
        if (equals(name, propertyTable[i].name))
            return static_cast<StyleProperty>(i);
    }
    return std::nullopt;
}

} // namespace xhtml
