// Style declarations: property names, value kinds, lengths, shorthands, gradients.

#include "xhtml/StyleDef.h"

#include <gtest/gtest.h>

#include <optional>

using namespace xhtml;

namespace {

StyleDef styleOf(const char* declarations)
{
    StyleDef style;
    style.parse(ZString::fromUtf8(declarations));
    return style;
}

std::optional<Colour> colourOf(const StyleDef& style, StyleProperty property)
{
    const StyleValue* value = style.get(property);
    if (!value || !std::holds_alternative<Colour>(*value))
        return std::nullopt;
    return std::get<Colour>(*value);
}

std::optional<StyleNumber> numberOf(const StyleDef& style, StyleProperty property)
{
    const StyleValue* value = style.get(property);
    if (!value || !std::holds_alternative<StyleNumber>(*value))
        return std::nullopt;
    return std::get<StyleNumber>(*value);
}

std::optional<StyleKeyword> keywordOf(const StyleDef& style, StyleProperty property)
{
    const StyleValue* value = style.get(property);
    if (!value || !std::holds_alternative<StyleKeyword>(*value))
        return std::nullopt;
    return std::get<StyleKeyword>(*value);
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

const StyleProperty sides[] = {StyleProperty::borderLeftWidth, StyleProperty::borderTopWidth,
                               StyleProperty::borderRightWidth, StyleProperty::borderBottomWidth};

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
    ASSERT_EQ(static_cast<int>(sizeof names / sizeof names[0]), stylePropertyCount);
    for (int i = 0; i < stylePropertyCount; ++i) {
        EXPECT_EQ(findProperty(ZString::fromUtf8(names[i])), std::optional<StyleProperty>(static_cast<StyleProperty>(i)))
            << names[i];
    }
    EXPECT_EQ(findProperty(ZString(u"Color")), std::nullopt); // names are exact, lower case
    EXPECT_EQ(findProperty(ZString(u"colour")), std::nullopt);
}

TEST(StyleDeclarations, SplittingAndTrimming)
{
    const StyleDef style = styleOf(" color : red ;\twidth:\n5px;; nonsense; unknown: 3; height: ; :7; top:1;top:2");
    EXPECT_EQ(colourOf(style, StyleProperty::color), Colour(0x0000FF));
    EXPECT_EQ(numberOf(style, StyleProperty::width), integer(5));
    EXPECT_FALSE(style.has(StyleProperty::height)); // an empty value sets nothing
    EXPECT_EQ(numberOf(style, StyleProperty::top), integer(2)); // later wins
    EXPECT_EQ(style.size(), 3);
}

TEST(StyleDeclarations, ValueThatDoesNotParseLeavesThePropertyAlone)
{
    EXPECT_FALSE(styleOf("color: #12345").has(StyleProperty::color));
    EXPECT_FALSE(styleOf("text-align: middle").has(StyleProperty::textAlign));
    EXPECT_EQ(colourOf(styleOf("color: red; color: nocolour"), StyleProperty::color), Colour(0x0000FF));
}

TEST(StyleDeclarations, ColonEscape)
{
    const StyleDef style = styleOf("color-c-red;width-c- 10px;background-image-c-res-c-///a.png");
    EXPECT_EQ(colourOf(style, StyleProperty::color), Colour(0x0000FF));
    EXPECT_EQ(numberOf(style, StyleProperty::width), integer(10));
    const StyleValue* image = style.get(StyleProperty::backgroundImage);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(std::get<ZString>(*image), ZString(u"res:///a.png"));
}

TEST(StyleColours, InDeclarations)
{
    EXPECT_EQ(colourOf(styleOf("color: Red"), StyleProperty::color), Colour(0x0000FF));
    EXPECT_EQ(colourOf(styleOf("color: #f00"), StyleProperty::color), Colour(0x0000FF));
    EXPECT_EQ(colourOf(styleOf("color: #ff000080"), StyleProperty::color), Colour(0x800000FF));
    EXPECT_EQ(colourOf(styleOf("color: transparent"), StyleProperty::color), Colour(0xFF000000));
    EXPECT_EQ(colourOf(styleOf("background-color:#FFFFFF"), StyleProperty::backgroundColor), Colour(0xFFFFFF));
}

TEST(StyleLengths, Forms)
{
    struct Case {
        const char* text;
        StyleNumber number;
    };
    const Case cases[] = {
        {"10px", integer(10)},   {"10", integer(10)},    {" 10 ", integer(10)},  {"100%", integer(100, true)},
        {"0.5", real(0.5)},      {".5em", real(0.5)},    {"1.5", real(1.5)},     {"1.0", integer(1)},
        {"-5px", integer(-5)},   {"+7", integer(7)},     {"1e2px", integer(100)}, {"2e", integer(2)},
        {"0x1F", integer(31)},   {"0x10%", integer(16, true)}, {"0X1F", integer(0)}, // only "0x" is hexadecimal
        {"auto", integer(0)},    {"px", integer(0)},     {"12pt", integer(12)},  {"3in", integer(3)}, // units ignored
        {"50.5%", real(50.5, true)},   {"3000000000", real(3000000000.0)},
    };
    for (const Case& c : cases) {
        const std::optional<StyleNumber> number = parseLength(ZString::fromUtf8(c.text));
        ASSERT_TRUE(number.has_value()) << c.text;
        EXPECT_EQ(*number, c.number) << c.text;
        EXPECT_EQ(number->isReal, c.number.isReal) << c.text;
    }
    EXPECT_EQ(parseLength(ZString(u"  ")), std::nullopt);
    const std::optional<StyleNumber> percent = parseLength(ZString(u"100%"));
    ASSERT_TRUE(percent.has_value());
    EXPECT_TRUE(percent->isPercent);
    EXPECT_FALSE(parseLength(ZString(u"100px"))->isPercent);
}

TEST(StyleLengths, InDeclarations)
{
    EXPECT_EQ(numberOf(styleOf("padding:10px"), StyleProperty::padding), integer(10));
    EXPECT_EQ(numberOf(styleOf("padding:10"), StyleProperty::padding), integer(10));
    EXPECT_EQ(numberOf(styleOf("width:100%"), StyleProperty::width), integer(100, true));
    EXPECT_EQ(numberOf(styleOf("opacity:0.5"), StyleProperty::opacity), real(0.5));
    EXPECT_EQ(numberOf(styleOf("font-size:15px;"), StyleProperty::fontSize), integer(15));
    EXPECT_EQ(keywordOf(styleOf("font-size: larger"), StyleProperty::fontSize), StyleKeyword::larger);
    EXPECT_EQ(keywordOf(styleOf("font-size: XX-Small"), StyleProperty::fontSize), StyleKeyword::xxSmall);
}

TEST(StyleShorthands, BoxSidesAndOrder)
{
    const StyleDef style = styleOf("padding-left:5px; padding:10px; margin:2px; margin-top:7px");
    for (StyleProperty side : {StyleProperty::paddingLeft, StyleProperty::paddingTop, StyleProperty::paddingRight,
                               StyleProperty::paddingBottom})
        EXPECT_EQ(numberOf(style, side), integer(10));
    EXPECT_EQ(numberOf(style, StyleProperty::marginTop), integer(7));
    EXPECT_EQ(numberOf(style, StyleProperty::marginLeft), integer(2));
    const StyleDef overflow = styleOf("overflow: hidden; overflow-y: scroll");
    EXPECT_EQ(keywordOf(overflow, StyleProperty::overflowX), StyleKeyword::hidden);
    EXPECT_EQ(keywordOf(overflow, StyleProperty::overflowY), StyleKeyword::scroll);
}

TEST(StyleShorthands, BorderInAnyWordOrder)
{
    const StyleDef a = styleOf("border: 1px solid #E8E8E8");
    const StyleDef b = styleOf("border: #E8E8E8 solid 1px");
    const StyleDef c = styleOf("border: solid,1px:#e8e8e8");
    for (const StyleDef* style : {&a, &b, &c}) {
        EXPECT_EQ(numberOf(*style, StyleProperty::borderWidth), integer(1));
        EXPECT_EQ(keywordOf(*style, StyleProperty::borderStyle), StyleKeyword::solid);
        EXPECT_EQ(colourOf(*style, StyleProperty::borderColor), Colour(0xE8E8E8));
        for (StyleProperty side : sides) {
            EXPECT_EQ(numberOf(*style, side), integer(1));
            EXPECT_EQ(colourOf(*style, static_cast<StyleProperty>(static_cast<int>(side) + 5)), Colour(0xE8E8E8));
            EXPECT_EQ(keywordOf(*style, static_cast<StyleProperty>(static_cast<int>(side) + 10)), StyleKeyword::solid);
        }
    }
    EXPECT_FALSE(a.has(StyleProperty::border)); // held only in its components
}

TEST(StyleShorthands, BorderSidesAndPartialBorders)
{
    const StyleDef left = styleOf("border-left: 2px dashed Red");
    EXPECT_EQ(numberOf(left, StyleProperty::borderLeftWidth), integer(2));
    EXPECT_EQ(keywordOf(left, StyleProperty::borderLeftStyle), StyleKeyword::dashed);
    EXPECT_EQ(colourOf(left, StyleProperty::borderLeftColor), Colour(0x0000FF));
    EXPECT_FALSE(left.has(StyleProperty::borderTopWidth));
    EXPECT_FALSE(left.has(StyleProperty::borderWidth));

    const StyleDef bottom = styleOf("border-bottom: none");
    EXPECT_EQ(keywordOf(bottom, StyleProperty::borderBottomStyle), StyleKeyword::none);
    EXPECT_EQ(bottom.size(), 1);

    const StyleDef partial = styleOf("border: #12345 3 thick");
    EXPECT_EQ(numberOf(partial, StyleProperty::borderWidth), integer(3));
    EXPECT_FALSE(partial.has(StyleProperty::borderColor)); // "#" makes it the colour, which is invalid
    EXPECT_TRUE(styleOf("border: nothing useful").isEmpty());
}

TEST(StyleGradients, ExactlyThreeWords)
{
    struct Case {
        const char* value;
        std::optional<GradientDirection> direction;
    };
    const Case cases[] = {
        {"#FFFFFF #E8E8E8 vertical", GradientDirection::vertical},
        {"#FFFFFF #E8E8E8 sideways", GradientDirection::vertical},
        {"#FFFFFF #E8E8E8 horizontal", GradientDirection::horizontal},
        {"#FFFFFF #E8E8E8 diagonal", GradientDirection::forwardDiagonal},
        {"#FFFFFF #E8E8E8 forward-diagonal", GradientDirection::forwardDiagonal},
        {"#FFFFFF #E8E8E8 backward-diagonal", GradientDirection::backwardDiagonal},
        {"#FFFFFF,  #E8E8E8 , horizontal", GradientDirection::horizontal},
        {"#FFFFFF #E8E8E8", std::nullopt},
        {"#FFFFFF #E8E8E8 vertical extra", std::nullopt},
        {"#FFFFFF nocolour vertical", std::nullopt},
    };
    for (const Case& c : cases) {
        const StyleDef style = styleOf((std::string("background-gradient: ") + c.value).c_str());
        const StyleValue* value = style.get(StyleProperty::backgroundGradient);
        if (!c.direction) {
            EXPECT_EQ(value, nullptr) << c.value;
            continue;
        }
        ASSERT_NE(value, nullptr) << c.value;
        const StyleGradient& gradient = std::get<StyleGradient>(*value);
        EXPECT_EQ(gradient.first, Colour(0xFFFFFF)) << c.value;
        EXPECT_EQ(gradient.second, Colour(0xE8E8E8)) << c.value;
        EXPECT_EQ(gradient.direction, *c.direction) << c.value;
    }
    EXPECT_EQ(static_cast<int>(GradientDirection::backwardDiagonal), 3);
}

TEST(StyleKeywords, ByProperty)
{
    struct Case {
        const char* declaration;
        StyleProperty property;
        std::optional<StyleKeyword> keyword;
    };
    const Case cases[] = {
        {"text-align:center", StyleProperty::textAlign, StyleKeyword::center},
        {"text-align:JUSTIFY", StyleProperty::textAlign, StyleKeyword::justify},
        {"text-align:top", StyleProperty::textAlign, std::nullopt},
        {"vertical-align:middle", StyleProperty::verticalAlign, StyleKeyword::middle},
        {"vertical-align-content:text-top", StyleProperty::verticalAlignContent, StyleKeyword::textTop},
        {"vertical-align-line:center", StyleProperty::verticalAlignLine, std::nullopt},
        {"text-decoration:line-through", StyleProperty::textDecoration, StyleKeyword::lineThrough},
        {"font-weight:700", StyleProperty::fontWeight, StyleKeyword::weight700},
        {"font-weight:bolder", StyleProperty::fontWeight, StyleKeyword::bolder},
        {"font-weight:750", StyleProperty::fontWeight, std::nullopt},
        {"border-style:dotted", StyleProperty::borderStyle, StyleKeyword::dotted},
        {"cursor:pointer", StyleProperty::cursor, StyleKeyword::pointer},
        {"cursor:hand", StyleProperty::cursor, std::nullopt},
        {"position:absolute", StyleProperty::position, StyleKeyword::absolute},
        {"visibility:hidden", StyleProperty::visibility, StyleKeyword::hidden},
        {"display:inline-block", StyleProperty::display, StyleKeyword::inlineBlock},
        {"display:hidden", StyleProperty::display, std::nullopt},
        {"overflow-x:auto", StyleProperty::overflowX, StyleKeyword::autoValue},
        {"background-repeat:repeat-y", StyleProperty::backgroundRepeat, StyleKeyword::repeatY},
    };
    for (const Case& c : cases)
        EXPECT_EQ(keywordOf(styleOf(c.declaration), c.property), c.keyword) << c.declaration;
}

TEST(StyleKeywords, OneTable)
{
    EXPECT_EQ(styleKeywordCount, 54);
    EXPECT_EQ(std::u16string(keywordName(StyleKeyword::left)), u"left");
    EXPECT_EQ(std::u16string(keywordName(StyleKeyword::textTop)), u"text-top");
    EXPECT_EQ(std::u16string(keywordName(StyleKeyword::weight100)), u"100");
    EXPECT_EQ(std::u16string(keywordName(StyleKeyword::repeatY)), u"repeat-y");
}

TEST(StyleText, KeptAsWrittenOrSingleWords)
{
    const StyleDef style = styleOf("font-family: Segoe UI, Tahoma; font-style: italic; white-space: nobreak;"
                                   "background-position: left top");
    EXPECT_EQ(std::get<ZString>(*style.get(StyleProperty::fontFamily)), ZString(u"Segoe UI, Tahoma"));
    EXPECT_EQ(std::get<ZString>(*style.get(StyleProperty::fontStyle)), ZString(u"italic"));
    EXPECT_EQ(std::get<ZString>(*style.get(StyleProperty::whiteSpace)), ZString(u"nobreak"));
    EXPECT_EQ(std::get<ZString>(*style.get(StyleProperty::backgroundPosition)), ZString(u"left top"));
    EXPECT_FALSE(styleOf("font-style: oblique").has(StyleProperty::fontStyle));
    EXPECT_FALSE(styleOf("white-space: nowrap").has(StyleProperty::whiteSpace));
}

TEST(StyleDialogMarkup, DeclarationsOfTheCaptureDialog)
{
    const StyleDef band = styleOf("background-gradient: #FFFFFF #E8E8E8 vertical; padding:10px");
    EXPECT_TRUE(band.has(StyleProperty::backgroundGradient));
    EXPECT_EQ(numberOf(band, StyleProperty::paddingTop), integer(10));
    const StyleDef line = styleOf("height:1px; background-color: #FFFFFF;");
    EXPECT_EQ(numberOf(line, StyleProperty::height), integer(1));
    EXPECT_EQ(colourOf(line, StyleProperty::backgroundColor), Colour(0xFFFFFF));
    const StyleDef cell = styleOf("padding-left:15px; width:35px;");
    EXPECT_EQ(numberOf(cell, StyleProperty::paddingLeft), integer(15));
    EXPECT_FALSE(cell.has(StyleProperty::paddingTop));
}
