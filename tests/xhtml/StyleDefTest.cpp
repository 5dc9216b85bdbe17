// Style declarations: property names, value kinds, lengths, shorthands, gradients.

#include "xhtml/StyleDef.h"

#include <gtest/gtest.h>

#include <optional>

using namespace xhtml;
using P = StyleProperty;
using K = StyleKeyword;

namespace {

StyleDef styleOf(const char* declarations)
{
    StyleDef style;
    style.parse(ZString::fromUtf8(declarations));
    return style;
}

std::optional<StyleValue> valueOf(const StyleDef& style, StyleProperty property)
{
    const StyleValue* value = style.get(property);
    return value ? std::optional<StyleValue>(*value) : std::nullopt;
}

StyleNumber integer(int value, bool percent = false)
{
    return StyleNumber::of(value, percent);
}

StyleNumber real(double value, bool percent = false)
{
    StyleNumber number;
    number.isReal = true;
    number.isPercent = percent;
    number.real = value;
    return number;
}

StyleGradient whiteToGrey(GradientDirection direction)
{
    return StyleGradient{0xFFFFFF, 0xE8E8E8, direction};
}

} // namespace

TEST(StyleProperties, NamesInParseOrder)
{
    const char* const names[] = {
        "width", "height", "min-width", "min-height", "color", "text-align", "text-decoration", "vertical-align",
        "vertical-align-content", "vertical-align-line", "font-family", "font-weight", "font-size", "font-style",
        "border-width", "border-left-width", "border-top-width", "border-right-width", "border-bottom-width",
        "border-color", "border-left-color", "border-top-color", "border-right-color", "border-bottom-color",
        "border-style", "border-left-style", "border-top-style", "border-right-style", "border-bottom-style",
        "padding", "padding-left", "padding-top", "padding-right", "padding-bottom", "margin", "margin-left",
        "margin-top", "margin-right", "margin-bottom", "cursor", "position", "left", "top", "right", "bottom",
        "border", "border-left", "border-top", "border-right", "border-bottom", "background-color",
        "background-image", "background-repeat", "background-position", "background-gradient", "visibility",
        "display", "overflow", "overflow-x", "overflow-y", "white-space", "opacity", "line-spacing",
        "cell-spacing", "cell-padding",
    };
    ASSERT_EQ(static_cast<int>(std::size(names)), stylePropertyCount);
    for (int i = 0; i < stylePropertyCount; ++i)
        EXPECT_EQ(findProperty(ZString::fromUtf8(names[i])), std::optional<P>(static_cast<P>(i))) << names[i];
    EXPECT_EQ(findProperty(ZString(u"Color")), std::nullopt); // names are exact, lower case
}

TEST(StyleDeclarations, SplittingTrimmingAndOrder)
{
    const StyleDef style = styleOf(" color : red ;\twidth:\n5px;; nonsense; unknown: 3; height: ; :7; top:1;top:2");
    EXPECT_EQ(valueOf(style, P::color), StyleValue(Colour(0x0000FF)));
    EXPECT_EQ(valueOf(style, P::width), StyleValue(integer(5)));
    EXPECT_EQ(valueOf(style, P::top), StyleValue(integer(2))); // later wins
    EXPECT_EQ(style.size(), 3);                                  // an empty value sets nothing
}

// One declaration, the property it sets and the value it holds (none: the value does not
// parse, so the property is left alone).
TEST(StyleDeclarations, ValuesByProperty)
{
    const StyleProperty G = P::backgroundGradient;
    using D = GradientDirection;
    const struct {
        const char* declarations;
        StyleProperty property;
        std::optional<StyleValue> value;
    } cases[] = {
        // Colours by name without case and the "#" forms.
        {"color: Red", P::color, Colour(0x0000FF)},
        {"color: #f00", P::color, Colour(0x0000FF)},
        {"color: #ff000080", P::color, Colour(0x800000FF)},
        {"background-color:#FFFFFF", P::backgroundColor, Colour(0xFFFFFF)},
        {"color: #12345", P::color, std::nullopt},
        {"color: red; color: nocolour", P::color, Colour(0x0000FF)},
        // Lengths, percentages, reals; keywords by property.
        {"padding:10", P::padding, integer(10)},
        {"width:100%", P::width, integer(100, true)},
        {"opacity:0.5", P::opacity, real(0.5)},
        {"font-size: larger", P::fontSize, K::larger},
        {"font-size: XX-Small", P::fontSize, K::xxSmall},
        {"text-align:JUSTIFY", P::textAlign, K::justify},
        {"text-align:top", P::textAlign, std::nullopt},
        {"vertical-align-content:text-top", P::verticalAlignContent, K::textTop},
        {"vertical-align-line:center", P::verticalAlignLine, std::nullopt},
        {"text-decoration:line-through", P::textDecoration, K::lineThrough},
        {"font-weight:700", P::fontWeight, K::weight700},
        {"font-weight:750", P::fontWeight, std::nullopt},
        {"cursor:pointer", P::cursor, K::pointer},
        {"border-style:dotted", P::borderStyle, K::dotted},
        {"position:absolute", P::position, K::absolute},
        {"overflow-x:auto", P::overflowX, K::autoValue},
        {"display:inline-block", P::display, K::inlineBlock},
        {"display:hidden", P::display, std::nullopt},
        {"background-repeat:repeat-y", P::backgroundRepeat, K::repeatY},
        // Text kept as written, or one of a few words.
        {"font-family: Segoe UI, Tahoma", P::fontFamily, ZString(u"Segoe UI, Tahoma")},
        {"background-position: left top", P::backgroundPosition, ZString(u"left top")},
        {"font-style: italic", P::fontStyle, ZString(u"italic")},
        {"font-style: oblique", P::fontStyle, std::nullopt},
        {"white-space: nobreak", P::whiteSpace, ZString(u"nobreak")},
        {"white-space: nowrap", P::whiteSpace, std::nullopt},
        // "-c-" stands for ":".
        {"color-c-red", P::color, Colour(0x0000FF)},
        {"width-c- 10px", P::width, integer(10)},
        {"background-image-c-res-c-///a.png", P::backgroundImage, ZString(u"res:///a.png")},
        // Gradients: exactly three words; an unknown direction is vertical.
        {"background-gradient: #FFFFFF #E8E8E8 vertical", G, whiteToGrey(D::vertical)},
        {"background-gradient: #FFFFFF #E8E8E8 sideways", G, whiteToGrey(D::vertical)},
        {"background-gradient: #FFFFFF,  #E8E8E8 , horizontal", G, whiteToGrey(D::horizontal)},
        {"background-gradient: #FFFFFF #E8E8E8 diagonal", G, whiteToGrey(D::forwardDiagonal)},
        {"background-gradient: #FFFFFF #E8E8E8 forward-diagonal", G, whiteToGrey(D::forwardDiagonal)},
        {"background-gradient: #FFFFFF #E8E8E8 backward-diagonal", G, whiteToGrey(D::backwardDiagonal)},
        {"background-gradient: #FFFFFF #E8E8E8", G, std::nullopt},
        {"background-gradient: #FFFFFF #E8E8E8 vertical extra", G, std::nullopt},
        {"background-gradient: #FFFFFF nocolour vertical", G, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(valueOf(styleOf(c.declarations), c.property), c.value) << c.declarations;
}

TEST(StyleLengths, Forms)
{
    const struct {
        const char* text;
        std::optional<StyleNumber> number; // compared with its kind: real or integer, percentage or not
    } cases[] = {
        {"10px", integer(10)},   {"10", integer(10)},    {" 10 ", integer(10)},  {"100%", integer(100, true)},
        {"0.5", real(0.5)},      {".5em", real(0.5)},    {"1.5", real(1.5)},     {"1.0", integer(1)},
        {"-5px", integer(-5)},   {"+7", integer(7)},     {"1e2px", integer(100)}, {"2e", integer(2)},
        {"0x1F", integer(31)},   {"0x10%", integer(16, true)}, {"0X1F", integer(0)}, // only "0x" is hexadecimal
        {"auto", integer(0)},    {"px", integer(0)},     {"12pt", integer(12)},  {"3in", integer(3)}, // units ignored
        {"50.5%", real(50.5, true)},   {"3000000000", real(3000000000.0)}, {"  ", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseLength(ZString::fromUtf8(c.text)), c.number) << c.text;
}

TEST(StyleShorthands, BoxSidesAndAxes)
{
    const StyleDef style = styleOf("padding-left:5px; padding:10px; margin:2px; margin-top:7px");
    for (P side : {P::paddingLeft, P::paddingTop, P::paddingRight, P::paddingBottom})
        EXPECT_EQ(valueOf(style, side), StyleValue(integer(10)));
    EXPECT_EQ(valueOf(style, P::marginTop), StyleValue(integer(7)));
    EXPECT_EQ(valueOf(style, P::marginLeft), StyleValue(integer(2)));
    const StyleDef overflow = styleOf("overflow: hidden; overflow-y: scroll");
    EXPECT_EQ(valueOf(overflow, P::overflowX), StyleValue(K::hidden));
    EXPECT_EQ(valueOf(overflow, P::overflowY), StyleValue(K::scroll));
}

TEST(StyleShorthands, BorderInAnyWordOrder)
{
    for (const char* words : {"1px solid #E8E8E8", "#E8E8E8 solid 1px", "solid,1px:#e8e8e8"}) {
        const StyleDef style = styleOf((std::string("border: ") + words).c_str());
        EXPECT_FALSE(style.has(P::border)) << "held only in its components";
        // The width, then the four sides' widths, colours and styles five places later each.
        for (int width : {int(P::borderWidth), int(P::borderLeftWidth), int(P::borderTopWidth),
                          int(P::borderRightWidth), int(P::borderBottomWidth)}) {
            EXPECT_EQ(valueOf(style, P(width)), StyleValue(integer(1))) << words;
            EXPECT_EQ(valueOf(style, P(width + 5)), StyleValue(Colour(0xE8E8E8))) << words;
            EXPECT_EQ(valueOf(style, P(width + 10)), StyleValue(K::solid)) << words;
        }
    }
    const StyleDef left = styleOf("border-left: 2px dashed Red");
    EXPECT_EQ(valueOf(left, P::borderLeftWidth), StyleValue(integer(2)));
    EXPECT_EQ(valueOf(left, P::borderLeftStyle), StyleValue(K::dashed));
    EXPECT_EQ(valueOf(left, P::borderLeftColor), StyleValue(Colour(0x0000FF)));
    EXPECT_EQ(left.size(), 3) << "no other side";
    EXPECT_EQ(valueOf(styleOf("border-bottom: none"), P::borderBottomStyle), StyleValue(K::none));
    const StyleDef partial = styleOf("border: #12345 3 thick");
    EXPECT_EQ(valueOf(partial, P::borderWidth), StyleValue(integer(3)));
    EXPECT_FALSE(partial.has(P::borderColor)); // "#" makes it the colour, which is invalid
    EXPECT_TRUE(styleOf("border: nothing useful").isEmpty());
}
