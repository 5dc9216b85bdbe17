// Colours by name (the table, without regard to case) and by the "#" forms, in byte order
// 0xAABBGGRR.

#include "xhtml/ColourTable.h"

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <set>

using xhtml::Colour;
using xhtml::parseColour;

TEST(Colours, EveryNamedRowOnceAndInUpperCase)
{
    const xhtml::NamedColour* table = xhtml::namedColours();
    std::set<std::string> names;
    for (int i = 0; i < xhtml::namedColourCount; ++i) {
        std::string lower, upper;
        for (const char16_t* c = table[i].name; *c; ++c) {
            lower += static_cast<char>(std::tolower(*c));
            upper += static_cast<char>(std::toupper(*c));
        }
        names.insert(lower);
        EXPECT_EQ(parseColour(ZString::fromUtf8(upper)), table[i].value) << upper; // no earlier row shadows it
    }
    EXPECT_EQ(names.size(), 141u);
}

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
        {"#F80", 0x0088FF},           {"#F808", 0x880088FF},
        {"#12345", std::nullopt}, {"#1234567", std::nullopt}, {"#", std::nullopt}, {"#GG0000", std::nullopt},
        {"#12 456", std::nullopt}, {"123456", std::nullopt}, {"", std::nullopt}, {"red ", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseColour(ZString::fromUtf8(c.text)), c.value) << c.text;
}
