// Style rules matched by tag, id and class words in a pointer state; pointer state names.

#include "TreeText.h"

#include "xhtml/StyleRules.h"

#include <gtest/gtest.h>

using namespace xhtml;

namespace {

const HtmlTagNode& firstElement(const HtmlTagNode& root)
{
    return static_cast<const HtmlTagNode&>(*root.children().at(0));
}

StyleRule rule(const char16_t* tag, const char16_t* id, const char16_t* className, const char16_t* declarations,
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
    auto root = xhtmltest::parseDocument(ZString(u"<DIV id=Main class=\"box, wide;x:y\">"));
    const HtmlTagNode& div = firstElement(*root);
    const std::vector<ZString> words{ZString(u"box"), ZString(u"wide"), ZString(u"x"), ZString(u"y")};
    struct Case {
        StyleRule rule;
        bool matches;
    };
    const Case cases[] = {
        {rule(u"", u"", u"", u""), true},
        {rule(u"*", u"*", u"*", u""), true},
        {rule(u"div", u"", u"", u""), true},
        {rule(u"DIV", u"main", u"WIDE", u""), true},
        {rule(u"", u"", u"y", u""), true},
        {rule(u"span", u"", u"", u""), false},
        {rule(u"", u"other", u"", u""), false},
        {rule(u"", u"", u"bo", u""), false}, // whole words only
        {rule(u"div", u"main", u"tall", u""), false},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i)
        EXPECT_EQ(StyleRuleList::matches(cases[i].rule, div, words), cases[i].matches) << "case " << i;
}

TEST(StyleRuleMatching, ElementWithoutIdMatchesOnlyAnyId)
{
    auto root = xhtmltest::parseDocument(ZString(u"<p>"));
    EXPECT_TRUE(StyleRuleList::matches(rule(u"p", u"", u"", u""), firstElement(*root), {}));
    EXPECT_FALSE(StyleRuleList::matches(rule(u"p", u"x", u"", u""), firstElement(*root), {}));
    EXPECT_FALSE(StyleRuleList::matches(rule(u"p", u"", u"c", u""), firstElement(*root), {}));
}

TEST(StyleRuleApplying, InListOrderForTheStateOnly)
{
    auto root = xhtmltest::parseDocument(ZString(u"<td class=cell style=\"width:9\" mostyle=\"color:lime\">"));
    const HtmlTagNode& td = firstElement(*root);
    StyleRuleList rules;
    rules.add(rule(u"td", u"", u"", u"color:red; width:1"));
    rules.add(rule(u"", u"", u"cell", u"color:blue"));
    rules.add(rule(u"td", u"", u"", u"color:white", PointerState::over));
    rules.add(rule(u"span", u"", u"", u"color:black"));

    StyleDef normal;
    rules.apply(td, PointerState::normal, normal);
    EXPECT_EQ(colourOf(normal), Colour(0xFF0000)); // the later rule wins

    const StyleDef withOwn = rules.styleFor(td, PointerState::normal);
    EXPECT_EQ(colourOf(withOwn), Colour(0xFF0000));
    EXPECT_EQ(std::get<StyleNumber>(*withOwn.get(StyleProperty::width)).integer, 9); // own style last

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
    EXPECT_EQ(list[0].tag, ZString(u"div"));
    EXPECT_EQ(list[0].id, ZString(u"bottom"));
    EXPECT_EQ(list[0].className, ZString(u"bar"));
    EXPECT_EQ(list[0].state, PointerState::over);
    EXPECT_EQ(list[0].declarations, ZString(u"color: red"));
    EXPECT_EQ(list[1].tag, ZString(u"td"));
    EXPECT_EQ(list[2].className, ZString(u"note"));
    EXPECT_EQ(list[2].tag, ZString());
    EXPECT_EQ(list[3].tag, ZString(u"*"));
    EXPECT_EQ(list[3].state, PointerState::leftButtonDown);
    EXPECT_EQ(list[3].declarations, ZString(u"width:5"));
    EXPECT_EQ(list[4].className, ZString(u"x"));
    EXPECT_EQ(list[4].state, PointerState::rightButtonDown);
}

TEST(PointerStates, Names)
{
    struct Case {
        const char16_t* name;
        std::optional<PointerState> state;
    };
    const Case cases[] = {
        {u"hover", PointerState::over},
        {u"hoover", PointerState::over},
        {u"  MO ", PointerState::over},
        {u"HoVeR", PointerState::over},
        {u"leftbuttondown", PointerState::leftButtonDown},
        {u"LeftButtonDown", PointerState::leftButtonDown},
        {u"lbd", PointerState::leftButtonDown},
        {u"rightbuttondown", PointerState::rightButtonDown},
        {u"rbd", PointerState::rightButtonDown},
        {u"normal", PointerState::normal},
        {u"press", std::nullopt},
        {u"", std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(pointerStateFromName(ZString(c.name)), c.state) << ZString(c.name).toUtf8();
    EXPECT_EQ(static_cast<int>(PointerState::rightButtonDown), 3);
    EXPECT_EQ(std::u16string(styleAttributeName(PointerState::over)), u"mostyle");
    EXPECT_EQ(std::u16string(styleAttributeName(PointerState::normal)), u"style");
}
