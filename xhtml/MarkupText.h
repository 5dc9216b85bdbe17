#pragma once
// Character classes and comparisons shared by the markup and style readers. They do not
// depend on the C library's locale, so the tree is the same on every platform.

#include "base/ZString.h"

#include <vector>

namespace xhtml {

// Tab, line feed, vertical tab, form feed, carriage return and space.
inline bool isSpace(ZChar unit)
{
    return unit == ' ' || (unit >= 9 && unit <= 13);
}

inline bool isAsciiLetter(ZChar unit)
{
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
}

inline bool isDigit(ZChar unit)
{
    return unit >= '0' && unit <= '9';
}

// Value of a hexadecimal digit, or -1.
inline int hexDigitValue(ZChar unit)
{
    if (unit >= '0' && unit <= '9')
        return unit - '0';
    if (unit >= 'a' && unit <= 'f')
        return unit - 'a' + 10;
    if (unit >= 'A' && unit <= 'F')
        return unit - 'A' + 10;
    return -1;
}

// A letter that may begin a tag or attribute name: ASCII letters and the letters of the
// scripts the language files use (Latin, Greek, Cyrillic, Armenian, Hebrew, Arabic, kana,
// CJK ideographs, Hangul).
bool isLetterSlow(ZChar unit);
inline bool isLetter(ZChar unit)
{
    return unit < 0x80 ? isAsciiLetter(unit) : isLetterSlow(unit);
}

inline ZChar asciiLower(ZChar unit)
{
    return unit >= 'A' && unit <= 'Z' ? static_cast<ZChar>(unit + ('a' - 'A')) : unit;
}

// Exact comparison with a literal; `literal` is zero-terminated.
bool equals(const ZString& text, const char16_t* literal);
// Comparison that ignores the case of ASCII letters (names of colours and keywords are ASCII).
bool equalsNoCase(const ZString& text, const char16_t* literal);
bool equalsNoCase(const ZString& a, const ZString& b);

// The text between [begin, end) without the white space at either end.
ZString trimmed(const ZChar* begin, const ZChar* end);

// Splits a multi-word value into words at runs of space, ";", "," and ":"; each word is
// trimmed of white space and empty words are dropped.
std::vector<ZString> splitWords(const ZString& value);

} // namespace xhtml
