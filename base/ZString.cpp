#include "ZString.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void appendCodePoint(ZString::Storage& out, char32_t cp)
{
    if (cp < 0x10000) {
        out.push_back(static_cast<ZChar>(cp));
    } else {
        cp -= 0x10000;
        out.push_back(static_cast<ZChar>(0xD800 + (cp >> 10)));
        out.push_back(static_cast<ZChar>(0xDC00 + (cp & 0x3FF)));
    }
}

void appendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

// Decodes one UTF-8 sequence at `pos`; on malformed input yields U+FFFD and consumes one byte.
char32_t decodeUtf8(std::string_view s, size_t& pos)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char lead = byte(pos);
    int extra;
    char32_t cp;
    char32_t minimum;
    if (lead < 0x80) {
        ++pos;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        extra = 1, cp = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2, cp = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3, cp = lead & 0x07, minimum = 0x10000;
    } else {
        ++pos;
        return kReplacement;
    }
    if (pos + extra >= s.size()) {
        ++pos;
        return kReplacement;
    }
    for (int i = 1; i <= extra; ++i) {
        if ((byte(pos + i) & 0xC0) != 0x80) {
            ++pos;
            return kReplacement;
        }
        cp = (cp << 6) | (byte(pos + i) & 0x3F);
    }
    if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++pos;
        return kReplacement;
    }
    pos += extra + 1;
    return cp;
}

bool isHighSurrogate(ZChar u) { return u >= 0xD800 && u <= 0xDBFF; }
bool isLowSurrogate(ZChar u) { return u >= 0xDC00 && u <= 0xDFFF; }

} // namespace

ZString::ZString(const ZChar* text) : units_(text ? text : ZString::Storage()) {}

ZString::ZString(const ZChar* text, int length) : units_(text, static_cast<size_t>(std::max(length, 0))) {}

ZString::ZString(int count, ZChar unit) : units_(static_cast<size_t>(std::max(count, 0)), unit) {}

#ifdef _WIN32
ZString::ZString(const char16_t* text) : ZString(reinterpret_cast<const ZChar*>(text)) {}
#endif

ZString ZString::fromUtf8(std::string_view utf8)
{
    Storage out;
    out.reserve(utf8.size());
    for (size_t pos = 0; pos < utf8.size();)
        appendCodePoint(out, decodeUtf8(utf8, pos));
    return ZString(std::move(out));
}

std::string ZString::toUtf8() const
{
    std::string out;
    out.reserve(units_.size());
    for (size_t i = 0; i < units_.size(); ++i) {
        const ZChar u = units_[i];
        if (isHighSurrogate(u) && i + 1 < units_.size() && isLowSurrogate(units_[i + 1])) {
            appendUtf8(out, 0x10000 + ((char32_t(u) - 0xD800) << 10) + (char32_t(units_[i + 1]) - 0xDC00));
            ++i;
        } else if (isHighSurrogate(u) || isLowSurrogate(u)) {
            appendUtf8(out, kReplacement);
        } else {
            appendUtf8(out, u);
        }
    }
    return out;
}

ZChar ZString::getAt(int index) const
{
    if (index < 0 || index >= length())
        throw std::out_of_range("ZString::getAt(int): Index out of range");
    return units_[static_cast<size_t>(index)];
}

ZString& ZString::append(const ZString& other)
{
    units_ += other.units_;
    return *this;
}

ZString& ZString::append(const ZChar* text, int length)
{
    if (length > 0)
        units_.append(text, static_cast<size_t>(length));
    return *this;
}

ZString& ZString::append(ZChar unit)
{
    units_.push_back(unit);
    return *this;
}

int ZString::compare(const ZString& other) const
{
    const int r = units_.compare(other.units_);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

int ZString::compareNoCase(const ZString& other) const
{
    const size_t n = std::min(units_.size(), other.units_.size());
    for (size_t i = 0; i < n; ++i) {
        const ZChar a = toLower(units_[i]);
        const ZChar b = toLower(other.units_[i]);
        if (a != b)
            return a < b ? -1 : 1;
    }
    if (units_.size() == other.units_.size())
        return 0;
    return units_.size() < other.units_.size() ? -1 : 1;
}

bool ZString::startsWith(const ZString& prefix) const
{
    return units_.compare(0, prefix.units_.size(), prefix.units_) == 0 && prefix.units_.size() <= units_.size();
}

bool ZString::endsWith(const ZString& suffix) const
{
    return suffix.units_.size() <= units_.size()
        && units_.compare(units_.size() - suffix.units_.size(), suffix.units_.size(), suffix.units_) == 0;
}

int ZString::find(const ZString& what, int from) const
{
    if (from < 0 || from > length())
        return npos;
    const size_t at = units_.find(what.units_, static_cast<size_t>(from));
    return at == Storage::npos ? npos : static_cast<int>(at);
}

int ZString::find(ZChar unit, int from) const
{
    return find(ZString(1, unit), from);
}

int ZString::findLast(const ZString& what, int from) const
{
    const size_t start = from < 0 ? Storage::npos : static_cast<size_t>(from);
    const size_t at = units_.rfind(what.units_, start);
    return at == Storage::npos ? npos : static_cast<int>(at);
}

int ZString::findLast(ZChar unit, int from) const
{
    return findLast(ZString(1, unit), from);
}

ZString ZString::substring(int start, int count) const
{
    if (start < 0)
        start = 0;
    if (start >= length())
        return ZString();
    const int available = length() - start;
    if (count < 0 || count > available)
        count = available;
    return ZString(units_.substr(static_cast<size_t>(start), static_cast<size_t>(count)));
}

bool ZString::isWhiteSpace(ZChar unit)
{
    return unit == ' ' || (unit >= 0x09 && unit <= 0x0D);
}

ZString ZString::trim() const
{
    int first = 0;
    int last = length();
    while (first < last && isWhiteSpace(units_[first]))
        ++first;
    while (last > first && isWhiteSpace(units_[last - 1]))
        --last;
    return substring(first, last - first);
}

ZChar ZString::toLower(ZChar u)
{
    const unsigned c = u;
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? ZChar(c + 32) : u;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
        return ZChar(c + 32);
    if (c == 0x130)
        return ZChar('i');
    if (c == 0x178)
        return ZChar(0xFF);
    // Latin Extended-A pairs: even upper/odd lower, except the two odd-upper runs.
    if ((c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177))
        return ZChar(c | 1);
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E))
        return (c & 1) ? ZChar(c + 1) : u;
    if ((c >= 0x391 && c <= 0x3A9 && c != 0x3A2) || (c >= 0x410 && c <= 0x42F))
        return ZChar(c + 32);
    if (c == 0x386)
        return ZChar(0x3AC);
    if (c >= 0x388 && c <= 0x38A)
        return ZChar(c + 37);
    if (c == 0x38C)
        return ZChar(0x3CC);
    if (c == 0x38E || c == 0x38F)
        return ZChar(c + 63);
    if (c >= 0x400 && c <= 0x40F)
        return ZChar(c + 80);
    return u;
}

ZString ZString::toLower() const
{
    Storage out(units_);
    for (ZChar& u : out)
        u = toLower(u);
    return ZString(std::move(out));
}

ZString ZString::fromInt(long long value)
{
    return fromUtf8(std::to_string(value));
}

ZString ZString::fromUInt(unsigned long long value)
{
    return fromUtf8(std::to_string(value));
}

bool ZString::toInt(long long& value) const
{
    const ZString text = trim();
    int i = 0;
    bool negative = false;
    if (i < text.length() && (text.units_[i] == '-' || text.units_[i] == '+'))
        negative = text.units_[i++] == '-';
    if (i == text.length())
        return false;
    // Accumulate as a negative number so that LLONG_MIN parses too.
    long long result = 0;
    for (; i < text.length(); ++i) {
        const ZChar u = text.units_[i];
        if (u < '0' || u > '9')
            return false;
        const int digit = u - '0';
        if (result < (LLONG_MIN + digit) / 10)
            return false;
        result = result * 10 - digit;
    }
    if (!negative && result == LLONG_MIN)
        return false;
    value = negative ? result : -result;
    return true;
}

bool ZString::toInt(int& value) const
{
    long long wide = 0;
    if (!toInt(wide) || wide < INT_MIN || wide > INT_MAX)
        return false;
    value = static_cast<int>(wide);
    return true;
}

int ZString::toIntOr(int fallback) const
{
    int value = fallback;
    return toInt(value) ? value : fallback;
}

namespace {

// One conversion of a format string: "%[flags][width][.precision][length]conversion".
struct Conversion {
    std::string flags;
    int width = -1;       // -1: none
    int precision = -1;   // -1: none
    std::string length;   // "", "h", "hh", "l", "ll", "z", "j", "t", "L"
    char conversion = 0;
};

int readNumber(const ZChar*& p, va_list& args)
{
    if (*p == '*') {
        ++p;
        return va_arg(args, int);
    }
    int n = 0;
    while (*p >= '0' && *p <= '9')
        n = n * 10 + (*p++ - '0');
    return n;
}

Conversion parseConversion(const ZChar*& p, va_list& args)
{
    Conversion c;
    while (*p && std::strchr("-+ #0", static_cast<char>(*p)) && *p < 0x80)
        c.flags.push_back(static_cast<char>(*p++));
    if ((*p >= '0' && *p <= '9') || *p == '*') {
        c.width = readNumber(p, args);
        if (c.width < 0) {
            c.flags.push_back('-');
            c.width = -c.width;
        }
    }
    if (*p == '.') {
        ++p;
        c.precision = readNumber(p, args);
        if (c.precision < 0)
            c.precision = -1;
    }
    if (p[0] == 'I' && p[1] == '6' && p[2] == '4') {
        c.length = "ll";
        p += 3;
    } else {
        while (*p && std::strchr("hlzjtL", static_cast<char>(*p)) && *p < 0x80)
            c.length.push_back(static_cast<char>(*p++));
    }
    c.conversion = *p < 0x80 ? static_cast<char>(*p) : '?';
    if (*p)
        ++p;
    return c;
}

long long takeSigned(const std::string& length, va_list& args)
{
    if (length == "l")
        return va_arg(args, long);
    if (length == "ll")
        return va_arg(args, long long);
    if (length == "z")
        return static_cast<long long>(va_arg(args, size_t));
    if (length == "j")
        return va_arg(args, intmax_t);
    if (length == "t")
        return va_arg(args, ptrdiff_t);
    const int v = va_arg(args, int);
    if (length == "h")
        return static_cast<short>(v);
    if (length == "hh")
        return static_cast<signed char>(v);
    return v;
}

unsigned long long takeUnsigned(const std::string& length, va_list& args)
{
    if (length == "l")
        return va_arg(args, unsigned long);
    if (length == "ll")
        return va_arg(args, unsigned long long);
    if (length == "z")
        return va_arg(args, size_t);
    if (length == "j")
        return va_arg(args, uintmax_t);
    if (length == "t")
        return static_cast<unsigned long long>(va_arg(args, ptrdiff_t));
    const unsigned v = va_arg(args, unsigned);
    if (length == "h")
        return static_cast<unsigned short>(v);
    if (length == "hh")
        return static_cast<unsigned char>(v);
    return v;
}

std::string narrowFormat(const Conversion& c, const char* length, char conversion)
{
    std::string format = "%" + c.flags;
    if (c.width >= 0)
        format += std::to_string(c.width);
    if (c.precision >= 0)
        format += "." + std::to_string(c.precision);
    return format + length + conversion;
}

template <typename T>
std::string printNarrow(const std::string& format, T value)
{
    char small[128];
    const int n = std::snprintf(small, sizeof small, format.c_str(), value);
    if (n < 0)
        return std::string();
    if (static_cast<size_t>(n) < sizeof small)
        return std::string(small, static_cast<size_t>(n));
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(&big[0], big.size(), format.c_str(), value);
    big.resize(static_cast<size_t>(n));
    return big;
}

// Numbers in the C locale whatever the host process has set.
std::string withPointDecimal(std::string text)
{
    const char* point = std::localeconv()->decimal_point;
    if (point && point[0] && std::strcmp(point, ".") != 0) {
        const size_t at = text.find(point);
        if (at != std::string::npos)
            text.replace(at, std::strlen(point), ".");
    }
    return text;
}

void appendPadded(ZString::Storage& out, const ZString::Storage& text, const Conversion& c)
{
    const size_t width = c.width > 0 ? static_cast<size_t>(c.width) : 0;
    const size_t pad = width > text.size() ? width - text.size() : 0;
    const bool left = c.flags.find('-') != std::string::npos;
    if (!left)
        out.append(pad, ZChar(' '));
    out += text;
    if (left)
        out.append(pad, ZChar(' '));
}

void appendConversion(ZString::Storage& out, const Conversion& c, va_list& args)
{
    switch (c.conversion) {
    case 'd':
    case 'i':
        out += ZString::fromUtf8(printNarrow(narrowFormat(c, "ll", 'd'), takeSigned(c.length, args))).units();
        return;
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        out += ZString::fromUtf8(printNarrow(narrowFormat(c, "ll", c.conversion), takeUnsigned(c.length, args))).units();
        return;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G': {
        const double v = c.length == "L" ? static_cast<double>(va_arg(args, long double)) : va_arg(args, double);
        out += ZString::fromUtf8(withPointDecimal(printNarrow(narrowFormat(c, "", c.conversion), v))).units();
        return;
    }
    case 'p':
        out += ZString::fromUtf8(printNarrow("%p", va_arg(args, void*))).units();
        return;
    case 'c':
        appendPadded(out, ZString::Storage(1, static_cast<ZChar>(va_arg(args, int))), c);
        return;
    case 's': {
        ZString::Storage text;
        if (c.length == "h") {
            const char* s = va_arg(args, const char*);
            text = ZString::fromUtf8(s ? s : "(null)").units();
        } else {
            const ZChar* s = va_arg(args, const ZChar*);
            text = s ? ZString::Storage(s) : ZString::fromUtf8("(null)").units();
        }
        if (c.precision >= 0 && text.size() > static_cast<size_t>(c.precision))
            text.resize(static_cast<size_t>(c.precision));
        appendPadded(out, text, c);
        return;
    }
    case '%':
        out.push_back('%');
        return;
    default:
        // An unknown conversion is written as it stands rather than guessed at.
        out.push_back('%');
        out.push_back(static_cast<ZChar>(c.conversion));
        return;
    }
}

} // namespace

ZString ZString::format(const ZChar* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    ZString result = formatV(fmt, args);
    va_end(args);
    return result;
}

#ifdef _WIN32
ZString ZString::format(const char16_t* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    ZString result = formatV(reinterpret_cast<const ZChar*>(fmt), args);
    va_end(args);
    return result;
}
#endif

ZString ZString::formatV(const ZChar* fmt, va_list args)
{
    Storage out;
    va_list local;
    va_copy(local, args);
    for (const ZChar* p = fmt; p && *p;) {
        if (*p != '%') {
            out.push_back(*p++);
            continue;
        }
        ++p;
        const Conversion c = parseConversion(p, local);
        if (c.conversion == 0)
            break;
        appendConversion(out, c, local);
    }
    va_end(local);
    return ZString(std::move(out));
}
