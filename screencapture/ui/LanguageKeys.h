#pragma once
// Language keys in markup text: "{lang/KEY}" and its escaped forms "{lang-esq/KEY}" (for
// inside single quotes), "{lang-edq/KEY}" (inside double quotes) and "{lang-hsc/KEY}" (as
// HTML text), each running to the next "}". A key is looked up in the dialog's own section
// "screen-capture/" first, then as it is; keys beginning with "?" name facts of the current
// language ("?/code", "?/langName", ...).

#include "base/ZString.h"

#include <functional>

namespace screenCapture {

struct LanguageFacts {
    ZString name, code, nativeName, fileName, countryCode, direction;
};

// Where texts come from; the dialog passes the language library's functions.
struct LanguageSource {
    std::function<bool(const ZString&)> has;
    std::function<ZString(const ZString&)> text;
    std::function<LanguageFacts()> facts;
};

// The language library as a source.
LanguageSource installedLanguage();

// The text of one key (without its braces and form), looked up as described above.
ZString languageText(const ZString& key, const LanguageSource& source);

// Replaces every key of the four forms in `text`. An opening without a "}" stays as it is.
void replaceLanguageKeys(ZString& text, const LanguageSource& source);

} // namespace screenCapture
