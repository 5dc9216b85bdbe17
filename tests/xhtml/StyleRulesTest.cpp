// Style rules matched by tag, id and class words in a pointer state, and read from sheets.

#include "TreeText.h"

#include "xhtml/StyleRules.h"

#include <gtest/gtest.h>

using namespace xhtml;

namespace {

StyleRule rule(const char16_t* tag, const char16_t* id, const char16_t* className, const char16_t* declarations = u"",
               PointerState state = PointerState::normal)
{
    return StyleRule{ZString(tag), ZString(id), ZString(className), state, ZString(declarations)};
}

} // namespace

TEST(StyleRules, MatchByTagIdAndWholeClassWord)
{
    auto root = xhtmltest::parseDocument(ZString(u"<DIV id=Main></DIV><p>"));
    const auto& div = static_cast<const HtmlTagNode&>(*root->children().at(0));
    const auto& p = static_cast<const HtmlTagNode&>(*root->children().at(1));
    const std::vector<ZString> words{ZString(u"box"), ZString(u"wide")};
    const struct {
        StyleRule rule;
        const HtmlTagNode& element;
        bool matches;
    } cases[] = {
        {rule(u"", u"", u""), div, true},           {rule(u"*", u"*", u"*"), div, true},
        {rule(u"DIV", u"main", u"WIDE"), div, true}, {rule(u"span", u"", u""), div, false},
        {rule(u"", u"other", u""), div, false},     {rule(u"", u"", u"bo"), div, false},
        {rule(u"p", u"", u""), p, true},
        {rule(u"p", u"x", u""), p, false}, // an element without an id matches only any id
        {rule(u"p", u"", u"c"), p, false},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const std::vector<ZString> none;
        EXPECT_EQ(StyleRuleList::matches(cases[i].rule, cases[i].element, &cases[i].element == &div ? words : none),
                  cases[i].matches)
            << "case " << i;
    }
}

TEST(StyleRules, ApplyInListOrderForTheStateOnlyThenTheOwnStyle)
{
    auto root = xhtmltest::parseDocument(ZString(u"<td class=\"x, cell;y\" style=\"width:9\" mostyle=\"color:lime\">"));
    const auto& td = static_cast<const HtmlTagNode&>(*root->children().at(0));
    StyleRuleList rules;
    rules.add(rule(u"td", u"", u"", u"color:red; width:1"));
    rules.add(rule(u"", u"", u"cell", u"color:blue"));
    rules.add(rule(u"td", u"", u"", u"color:white", PointerState::over));
    rules.add(rule(u"span", u"", u"", u"color:black"));
    const StyleDef normal = rules.styleFor(td, PointerState::normal);
    EXPECT_EQ(*normal.get(StyleProperty::color), StyleValue(Colour(0xFF0000))); // the later rule, by a class word
    EXPECT_EQ(*normal.get(StyleProperty::width), StyleValue(StyleNumber::of(9, false))); // own style last
    const StyleDef over = rules.styleFor(td, PointerState::over);
    EXPECT_EQ(*over.get(StyleProperty::color), StyleValue(Colour(0x00FF00))); // the rule, then moStyle
    EXPECT_FALSE(over.has(StyleProperty::width));
    EXPECT_TRUE(rules.styleFor(td, PointerState::rightButtonDown).isEmpty());
}

TEST(StyleRules, SheetSelectorsAndBlocks)
{
    StyleRuleList rules;
    EXPECT_EQ(rules.addSheet(ZString(u"/* dialog */ div#bottom.bar:hoover { color: red } td, .note ,*:LeftButtonDown{width:5}  "
                                     u"a b { color: blue } p:press {x:y} span.a.b {} .x:rbd {top:1} i:MO{} unclosed { color: red")),
              6);
    std::string text; // a state by the name of its style attribute
    for (const StyleRule& r : rules.rules())
        text += r.tag.toUtf8() + "#" + r.id.toUtf8() + "." + r.className.toUtf8() + ":"
                + ZString(styleAttributeName(r.state)).toUtf8() + "{" + r.declarations.toUtf8() + "} ";
    EXPECT_EQ(text, "div#bottom.bar:mostyle{color: red} td#.:style{width:5} #.note:style{width:5} *#.:lbdstyle{width:5} "
                    "#.x:rbdstyle{top:1} i#.:mostyle{} ");
}
