// Style values: colours (in byte order 0xAABBGGRR), lengths, declarations by property,
// shorthands and gradients; style rules matched and read from sheets.

#include "xhtml/ColourTable.h"
#include "xhtml/StyleDef.h"
#include "xhtml/StyleRules.h"

#include <gtest/gtest.h>

#include <optional>

using namespace xhtml;
using P = StyleProperty;
using K = StyleKeyword;

namespace {

std::optional<StyleValue> valueOf(const char* declarations, StyleProperty property)
{
    StyleDef style;
    style.parse(ZString::fromUtf8(declarations));
    const StyleValue* value = style.get(property);
    return value ? std::optional<StyleValue>(*value) : std::nullopt;
}

StyleNumber integer(int value, bool percent = false) { return StyleNumber{false, percent, value, 0}; }
StyleNumber real(double value, bool percent = false) { return StyleNumber{true, percent, 0, value}; }

StyleRule rule(const char16_t* tag, const char16_t* id, const char16_t* className, const char16_t* declarations = u"",
               PointerState state = PointerState::normal)
{
    return StyleRule{ZString(tag), ZString(id), ZString(className), state, ZString(declarations)};
}

} // namespace

TEST(Colours, ValuesAndHashForms)
{
    const struct {
        const char* text;
        std::optional<Colour> value;
    } cases[] = {
        {"Red", 0x0000FF},            {"transparent", 0xFF000000},
        {"BlanchedAlmond", 0xCDFFFF}, // #FFFFCD, not the common #FFEBCD
        {"Gray", 0x7F7F7F},           // not #808080
        {"YellowGreen", 0x32CD8B},    // #8BCD32, not #9ACD32
        {"LightGrey", 0xD3D3D3},      {"Grey", std::nullopt}, {"LightGray", std::nullopt}, // only LightGrey has that spelling
        {"#ff0000", 0x0000FF},        {"#123456", 0x563412},  {"#12345678", 0x78563412},
        {"#F80", 0x0088FF},           {"#F808", 0x880088FF},  {"#12345", std::nullopt}, {"#GG0000", std::nullopt},
        {"123456", std::nullopt},     {"red ", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseColour(ZString::fromUtf8(c.text)), c.value) << c.text;
}

// One declaration list, a property and the value it ends with (none: not set).
TEST(StyleDeclarations, ValuesByProperty)
{
    const StyleProperty G = P::backgroundGradient;
    auto towards = [&](GradientDirection direction) { return StyleGradient{0xFFFFFF, 0xE8E8E8, direction}; };
    const struct {
        const char* declarations;
        StyleProperty property;
        std::optional<StyleValue> value;
    } cases[] = {
        {" color : Red ;\twidth:\n5px", P::color, Colour(0x0000FF)},
        {"nonsense; unknown: 3;:7; width:\n5px;;", P::width, integer(5)},
        {"top:1;top:2", P::top, integer(2)},                          // later wins
        {"top:1;top:", P::top, integer(1)},                           // an empty value sets nothing
        {"color: red; color: nocolour", P::color, Colour(0x0000FF)}, // nor does an invalid one
        {"Color: red", P::color, std::nullopt},                       // names are exact, lower case
        {"background-color:#ff000080", P::backgroundColor, Colour(0x800000FF)},
        {"vertical-align-content:text-top", P::verticalAlignContent, K::textTop},
        {"font-size: XX-Small", P::fontSize, K::xxSmall},
        {"text-align:top", P::textAlign, std::nullopt},               // another property's keyword
        {"font-weight:700", P::fontWeight, K::weight700},
        {"font-weight:750", P::fontWeight, std::nullopt},
        {"font-family: Segoe UI, Tahoma", P::fontFamily, ZString(u"Segoe UI, Tahoma")},
        {"font-style: italic", P::fontStyle, ZString(u"italic")},
        {"width-c- 10px", P::width, integer(10)},                     // "-c-" stands for ":"
        {"background-image-c-res-c-///a.png", P::backgroundImage, ZString(u"res:///a.png")},
        // Gradients: exactly three words; an unknown direction is vertical.
        {"background-gradient: #FFFFFF #E8E8E8 sideways", G, towards(GradientDirection::vertical)},
        {"background-gradient: #FFFFFF,  #E8E8E8 , horizontal", G, towards(GradientDirection::horizontal)},
        {"background-gradient: #FFFFFF #E8E8E8", G, std::nullopt},
        {"background-gradient: #FFFFFF #E8E8E8 vertical extra", G, std::nullopt},
        {"background-gradient: #FFFFFF nocolour vertical", G, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(valueOf(c.declarations, c.property), c.value) << c.declarations;
}

TEST(StyleLengths, Forms)
{
    const struct {
        const char* text;
        std::optional<StyleNumber> number; // compared with its kind: real or integer, percentage or not
    } cases[] = {
        {"10px", integer(10)},   {" 10 ", integer(10)},  {"100%", integer(100, true)}, {"1.0", integer(1)},
        {".5em", real(0.5)},     {"-5px", integer(-5)},  {"+7", integer(7)},     {"1e2px", integer(100)},
        {"2e", integer(2)},      {"0x1F", integer(31)},  {"0x10%", integer(16, true)},
        {"0X1F", integer(0)},    {"auto", integer(0)},   {"3in", integer(3)}, // only "0x" is hexadecimal; units ignored
        {"50.5%", real(50.5, true)}, {"3000000000", real(3000000000.0)}, {"  ", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseLength(ZString::fromUtf8(c.text)), c.number) << c.text;
}

TEST(StyleShorthands, BoxSidesAxesAndBorderWordsInAnyOrder)
{
    const struct {
        const char* declarations;
        std::vector<P> properties;
        std::optional<StyleValue> value;
    } cases[] = {
        {"padding-left:5px; padding:10px", {P::paddingLeft, P::paddingTop, P::paddingRight, P::paddingBottom}, integer(10)},
        {"margin:2px; margin-top:7px", {P::marginLeft, P::marginBottom}, integer(2)},
        {"overflow: hidden; overflow-y: scroll", {P::overflowX}, K::hidden},
        {"overflow: hidden; overflow-y: scroll", {P::overflowY}, K::scroll},
        {"border: 1px solid #E8E8E8", {P::borderWidth, P::borderLeftWidth, P::borderBottomWidth}, integer(1)},
        {"border: #E8E8E8 solid 1px", {P::borderColor, P::borderTopColor, P::borderRightColor}, Colour(0xE8E8E8)},
        {"border: solid,1px:#e8e8e8", {P::borderStyle, P::borderLeftStyle, P::borderBottomStyle}, K::solid},
        {"border-left: 2px dashed", {P::borderLeftWidth}, integer(2)},
        {"border-left: 2px dashed Red", {P::borderWidth, P::borderTopWidth, P::borderStyle, P::borderColor}, std::nullopt},
        {"border: #12345 3 nothing", {P::borderWidth}, integer(3)},
        {"border: #12345 3 nothing", {P::borderColor, P::borderStyle}, std::nullopt}, // "#" makes an invalid colour
    };
    for (const auto& c : cases) {
        for (P property : c.properties)
            EXPECT_EQ(valueOf(c.declarations, property), c.value) << c.declarations << " " << int(property);
    }
}

TEST(StyleRules, MatchByTagIdAndWholeClassWord)
{
    HtmlTagNode div(ZString(u"div")), p(ZString(u"p"));
    div.addAttribute(ZString(u"id"), ZString(u"Main"));
    const std::pair<StyleRule, bool> cases[] = {
        {rule(u"", u"", u""), true},      {rule(u"*", u"*", u"*"), true}, {rule(u"DIV", u"main", u"WIDE"), true},
        {rule(u"span", u"", u""), false}, {rule(u"", u"other", u""), false},
        {rule(u"", u"", u"bo"), false}, // whole words only
    };
    for (const auto& [r, matches] : cases)
        EXPECT_EQ(StyleRuleList::matches(r, div, {ZString(u"box"), ZString(u"wide")}), matches)
            << r.tag.toUtf8() << r.className.toUtf8();
    // Without an id or class words only "any" matches them.
    EXPECT_TRUE(StyleRuleList::matches(rule(u"p", u"*", u"*"), p, {}));
    EXPECT_FALSE(StyleRuleList::matches(rule(u"p", u"x", u""), p, {}));
}

TEST(StyleRules, ApplyInListOrderForTheStateOnlyThenTheOwnStyle)
{
    HtmlTagNode td(ZString(u"td"));
    td.addAttribute(ZString(u"class"), ZString(u"x, cell;y"));
    td.addAttribute(ZString(u"style"), ZString(u"width:9"));
    td.addAttribute(ZString(u"mostyle"), ZString(u"color:lime"));
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
