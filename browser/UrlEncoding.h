#pragma once
// Percent-encoding of a value for a URL's query string.

#include "base/ZString.h"

namespace browser {

// The text as UTF-8 with every byte except the unreserved characters (A-Z, a-z, 0-9, "-",
// ".", "_", "~") written as "%XX" in upper-case hex: "Pryxa Creator" is "Pryxa%20Creator".
ZString urlEncode(const ZString& text);

} // namespace browser
