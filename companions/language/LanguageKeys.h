#pragma once
// Language keys in markup text: "{lang/KEY}" and its escaped forms "{lang-esq/KEY}" (for
// inside single quotes), "{lang-edq/KEY}" (inside double quotes) and "{lang-hsc/KEY}" (as
// HTML text), each running to the next "}". A key is looked up in the dialog's own section
// (such as "screen-capture/") first, then as it is; keys beginning with "?" name facts of the
// current language ("?/code", "?/langName", ...).
//
// Code that links the language library's import library uses this in its own module.

#include "base/ZString.h"

#include <functional>

namespace language {

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

// The text of one key (without its braces and form), looked up in `section` (ending in "/")
// first, as described above.
ZString languageText(const ZString& key, const ZString& section, const LanguageSource& source);

// Replaces every key of the four forms in `text`. An opening without a "}" stays as it is.
void replaceLanguageKeys(ZString& text, const ZString& section, const LanguageSource& source);

} // namespace language
