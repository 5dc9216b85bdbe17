// Colours by name (the table, without regard to case) and by the "#" forms.

#include "xhtml/ColourTable.h"

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <set>
#include <string>

using xhtml::Colour;
using xhtml::parseColour;

namespace {

ZString z(const char* utf8)
{
    return ZString::fromUtf8(utf8);
}

std::string swapCase(const char16_t* name, bool upper)
{
    std::string out;
    for (; *name; ++name)
        out += static_cast<char>(upper ? std::toupper(*name) : std::tolower(*name));
    return out;
}

} // namespace

TEST(ColourNames, EveryRowMatchesInAnyCase)
{
    const xhtml::NamedColour* table = xhtml::namedColours();
    for (int i = 0; i < xhtml::namedColourCount; ++i) {
        for (bool upper : {false, true}) {
            const std::string name = swapCase(table[i].name, upper);
            EXPECT_EQ(parseColour(z(name.c_str())), std::optional<Colour>(table[i].value)) << name;
        }
    }
}

TEST(ColourNames, TableShape)
{
    const xhtml::NamedColour* table = xhtml::namedColours();
    std::set<std::string> names;
    for (int i = 0; i < xhtml::namedColourCount; ++i)
        names.insert(swapCase(table[i].name, false));
    EXPECT_EQ(names.size(), 141u);
    EXPECT_EQ(std::u16string(table[140].name), u"Transparent");
    EXPECT_EQ(table[140].value, 0xFF000000u);
}

TEST(ColourNames, ByteOrderAndDeliberateDepartures)
{
    struct Case {
        const char* text;
        Colour value;
    };
    const Case cases[] = {
        {"Red", 0x0000FF},         {"red", 0x0000FF},          {"WHITE", 0xFFFFFF},
        {"Blue", 0xFF0000},        {"Lime", 0x00FF00},         {"transparent", 0xFF000000},
        {"BlanchedAlmond", 0xCDFFFF}, // #FFFFCD, not the common #FFEBCD
        {"Gray", 0x7F7F7F},           // not #808080
        {"YellowGreen", 0x32CD8B},    // #8BCD32, not #9ACD32
        {"Lawngreen", 0x00FC7C},      {"LAWNGREEN", 0x00FC7C},
        {"Aqua", 0xFFFF00},        {"Cyan", 0xFFFF00},         {"LightGrey", 0xD3D3D3},
    };
    for (const Case& c : cases)
        EXPECT_EQ(parseColour(z(c.text)), std::optional<Colour>(c.value)) << c.text;
    EXPECT_EQ(parseColour(z("Grey")), std::nullopt); // only LightGrey has that spelling
    EXPECT_EQ(parseColour(z("LightGray")), std::nullopt);
}

TEST(ColourHashForms, ByLength)
{
    struct Case {
        const char* text;
        std::optional<Colour> value;
    };
    const Case cases[] = {
        {"#FF0000", 0x0000FF},   {"#ff0000", 0x0000FF},   {"#123456", 0x563412},
        {"#ff000080", 0x800000FF}, {"#12345678", 0x78563412},
        {"#f00", 0x0000FF},      {"#F80", 0x0088FF},      {"#F808", 0x880088FF},
        {"#12345", std::nullopt}, {"#1234567", std::nullopt}, {"#12", std::nullopt}, {"#", std::nullopt},
        {"#GG0000", std::nullopt}, {"#12 456", std::nullopt}, {"123456", std::nullopt},
        {"", std::nullopt},      {"red ", std::nullopt},  {"rgb(1,2,3)", std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(parseColour(z(c.text)), c.value) << c.text;
}
