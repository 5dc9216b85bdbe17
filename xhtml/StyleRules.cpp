#include "xhtml/StyleRules.h"

#include "xhtml/MarkupText.h"

#include <optional>

namespace xhtml {

namespace {

bool nameMatches(const ZString& ruleName, const ZString& value)
{
    return ruleName.isEmpty() || equals(ruleName, u"*") || ruleName.equalsNoCase(value);
}

bool isSelectorMark(ZChar unit)
{
    return unit == '#' || unit == '.' || unit == ':';
}

// selector := [tag | "*"] ["#" id] ["." class] [":" state]; each part at most once.
std::optional<StyleRule> parseSelector(const ZString& selector)
{
    if (selector.isEmpty())
        return std::nullopt;
    StyleRule rule;
    const ZChar* p = selector.c_str();
    const ZChar* end = p + selector.length();
    ZChar mark = 0;
    bool seen[3] = {false, false, false};
    while (p <= end) {
        const ZChar* start = p;
        while (p < end && !isSelectorMark(*p))
            ++p;
        const ZString part(start, static_cast<int>(p - start));
        for (const ZChar* q = start; q < p; ++q) {
            if (isSpace(*q))
                return std::nullopt; // descendant selectors are not supported
        }
        const int index = mark == '#' ? 0 : mark == '.' ? 1 : mark == ':' ? 2 : -1;
        if (index >= 0 && (seen[index] || part.isEmpty()))
            return std::nullopt;
        if (index >= 0)
            seen[index] = true;
        if (index < 0) {
            rule.tag = part;
        } else if (index == 0) {
            rule.id = part;
        } else if (index == 1) {
            rule.className = part;
        } else {
            const std::optional<PointerState> state = pointerStateFromName(part);
            if (!state)
                return std::nullopt;
            rule.state = *state;
        }
        if (p == end)
            break;
        mark = *p++;
    }
    return rule;
}

ZString withoutComments(const ZString& text)
{
    ZString::Storage units;
    const ZChar* p = text.c_str();
    const ZChar* end = p + text.length();
    while (p < end) {
        if (end - p >= 2 && p[0] == '/' && p[1] == '*') {
            const ZChar* close = p + 2;
            while (close < end && !(close + 1 < end && close[0] == '*' && close[1] == '/'))
                ++close;
            p = close < end ? close + 2 : end;
            units.push_back(' ');
        } else {
            units.push_back(*p++);
        }
    }
    return ZString(std::move(units));
}

} // namespace

int StyleRuleList::addSheet(const ZString& text)
{
    const ZString sheet = withoutComments(text);
    int added = 0;
    int at = 0;
    while (at < sheet.length()) {
        const int open = sheet.find(ZChar('{'), at);
        const int close = open == ZString::npos ? ZString::npos : sheet.find(ZChar('}'), open);
        if (close == ZString::npos)
            break;
        const ZString declarations = sheet.substring(open + 1, close - open - 1).trim();
        const ZString selectors = sheet.substring(at, open - at);
        int from = 0;
        while (from <= selectors.length()) {
            int comma = selectors.find(ZChar(','), from);
            if (comma == ZString::npos)
                comma = selectors.length();
            if (std::optional<StyleRule> rule = parseSelector(selectors.substring(from, comma - from).trim())) {
                rule->declarations = declarations;
                add(std::move(*rule));
                ++added;
            }
            from = comma + 1;
        }
        at = close + 1;
    }
    return added;
}

bool StyleRuleList::matches(const StyleRule& rule, const HtmlTagNode& element, const std::vector<ZString>& classWords)
{
    if (!nameMatches(rule.tag, element.name()))
        return false;
    const ZString* id = element.attribute(ZString(u"id"));
    if (!nameMatches(rule.id, id ? *id : ZString()))
        return false;
    if (rule.className.isEmpty() || equals(rule.className, u"*"))
        return true;
    for (const ZString& word : classWords) {
        if (rule.className.equalsNoCase(word))
            return true;
    }
    return false;
}

StyleDef StyleRuleList::styleFor(const HtmlTagNode& element, PointerState state, StyleDef base) const
{
    StyleDef style = std::move(base);
    const ZString* classAttribute = element.attribute(ZString(u"class"));
    const std::vector<ZString> classWords = classAttribute ? splitWords(*classAttribute) : std::vector<ZString>();
    for (const StyleRule& rule : rules_) {
        if (rule.state == state && matches(rule, element, classWords))
            style.parse(rule.declarations);
    }
    if (const ZString* own = element.attribute(ZString(styleAttributeName(state))))
        style.parse(*own);
    return style;
}

} // namespace xhtml
