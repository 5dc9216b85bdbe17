#pragma once
// Language.dll: the suite's localised texts.
//
// Texts come from UTF-8 language files named "<code>.lng" in the "languages" folder beside
// the DLL. The language is the user value "language" when a file exists for it, else the
// user's UI language when a file exists for it, else English. Texts missing from the chosen
// file come from the English texts built into the DLL, which also serve when the folder is
// missing. A key that no text has yields the key itself: a visible but harmless gap.
// No function throws.

#include "base/ZString.h"

#ifdef PRYXA_LANGUAGE_BUILD
#define LANGUAGE_API __declspec(dllexport)
#else
#define LANGUAGE_API __declspec(dllimport)
#endif

struct LanguageInfo {
    ZString name;        // "German"
    ZString code;        // "de"
    ZString nativeName;  // "Deutsch"
    ZString fileName;    // "de.lng"; empty when only the built-in English texts are in use
    ZString countryCode; // "DE"
    ZString direction;   // "ltr" or "rtl"
};

extern "C" {

LANGUAGE_API ZString lang_getStr(const ZString& key);
LANGUAGE_API bool lang_hasStr(const ZString& key);
LANGUAGE_API LanguageInfo lang_getCurrent();

// Reads language files from `folder` from now on (empty: the folder beside the DLL) and
// chooses the language again. Also the way to pick up a changed "language" value.
LANGUAGE_API void lang_setFolder(const ZString& folder);

} // extern "C"
