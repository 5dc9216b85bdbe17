#include "xhtml/StyleValue.h"

#include "xhtml/MarkupText.h"
#include "xhtml/NumberReader.h"

#include <cmath>
#include <limits>

namespace xhtml {

StyleNumber StyleNumber::of(double value, bool isPercent)
{
    StyleNumber number;
    number.isPercent = isPercent;
    const bool fitsInteger = value >= std::numeric_limits<int32_t>::min()
                             && value <= std::numeric_limits<int32_t>::max() && std::floor(value) == value;
    if (fitsInteger) {
        number.integer = static_cast<int32_t>(value);
    } else {
        number.isReal = true;
        number.real = value;
    }
    return number;
}

std::optional<StyleNumber> parseLength(const ZString& text)
{
    const ZString value = text.trim();
    if (value.isEmpty())
        return std::nullopt;
    const ZChar* units = value.c_str();
    const bool isPercent = units[value.length() - 1] == '%';
    const ZChar* end = nullptr;
    if (units[0] == '0' && units[1] == 'x')
        return StyleNumber::of(readLong(units, &end, 0), isPercent);
    return StyleNumber::of(readReal(units, &end), isPercent);
}

GradientDirection parseGradientDirection(const ZString& word)
{
    if (equalsNoCase(word, u"horizontal"))
        return GradientDirection::horizontal;
    if (equalsNoCase(word, u"forward-diagonal") || equalsNoCase(word, u"diagonal"))
        return GradientDirection::forwardDiagonal;
    if (equalsNoCase(word, u"backward-diagonal"))
        return GradientDirection::backwardDiagonal;
    return GradientDirection::vertical;
}

std::optional<StyleGradient> parseGradient(const ZString& text)
{
    const std::vector<ZString> words = splitWords(text);
    if (words.size() != 3)
        return std::nullopt;
    const std::optional<Colour> first = parseColour(words[0]);
    const std::optional<Colour> second = parseColour(words[1]);
    if (!first || !second)
        return std::nullopt;
    return StyleGradient{*first, *second, parseGradientDirection(words[2])};
}

} // namespace xhtml
