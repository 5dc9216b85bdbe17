#include "xhtml/ColourTable.h"

#include "xhtml/MarkupText.h"

namespace xhtml {

namespace {

constexpr NamedColour colourTable[namedColourCount] = {
    {u"AliceBlue", rgb(0xF0F8FF)}, {u"AntiqueWhite", rgb(0xFAEBD7)}, {u"Aqua", rgb(0x00FFFF)},
    {u"Aquamarine", rgb(0x7FFFD4)}, {u"Azure", rgb(0xF0FFFF)}, {u"Beige", rgb(0xF5F5DC)},
    {u"Bisque", rgb(0xFFE4C4)}, {u"Black", rgb(0x000000)}, {u"BlanchedAlmond", rgb(0xFFFFCD)},
    {u"Blue", rgb(0x0000FF)}, {u"BlueViolet", rgb(0x8A2BE2)}, {u"Brown", rgb(0xA52A2A)},
    {u"Burlywood", rgb(0xDEB887)}, {u"CadetBlue", rgb(0x5F9EA0)}, {u"Chartreuse", rgb(0x7FFF00)},
    {u"Chocolate", rgb(0xD2691E)}, {u"Coral", rgb(0xFF7F50)}, {u"CornflowerBlue", rgb(0x6495ED)},
    {u"Cornsilk", rgb(0xFFF8DC)}, {u"Crimson", rgb(0xDC143C)}, {u"Cyan", rgb(0x00FFFF)},
    {u"DarkBlue", rgb(0x00008B)}, {u"DarkCyan", rgb(0x008B8B)}, {u"DarkGoldenRod", rgb(0xB8860B)},
    {u"DarkGray", rgb(0xA9A9A9)}, {u"DarkGreen", rgb(0x006400)}, {u"DarkKhaki", rgb(0xBDB76B)},
    {u"DarkMagenta", rgb(0x8B008B)}, {u"DarkOliveGreen", rgb(0x556B2F)},
    {u"DarkOrange", rgb(0xFF8C00)}, {u"DarkOrchid", rgb(0x9932CC)}, {u"DarkRed", rgb(0x8B0000)},
    {u"DarkSalmon", rgb(0xE9967A)}, {u"DarkSeaGreen", rgb(0x8FBC8F)},
    {u"DarkSlateBlue", rgb(0x483D8B)}, {u"DarkSlateGray", rgb(0x2F4F4F)},
    {u"DarkTurquoise", rgb(0x00CED1)}, {u"DarkViolet", rgb(0x9400D3)}, {u"DeepPink", rgb(0xFF1493)},
    {u"DeepSkyBlue", rgb(0x00BFFF)}, {u"DimGray", rgb(0x696969)}, {u"DodgerBlue", rgb(0x1E90FF)},
    {u"FireBrick", rgb(0xB22222)}, {u"FloralWhite", rgb(0xFFFAF0)}, {u"ForestGreen", rgb(0x228B22)},
    {u"Fuchsia", rgb(0xFF00FF)}, {u"Gainsboro", rgb(0xDCDCDC)}, {u"GhostWhite", rgb(0xF8F8FF)},
    {u"Gold", rgb(0xFFD700)}, {u"GoldenRod", rgb(0xDAA520)}, {u"Gray", rgb(0x7F7F7F)},
    {u"Green", rgb(0x008000)}, {u"GreenYellow", rgb(0xADFF2F)}, {u"HoneyDew", rgb(0xF0FFF0)},
    {u"HotPink", rgb(0xFF69B4)}, {u"IndianRed", rgb(0xCD5C5C)}, {u"Indigo", rgb(0x4B0082)},
    {u"Ivory", rgb(0xFFFFF0)}, {u"Khaki", rgb(0xF0E68C)}, {u"Lavender", rgb(0xE6E6FA)},
    {u"LavenderBlush", rgb(0xFFF0F5)}, {u"Lawngreen", rgb(0x7CFC00)},
    {u"LemonChiffon", rgb(0xFFFACD)}, {u"LightBlue", rgb(0xADD8E6)}, {u"LightCoral", rgb(0xF08080)},
    {u"LightCyan", rgb(0xE0FFFF)}, {u"LightGoldenRodYellow", rgb(0xFAFAD2)},
    {u"LightGreen", rgb(0x90EE90)}, {u"LightGrey", rgb(0xD3D3D3)}, {u"LightPink", rgb(0xFFB6C1)},
    {u"LightSalmon", rgb(0xFFA07A)}, {u"LightSeaGreen", rgb(0x20B2AA)},
    {u"LightSkyBlue", rgb(0x87CEFA)}, {u"LightSlateGray", rgb(0x778899)},
    {u"LightSteelBlue", rgb(0xB0C4DE)}, {u"LightYellow", rgb(0xFFFFE0)}, {u"Lime", rgb(0x00FF00)},
    {u"LimeGreen", rgb(0x32CD32)}, {u"Linen", rgb(0xFAF0E6)}, {u"Magenta", rgb(0xFF00FF)},
    {u"Maroon", rgb(0x800000)}, {u"MediumAquamarine", rgb(0x66CDAA)},
    {u"MediumBlue", rgb(0x0000CD)}, {u"MediumOrchid", rgb(0xBA55D3)},
    {u"MediumPurple", rgb(0x9370DB)}, {u"MediumSeaGreen", rgb(0x3CB371)},
    {u"MediumSlateBlue", rgb(0x7B68EE)}, {u"MediumSpringGreen", rgb(0x00FA9A)},
    {u"MediumTurquoise", rgb(0x48D1CC)}, {u"MediumVioletRed", rgb(0xC71585)},
    {u"MidnightBlue", rgb(0x191970)}, {u"MintCream", rgb(0xF5FFFA)}, {u"MistyRose", rgb(0xFFE4E1)},
    {u"Moccasin", rgb(0xFFE4B5)}, {u"NavajoWhite", rgb(0xFFDEAD)}, {u"Navy", rgb(0x000080)},
    {u"OldLace", rgb(0xFDF5E6)}, {u"Olive", rgb(0x808000)}, {u"OliveDrab", rgb(0x6B8E23)},
    {u"Orange", rgb(0xFFA500)}, {u"OrangeRed", rgb(0xFF4500)}, {u"Orchid", rgb(0xDA70D6)},
    {u"PaleGoldenRod", rgb(0xEEE8AA)}, {u"PaleGreen", rgb(0x98FB98)},
    {u"PaleTurquoise", rgb(0xAFEEEE)}, {u"PaleVioletRed", rgb(0xDB7093)},
    {u"PapayaWhip", rgb(0xFFEFD5)}, {u"PeachPuff", rgb(0xFFDAB9)}, {u"Peru", rgb(0xCD853F)},
    {u"Pink", rgb(0xFFC0CB)}, {u"Plum", rgb(0xDDA0DD)}, {u"PowderBlue", rgb(0xB0E0E6)},
    {u"Purple", rgb(0x800080)}, {u"Red", rgb(0xFF0000)}, {u"RosyBrown", rgb(0xBC8F8F)},
    {u"RoyalBlue", rgb(0x4169E1)}, {u"SaddleBrown", rgb(0x8B4513)}, {u"Salmon", rgb(0xFA8072)},
    {u"SandyBrown", rgb(0xF4A460)}, {u"SeaGreen", rgb(0x2E8B57)}, {u"SeaShell", rgb(0xFFF5EE)},
    {u"Sienna", rgb(0xA0522D)}, {u"Silver", rgb(0xC0C0C0)}, {u"SkyBlue", rgb(0x87CEEB)},
    {u"SlateBlue", rgb(0x6A5ACD)}, {u"SlateGray", rgb(0x708090)}, {u"Snow", rgb(0xFFFAFA)},
    {u"SpringGreen", rgb(0x00FF7F)}, {u"SteelBlue", rgb(0x4682B4)}, {u"Tan", rgb(0xD2B48C)},
    {u"Teal", rgb(0x008080)}, {u"Thistle", rgb(0xD8BFD8)}, {u"Tomato", rgb(0xFF6347)},
    {u"Turquoise", rgb(0x40E0D0)}, {u"Violet", rgb(0xEE82EE)}, {u"Wheat", rgb(0xF5DEB3)},
    {u"White", rgb(0xFFFFFF)}, {u"WhiteSmoke", rgb(0xF5F5F5)}, {u"Yellow", rgb(0xFFFF00)},
    {u"YellowGreen", rgb(0x8BCD32)}, {u"Transparent", transparentColour},
};

const NamedColour* findColourName(const ZString& text)
{
    for (const NamedColour& colour : colourTable) {
        if (equalsNoCase(text, colour.name))
            return &colour;
    }
    return nullptr;
}

// Reads `count` components of `digitsPerComponent` hexadecimal digits each from `digits`
// into the bytes of a colour, lowest byte first.
std::optional<Colour> readHexComponents(const ZChar* digits, int count, int digitsPerComponent)
{
    Colour colour = 0;
    for (int component = 0; component < count; ++component) {
        int byte = 0;
        for (int i = 0; i < digitsPerComponent; ++i) {
            const int digit = hexDigitValue(digits[component * digitsPerComponent + i]);
            if (digit < 0)
                return std::nullopt;
            byte = byte * 16 + digit;
        }
        if (digitsPerComponent == 1)
            byte *= 17; // "#F80" is "#FF8800"
        colour |= static_cast<Colour>(byte) << (8 * component);
    }
    return colour;
}

} // namespace

const NamedColour* namedColours()
{
    return colourTable;
}

bool isColourName(const ZString& text)
{
    return findColourName(text) != nullptr;
}

std::optional<Colour> parseColour(const ZString& text)
{
    if (const NamedColour* named = findColourName(text))
        return named->value;
    if (text.isEmpty() || text.c_str()[0] != '#')
        return std::nullopt;
    const ZChar* digits = text.c_str() + 1;
    switch (text.length()) {
    case 7:
        return readHexComponents(digits, 3, 2);
    case 9:
        return readHexComponents(digits, 4, 2);
    case 4:
        return readHexComponents(digits, 3, 1);
    case 5:
        return readHexComponents(digits, 4, 1);
    default:
        return std::nullopt;
    }
}

} // namespace xhtml
