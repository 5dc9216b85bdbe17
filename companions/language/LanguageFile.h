#pragma once
// The text format of a language file: UTF-8 lines "key = text". Blank lines and lines
// starting with '#' or ';' are comments; a line without '=' or with an empty key is skipped.
// Key and text are trimmed; in the text "\n", "\t" and "\\" stand for a line break, a tab
// and a backslash. A later line for the same key wins.

#include "base/ZString.h"

#include <string_view>
#include <unordered_map>

using LanguageTexts = std::unordered_map<ZString, ZString>;

LanguageTexts parseLanguageFile(std::string_view utf8);
