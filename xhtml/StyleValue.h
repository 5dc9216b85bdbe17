#pragma once
// The values a style property holds: numbers (lengths), colours, keywords, text and
// gradients.

#include "base/ZString.h"
#include "xhtml/ColourTable.h"
#include "xhtml/StyleKeyword.h"

#include <cstdint>
#include <optional>
#include <variant>

namespace xhtml {

// An integer or a real; lengths count pixels unless flagged as a percentage of the
// containing box.
struct StyleNumber {
    bool isReal = false;
    bool isPercent = false;
    int32_t integer = 0;
    double real = 0;

    double value() const { return isReal ? real : integer; }
    // Stored as an integer when it has no fractional part and fits in 32 bits.
    static StyleNumber of(double value, bool isPercent);
    friend bool operator==(const StyleNumber& a, const StyleNumber& b)
    {
        return a.isReal == b.isReal && a.isPercent == b.isPercent && a.value() == b.value();
    }
};

// The values are stored: horizontal 0, vertical 1, forward diagonal 2, backward diagonal 3.
enum class GradientDirection : int32_t { horizontal = 0, vertical = 1, forwardDiagonal = 2, backwardDiagonal = 3 };

struct StyleGradient {
    Colour first = 0;
    Colour second = 0;
    GradientDirection direction = GradientDirection::vertical;
    friend bool operator==(const StyleGradient& a, const StyleGradient& b)
    {
        return a.first == b.first && a.second == b.second && a.direction == b.direction;
    }
};

// One parsed value. The alternative held is the value's kind.
using StyleValue = std::variant<StyleNumber, Colour, StyleKeyword, ZString, StyleGradient>;

// length := "0x" hex-digits [...] ["%"] | number [unit] ["%"]    (after trimming)
// A "0x" value is an integer read in automatic base; any other is read as a decimal number
// from its start, the unit ignored ("10px" is 10). A final "%" flags a percentage. A value
// that does not begin with a number reads as 0; only an empty (or blank) text is no length.
std::optional<StyleNumber> parseLength(const ZString& text);

// gradient := colour colour direction    (exactly three words)
// Direction: "horizontal"; "forward-diagonal" or "diagonal"; "backward-diagonal"; any other
// word is vertical, so "vertical" itself never needs comparing.
std::optional<StyleGradient> parseGradient(const ZString& text);
GradientDirection parseGradientDirection(const ZString& word);

} // namespace xhtml
