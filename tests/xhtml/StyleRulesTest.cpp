// Style rules matched by tag, id and class words in a pointer state; pointer state names.

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

std::optional<Colour> colourOf(const StyleDef& style)
{
    const StyleValue* value = style.get(StyleProperty::color);
    return value ? std::optional<Colour>(std::get<Colour>(*value)) : std::nullopt;
}

} // namespace

TEST(StyleRuleMatching, ByTagIdAndClassWord)
{
    auto root = xhtmltest::parseDocument(ZString(u"<DIV id=Main class=\"box, wide;x:y\"></DIV><p>"));
    const auto& div = static_cast<const HtmlTagNode&>(*root->children().at(0));
    const auto& p = static_cast<const HtmlTagNode&>(*root->children().at(1));
    const std::vector<ZString> words{ZString(u"box"), ZString(u"wide"), ZString(u"x"), ZString(u"y")};
    const struct {
        StyleRule rule;
        const HtmlTagNode& element;
        bool matches;
    } cases[] = {
        {rule(u"", u"", u""), div, true},
        {rule(u"*", u"*", u"*"), div, true},
        {rule(u"DIV", u"main", u"WIDE"), div, true},
        {rule(u"", u"", u"y"), div, true},
        {rule(u"span", u"", u""), div, false},
        {rule(u"", u"other", u""), div, false},
        {rule(u"", u"", u"bo"), div, false}, // whole words only
        {rule(u"div", u"main", u"tall"), div, false},
        {rule(u"p", u"", u""), p, true},
        {rule(u"p", u"x", u""), p, false}, // an element without an id matches only any id
        {rule(u"p", u"", u"c"), p, false},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const bool isDiv = &cases[i].element == &div;
        EXPECT_EQ(StyleRuleList::matches(cases[i].rule, cases[i].element, isDiv ? words : std::vector<ZString>{}),
                  cases[i].matches)
            << "case " << i;
    }
}

TEST(StyleRuleApplying, InListOrderForTheStateOnlyThenTheOwnStyle)
{
    auto root = xhtmltest::parseDocument(ZString(u"<td class=cell style=\"width:9\" mostyle=\"color:lime\">"));
    const auto& td = static_cast<const HtmlTagNode&>(*root->children().at(0));
    StyleRuleList rules;
    rules.add(rule(u"td", u"", u"", u"color:red; width:1"));
    rules.add(rule(u"", u"", u"cell", u"color:blue"));
    rules.add(rule(u"td", u"", u"", u"color:white", PointerState::over));
    rules.add(rule(u"span", u"", u"", u"color:black"));

    const StyleDef normal = rules.styleFor(td, PointerState::normal);
    EXPECT_EQ(colourOf(normal), Colour(0xFF0000)); // the later rule wins
    EXPECT_EQ(std::get<StyleNumber>(*normal.get(StyleProperty::width)).integer, 9); // own style last
    const StyleDef over = rules.styleFor(td, PointerState::over);
    EXPECT_EQ(colourOf(over), Colour(0x00FF00)); // the rule, then moStyle
    EXPECT_FALSE(over.has(StyleProperty::width));
    EXPECT_TRUE(rules.styleFor(td, PointerState::rightButtonDown).isEmpty());
}

TEST(StyleSheets, SelectorsAndBlocks)
{
    StyleRuleList rules;
    const int added = rules.addSheet(ZString(u"/* dialog */ div#bottom.bar:hoover { color: red } "
                                             "td, .note ,*:lbd{width:5}  a b { color: blue } p:press {x:y}"
                                             "span.a.b {} .x:rbd {top:1} unclosed { color: red"));
    ASSERT_EQ(added, 5);
    const std::vector<StyleRule>& list = rules.rules();
    auto expectRule = [&](size_t i, const char16_t* tag, const char16_t* id, const char16_t* className,
                          PointerState state, const char16_t* declarations) {
        EXPECT_EQ(list[i].tag, ZString(tag)) << i;
        EXPECT_EQ(list[i].id, ZString(id)) << i;
        EXPECT_EQ(list[i].className, ZString(className)) << i;
        EXPECT_EQ(list[i].state, state) << i;
        EXPECT_EQ(list[i].declarations, ZString(declarations)) << i;
    };
    expectRule(0, u"div", u"bottom", u"bar", PointerState::over, u"color: red");
    expectRule(1, u"td", u"", u"", PointerState::normal, u"width:5");
    expectRule(2, u"", u"", u"note", PointerState::normal, u"width:5");
    expectRule(3, u"*", u"", u"", PointerState::leftButtonDown, u"width:5");
    expectRule(4, u"", u"", u"x", PointerState::rightButtonDown, u"top:1");
}

TEST(PointerStates, Names)
{
    const struct {
        const char16_t* name;
        std::optional<PointerState> state;
    } cases[] = {
        {u"hover", PointerState::over},          {u"hoover", PointerState::over},
        {u"  MO ", PointerState::over},          {u"HoVeR", PointerState::over},
        {u"LeftButtonDown", PointerState::leftButtonDown}, {u"lbd", PointerState::leftButtonDown},
        {u"rightbuttondown", PointerState::rightButtonDown}, {u"rbd", PointerState::rightButtonDown},
        {u"normal", PointerState::normal},       {u"press", std::nullopt}, {u"", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(pointerStateFromName(ZString(c.name)), c.state) << ZString(c.name).toUtf8();
    EXPECT_EQ(std::u16string(styleAttributeName(PointerState::over)), u"mostyle");
    EXPECT_EQ(std::u16string(styleAttributeName(PointerState::normal)), u"style");
}
