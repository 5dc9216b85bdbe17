#pragma once
// Style rules: declarations given once for every element that matches a tag name, an id
// and a class word, in one pointer state.

#include "base/ZString.h"
#include "xhtml/HtmlNode.h"
#include "xhtml/PointerState.h"
#include "xhtml/StyleDef.h"

#include <vector>

namespace xhtml {

struct StyleRule {
    ZString tag;       // empty or "*": any element
    ZString id;        // empty or "*": any id
    ZString className; // empty or "*": any class
    PointerState state = PointerState::normal;
    ZString declarations;
};

class StyleRuleList {
public:
    void add(StyleRule rule) { rules_.push_back(std::move(rule)); }

    // sheet := { selectors "{" declarations "}" }; selectors := selector { "," selector }
    // selector := [tag | "*"] ["#" id] ["." class] [":" state]
    // Comments "/* */" are skipped. A selector of any other form (descendants, two classes,
    // an unknown state) is skipped with its rule; an unclosed block ends the sheet.
    // Returns the number of rules added.
    int addSheet(const ZString& text);

    const std::vector<StyleRule>& rules() const { return rules_; }

    // Each of the rule's names is empty, "*", or equals (ignoring case) respectively the
    // element's tag name, its id and one of its class words.
    static bool matches(const StyleRule& rule, const HtmlTagNode& element, const std::vector<ZString>& classWords);

    // Over `base` (for the normal state, what the element's name and attributes say): the
    // declarations of every rule of that state that matches, in list order, so a later rule
    // overrides an earlier one; then the element's own declarations for the state ("style",
    // "moStyle", "lbdStyle" or "rbdStyle"), so that what an element says of itself wins.
    StyleDef styleFor(const HtmlTagNode& element, PointerState state, StyleDef base = StyleDef()) const;

private:
    std::vector<StyleRule> rules_;
};

} // namespace xhtml
