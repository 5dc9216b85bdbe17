#pragma once
// Number reading for entity references and style values, with the C library's rules but
// without its locale and with the same 32-bit range on every platform.

#include "base/ZString.h"

#include <cstdint>

namespace xhtml {

// number := space* [sign] [prefix] digits     (the rules of wcstol with a 32-bit long)
// Base 16 accepts an optional "0x"/"0X"; base 0 picks 16 after "0x", 8 after "0", else 10.
// `end` receives the first unit not read, or `text` itself when there are no digits.
// A value out of range is clamped to the 32-bit limits.
int32_t readLong(const ZChar* text, const ZChar** end, int base);

// number := [sign] (digits ["." digits] | "." digits) [("e"|"E") [sign] digits]
// Reads a decimal number from the start of `text`; `end` receives the first unit not read,
// or `text` when there is no number (the result is then 0). Magnitudes beyond the range of
// a double are clamped to its largest finite value.
double readReal(const ZChar* text, const ZChar** end);

} // namespace xhtml
