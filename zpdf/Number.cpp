#include "zpdf/Number.h"

#include "zpdf/PdfException.h"
#include "zpdf/Writer.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace zpdf {

namespace {

// Largest magnitude that is written as an integer; beyond it doubles lose integral steps.
constexpr double maxExactInteger = 9007199254740992.0; // 2^53

bool isIntegral(double value) { return std::fabs(value) <= maxExactInteger && std::trunc(value) == value; }

// Below 2^50 a double's ulp is at most 1/8, so when value * 10^6 rounds to an integer N the
// exact product lies within 1/16 of N, and N is what "%f" prints in six decimals.
constexpr double maxExactScaled = 1125899906842624.0; // 2^50

// The common case of few decimals without the general conversion; 0 when it does not apply.
std::size_t formatScaled(double value, char* buffer)
{
    const double scaled = value * 1e6;
    if (!(std::fabs(scaled) < maxExactScaled) || std::trunc(scaled) != scaled)
        return 0;
    auto units = static_cast<std::int64_t>(scaled);
    char* at = buffer;
    if (units < 0 || (units == 0 && std::signbit(value)))
        *at++ = '-';
    if (units < 0)
        units = -units;
    at = std::to_chars(at, buffer + 32, units / 1000000).ptr;
    *at++ = '.';
    std::int64_t fraction = units % 1000000;
    for (int i = 5; i >= 0; --i, fraction /= 10)
        at[i] = static_cast<char>('0' + fraction % 10);
    return at + 6 - buffer;
}

// "%f" in the C locale, then trailing zeros removed down to one digit after the point.
// Neither path consults the locale, so no process-wide locale switch is needed.
std::size_t formatTrimmed(double value, char* buffer, std::size_t size)
{
    if (!std::isfinite(value))
        throw PdfException("Number: value is not finite");
    char* end = buffer + formatScaled(value, buffer);
    if (end == buffer) {
        const auto result = std::to_chars(buffer, buffer + size, value, std::chars_format::fixed, 6);
        if (result.ec != std::errc())
            return 0;
        end = result.ptr;
    }
    const char* point = static_cast<const char*>(std::memchr(buffer, '.', end - buffer));
    if (point)
        while (end - point > 2 && end[-1] == '0')
            --end;
    return end - buffer;
}

// A caller-supplied printf format; the current locale's decimal separator becomes '.', the
// output of the same format in the C locale.
std::string formatWith(const std::string& format, double value)
{
    char buffer[512];
    const int length = std::snprintf(buffer, sizeof buffer, format.c_str(), value);
    if (length < 0)
        throw PdfException("Number: invalid format \"" + format + "\"");
    std::string text(buffer, std::min<std::size_t>(length, sizeof buffer - 1));
    const char* point = std::localeconv()->decimal_point;
    const std::size_t pointLength = point ? std::strlen(point) : 0;
    if (pointLength > 0 && std::strcmp(point, ".") != 0) {
        const std::size_t at = text.find(point);
        if (at != std::string::npos)
            text.replace(at, pointLength, ".");
    }
    return text;
}

} // namespace

Ptr<Number> Number::parse(std::string_view text)
{
    // number := sign? (digits ('.' digits?)? | '.' digits)
    std::string_view body = text;
    if (!body.empty() && body[0] == '+')
        body.remove_prefix(1); // from_chars takes no plus sign
    const std::string_view unsigned_ = !body.empty() && body[0] == '-' ? body.substr(1) : body;
    std::size_t digits = 0;
    std::size_t points = 0;
    std::size_t others = 0;
    for (const char c : unsigned_) {
        if (c >= '0' && c <= '9')
            ++digits;
        else if (c == '.')
            ++points;
        else
            ++others;
    }
    double value = 0;
    if (digits == 0 || points > 1 || others > 0
        || std::from_chars(body.data(), body.data() + body.size(), value).ec != std::errc())
        throw NumberFormatException("Invalid number: \"" + std::string(text) + "\"");
    if (points == 0 && std::fabs(value) <= maxExactInteger)
        return make<Number>(static_cast<std::int64_t>(value));
    return make<Number>(value);
}

std::int32_t Number::intValue() const
{
    if (std::isnan(value_))
        return 0;
    if (value_ >= 2147483647.0)
        return 2147483647;
    if (value_ <= -2147483648.0)
        return -2147483647 - 1;
    return static_cast<std::int32_t>(value_);
}

void Number::write(Writer& out) const
{
    if (format_) {
        out.write(formatWith(*format_, value_));
    } else if (kind_ == integerKind && isIntegral(value_)) {
        out.writeInt(static_cast<std::int64_t>(value_));
    } else {
        char buffer[400];
        out.write(std::string_view(buffer, formatTrimmed(value_, buffer, sizeof buffer)));
    }
}

Ptr<Object> Number::clone() const
{
    Ptr<Number> copy = format_ ? make<Number>(value_, *format_) : make<Number>(value_);
    copy->kind_ = kind_;
    return copy;
}

bool Number::equalsImpl(const Object& other, bool) const
{
    return other.type() == Type::Number && static_cast<const Number&>(other).value_ == value_;
}

} // namespace zpdf
