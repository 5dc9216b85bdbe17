#pragma once
// The style of one element in one pointer state: the properties its declarations set.

#include "base/ZString.h"
#include "xhtml/StyleProperty.h"
#include "xhtml/StyleValue.h"

#include <utility>
#include <vector>

namespace xhtml {

class StyleDef {
public:
    // declarations := declaration { ";" declaration }; declaration := name ":" value
    // Names and values are trimmed; an unknown name, an empty value or a value that does not
    // parse leaves the property as it was. Later declarations override earlier ones. Every
    // "-c-" in the text stands for ":" (see the definition).
    void parse(const ZString& declarations);
    // One declaration; false when it set nothing.
    bool parseDeclaration(const ZString& name, const ZString& value);

    // Stores a value. Shorthands set their components too: "padding", "margin",
    // "border-width", "border-color" and "border-style" their four sides, "overflow" its two
    // axes. "border" and its side forms are held only in their components: a number sets the
    // width, a colour the colour and a keyword the style of the sides they cover.
    void set(StyleProperty property, const StyleValue& value);
    // The value, or null when the property was never set.
    const StyleValue* get(StyleProperty property) const;
    bool has(StyleProperty property) const { return get(property) != nullptr; }
    void remove(StyleProperty property);

    int size() const { return static_cast<int>(values_.size()); }
    bool isEmpty() const { return values_.empty(); }

private:
    void store(StyleProperty property, const StyleValue& value);
    void setBorderPart(StyleProperty shorthand, const StyleValue& value);
    bool parseBorder(StyleProperty shorthand, const ZString& value);

    std::vector<std::pair<StyleProperty, StyleValue>> values_;
};

} // namespace xhtml
