#pragma once
// ZString: the UTF-16 string of every interface of the module and its companion libraries.
//
// The storage is UTF-16 code units on every platform, so portable code sees the same
// units natively as on Windows. On Windows a ZChar is a wchar_t and c_str() can be handed
// to any wide Win32 call without copying. Lengths and indexes count code units.

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#ifdef _WIN32
using ZChar = wchar_t;
// A literal of ZChar units, for portable code that needs `const ZChar*` (ZSTR("screen")).
#define ZSTR(text) L##text
#else
using ZChar = char16_t;
#define ZSTR(text) u##text
#endif
static_assert(sizeof(ZChar) == 2, "ZString stores UTF-16 code units");

class ZString {
public:
    using Storage = std::basic_string<ZChar>;
    static constexpr int npos = -1;

    ZString() = default;
    ZString(const ZChar* text);
    ZString(const ZChar* text, int length);
    ZString(int count, ZChar unit);
#ifdef _WIN32
    // Portable code writes u"" literals; on Windows those are char16_t, not wchar_t.
    ZString(const char16_t* text);
#endif
    explicit ZString(Storage units) : units_(std::move(units)) {}

    // UTF-8 in and out. Malformed UTF-8 and lone surrogates become U+FFFD.
    static ZString fromUtf8(std::string_view utf8);
    std::string toUtf8() const;

    const ZChar* c_str() const { return units_.c_str(); }
    const Storage& units() const { return units_; }
    int length() const { return static_cast<int>(units_.size()); }
    bool isEmpty() const { return units_.empty(); }
    void clear() { units_.clear(); }

    // Throws std::out_of_range for an index outside 0..length()-1.
    ZChar getAt(int index) const;
    ZChar operator[](int index) const { return getAt(index); }

    ZString& append(const ZString& other);
    ZString& append(const ZChar* text, int length);
    ZString& append(ZChar unit);
    ZString& operator+=(const ZString& other) { return append(other); }
    ZString& operator+=(ZChar unit) { return append(unit); }

    // Negative, zero or positive, by code unit value.
    int compare(const ZString& other) const;
    // Compares the lower-cased forms (see toLower).
    int compareNoCase(const ZString& other) const;
    bool equalsNoCase(const ZString& other) const { return compareNoCase(other) == 0; }
    bool startsWith(const ZString& prefix) const;
    bool endsWith(const ZString& suffix) const;

    // Index of the first match at or after `from`, or npos.
    int find(const ZString& what, int from = 0) const;
    int find(ZChar unit, int from = 0) const;
    // Index of the last match that starts at or before `from` (npos: from the end), or npos.
    int findLast(const ZString& what, int from = npos) const;
    int findLast(ZChar unit, int from = npos) const;

    // Clamped to the string: a start past the end gives an empty string, a negative or
    // too large count takes the rest.
    ZString substring(int start, int count = npos) const;
    // Without leading and trailing tab, LF, VT, FF, CR and space.
    ZString trim() const;
    static bool isWhiteSpace(ZChar unit);
    // Lower case for ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic; other units stay.
    ZString toLower() const;
    static ZChar toLower(ZChar unit);

    static ZString fromInt(long long value);
    static ZString fromUInt(unsigned long long value);
    // Decimal with an optional sign; surrounding white space is allowed. False, with `value`
    // untouched, for anything else or on overflow.
    bool toInt(long long& value) const;
    bool toInt(int& value) const;
    // Like toInt, but yields `fallback` when the text is not a number.
    int toIntOr(int fallback) const;

    // printf-style: %d %i %u %x %X %o %c %s %f %e %g %p %% with flags, width, precision and
    // the h, l, ll, z, j, t and I64 length modifiers. %s takes a const ZChar*; %hs takes a
    // UTF-8 const char*. Numbers use the C locale's decimal point.
    static ZString format(const ZChar* fmt, ...);
#ifdef _WIN32
    static ZString format(const char16_t* fmt, ...);
#endif
    static ZString formatV(const ZChar* fmt, va_list args);

    friend bool operator==(const ZString& a, const ZString& b) { return a.units_ == b.units_; }
    friend bool operator!=(const ZString& a, const ZString& b) { return a.units_ != b.units_; }
    friend bool operator<(const ZString& a, const ZString& b) { return a.units_ < b.units_; }
    friend ZString operator+(ZString a, const ZString& b) { return a.append(b); }

private:
    Storage units_;
};

template <>
struct std::hash<ZString> {
    size_t operator()(const ZString& s) const noexcept { return std::hash<ZString::Storage>()(s.units()); }
};
