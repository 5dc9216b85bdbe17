#include "xhtml/NumberReader.h"

#include "xhtml/MarkupText.h"

#include <charconv>
#include <limits>
#include <string>

namespace xhtml {

namespace {

int digitValue(ZChar unit)
{
    const int hex = hexDigitValue(unit);
    if (hex >= 0)
        return hex;
    if (unit >= 'g' && unit <= 'z')
        return unit - 'a' + 10;
    if (unit >= 'G' && unit <= 'Z')
        return unit - 'A' + 10;
    return -1;
}

bool isDigitOfBase(ZChar unit, int base)
{
    const int value = digitValue(unit);
    return value >= 0 && value < base;
}

bool hasHexPrefix(const ZChar* p)
{
    return p[0] == '0' && (p[1] == 'x' || p[1] == 'X') && hexDigitValue(p[2]) >= 0;
}

const ZChar* skipDigits(const ZChar* p)
{
    while (isDigit(*p))
        ++p;
    return p;
}

// Rough power of ten of a decimal number's leading digit: enough to tell an overflow
// (positive) from an underflow (zero or negative).
long long decimalExponent(const std::string& number)
{
    const size_t e = number.find_first_of("eE");
    const std::string mantissa = number.substr(0, e);
    long long exponent = 0;
    if (e != std::string::npos) {
        const char* p = number.c_str() + e + 1;
        const bool negative = *p == '-';
        if (*p == '-' || *p == '+')
            ++p;
        for (; *p; ++p)
            exponent = exponent > 100000 ? exponent : exponent * 10 + (*p - '0');
        exponent = negative ? -exponent : exponent;
    }
    const size_t first = mantissa.find_first_of("123456789");
    if (first == std::string::npos)
        return 0;
    const size_t point = mantissa.find('.');
    const size_t integerDigits = point == std::string::npos ? mantissa.size() : point;
    const long long position = first < integerDigits ? static_cast<long long>(integerDigits - first)
                                                     : -static_cast<long long>(first - integerDigits - 1);
    return position + exponent;
}

} // namespace

int32_t readLong(const ZChar* text, const ZChar** end, int base)
{
    const ZChar* p = text;
    while (isSpace(*p))
        ++p;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        ++p;
    if ((base == 0 || base == 16) && hasHexPrefix(p)) {
        p += 2;
        base = 16;
    } else if (base == 0) {
        base = *p == '0' ? 8 : 10;
    }
    if (base < 2 || base > 36 || !isDigitOfBase(*p, base)) {
        *end = text;
        return 0;
    }
    // Kept below 2^32 so that it cannot overflow; anything larger is clamped anyway.
    const int64_t limit = int64_t(1) << 32;
    int64_t value = 0;
    for (; isDigitOfBase(*p, base); ++p) {
        if (value < limit)
            value = value * base + digitValue(*p);
    }
    *end = p;
    if (negative)
        return value > int64_t(1) << 31 ? std::numeric_limits<int32_t>::min() : static_cast<int32_t>(-value);
    return value > std::numeric_limits<int32_t>::max() ? std::numeric_limits<int32_t>::max()
                                                       : static_cast<int32_t>(value);
}

double readReal(const ZChar* text, const ZChar** end)
{
    const ZChar* p = text;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        ++p;
    const ZChar* mantissa = p;
    p = skipDigits(p);
    bool digits = p != mantissa;
    if (*p == '.' && (digits || isDigit(p[1]))) {
        p = skipDigits(p + 1);
        digits = true;
    }
    if (!digits) {
        *end = text;
        return 0;
    }
    if ((*p == 'e' || *p == 'E')) {
        const ZChar* exponent = p + 1;
        if (*exponent == '-' || *exponent == '+')
            ++exponent;
        if (isDigit(*exponent))
            p = skipDigits(exponent);
    }
    *end = p;
    // Every unit of [mantissa, p) is ASCII, so the narrow copy is exact.
    std::string ascii(mantissa, p);
    double value = 0;
    const auto result = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    if (result.ec == std::errc::result_out_of_range)
        value = decimalExponent(ascii) > 0 ? std::numeric_limits<double>::max() : 0.0;
    return negative ? -value : value;
}

} // namespace xhtml
