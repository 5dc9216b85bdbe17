#include "xhtml/StyleDef.h"

#include "xhtml/MarkupText.h"

namespace xhtml {

namespace {

bool isBoxShorthand(StyleProperty property)
{
    switch (property) {
    case StyleProperty::padding:
    case StyleProperty::margin:
    case StyleProperty::borderWidth:
    case StyleProperty::borderColor:
    case StyleProperty::borderStyle:
        return true;
    default:
        return false;
    }
}

bool isBorderShorthand(StyleProperty property)
{
    return property >= StyleProperty::border && property <= StyleProperty::borderBottom;
}

// "-c-" stands for ":". A colon can then be written where one would end something else,
// and no property name, keyword or colour contains the sequence, so nothing real is lost.
ZString replaceColonEscapes(const ZString& text)
{
    if (text.find(ZString(u"-c-")) == ZString::npos)
        return text;
    ZString::Storage units;
    const ZChar* p = text.c_str();
    const ZChar* end = p + text.length();
    while (p < end) {
        if (end - p >= 3 && p[0] == '-' && p[1] == 'c' && p[2] == '-') {
            units.push_back(':');
            p += 3;
        } else {
            units.push_back(*p++);
        }
    }
    return ZString(std::move(units));
}

std::optional<StyleValue> parseSimpleValue(const StylePropertyInfo& info, const ZString& value)
{
    switch (info.syntax) {
    case ValueSyntax::length:
        if (auto number = parseLength(value))
            return StyleValue(*number);
        return std::nullopt;
    case ValueSyntax::colour:
        if (auto colour = parseColour(value))
            return StyleValue(*colour);
        return std::nullopt;
    case ValueSyntax::keyword:
        if (auto keyword = findKeyword(value, info.keywords))
            return StyleValue(*keyword);
        return std::nullopt;
    case ValueSyntax::fontSize:
        if (auto keyword = findKeyword(value, KeywordSet::fontSize))
            return StyleValue(*keyword);
        if (auto number = parseLength(value))
            return StyleValue(*number);
        return std::nullopt;
    case ValueSyntax::text:
        return StyleValue(value);
    case ValueSyntax::italic:
        return equalsNoCase(value, u"italic") ? std::optional<StyleValue>(ZString(u"italic")) : std::nullopt;
    case ValueSyntax::nobreak:
        return equalsNoCase(value, u"nobreak") ? std::optional<StyleValue>(ZString(u"nobreak")) : std::nullopt;
    case ValueSyntax::gradient:
        if (auto gradient = parseGradient(value))
            return StyleValue(*gradient);
        return std::nullopt;
    case ValueSyntax::border:
        break; // several components: parseBorder
    }
    return std::nullopt;
}

} // namespace

void StyleDef::parse(const ZString& declarations)
{
    const ZString text = replaceColonEscapes(declarations);
    const ZChar* p = text.c_str();
    const ZChar* end = p + text.length();
    while (p < end) {
        const ZChar* start = p;
        while (p < end && *p != ';')
            ++p;
        const ZChar* colon = start;
        while (colon < p && *colon != ':')
            ++colon;
        if (colon < p)
            parseDeclaration(trimmed(start, colon), trimmed(colon + 1, p));
        if (p < end)
            ++p;
    }
}

bool StyleDef::parseDeclaration(const ZString& name, const ZString& value)
{
    const std::optional<StyleProperty> property = findProperty(name);
    if (!property)
        return false;
    const ZString trimmedValue = value.trim();
    if (trimmedValue.isEmpty())
        return false;
    const StylePropertyInfo& info = propertyInfo(*property);
    if (info.syntax == ValueSyntax::border)
        return parseBorder(*property, value);
    const std::optional<StyleValue> parsed = parseSimpleValue(info, trimmedValue);
    if (!parsed)
        return false;
    set(*property, *parsed);
    return true;
}

// border := { width | style | colour } in any order
// A word that begins with "#" or is a colour name is the colour, a border-style keyword the
// style, a word that begins with a digit the width; other words are ignored.
bool StyleDef::parseBorder(StyleProperty shorthand, const ZString& value)
{
    bool setAny = false;
    for (const ZString& word : splitWords(value)) {
        std::optional<StyleValue> part;
        if (word.c_str()[0] == '#' || isColourName(word)) {
            if (auto colour = parseColour(word))
                part = StyleValue(*colour);
        } else if (auto style = findKeyword(word, KeywordSet::borderStyle)) {
            part = StyleValue(*style);
        } else if (isDigit(word.c_str()[0])) {
            part = StyleValue(*parseLength(word));
        }
        if (part) {
            setBorderPart(shorthand, *part);
            setAny = true;
        }
    }
    return setAny;
}

void StyleDef::set(StyleProperty property, const StyleValue& value)
{
    if (isBorderShorthand(property)) {
        setBorderPart(property, value);
        return;
    }
    store(property, value);
    if (isBoxShorthand(property)) {
        for (int side = 1; side <= 4; ++side)
            store(propertyAfter(property, side), value);
    } else if (property == StyleProperty::overflow) {
        store(StyleProperty::overflowX, value);
        store(StyleProperty::overflowY, value);
    }
}

// "border" covers all sides through the box shorthands; "border-left" and the other sides
// their own components. The side order is the same in every group of border properties.
void StyleDef::setBorderPart(StyleProperty shorthand, const StyleValue& value)
{
    const int side = static_cast<int>(shorthand) - static_cast<int>(StyleProperty::border);
    StyleProperty component;
    if (std::holds_alternative<StyleNumber>(value))
        component = propertyAfter(StyleProperty::borderWidth, side);
    else if (std::holds_alternative<Colour>(value))
        component = propertyAfter(StyleProperty::borderColor, side);
    else if (std::holds_alternative<StyleKeyword>(value))
        component = propertyAfter(StyleProperty::borderStyle, side);
    else
        return;
    set(component, value);
}

const StyleValue* StyleDef::get(StyleProperty property) const
{
    for (const auto& entry : values_) {
        if (entry.first == property)
            return &entry.second;
    }
    return nullptr;
}

void StyleDef::remove(StyleProperty property)
{
    for (auto it = values_.begin(); it != values_.end(); ++it) {
        if (it->first == property) {
            values_.erase(it);
            return;
        }
    }
}

void StyleDef::store(StyleProperty property, const StyleValue& value)
{
    for (auto& entry : values_) {
        if (entry.first == property) {
            entry.second = value;
            return;
        }
    }
    values_.emplace_back(property, value);
}

} // namespace xhtml
