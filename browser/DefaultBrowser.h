#pragma once
// Hands a web address to the user's default web browser, outside the program (the shell's
// "open" verb). Callers check the address with isWebAddress (PageOrigin.h) first.

#include "base/ZString.h"

namespace browser {

using UrlOpener = void (*)(const ZString& address);
// Tests replace it to see what would have been opened.
extern UrlOpener openInDefaultBrowser;

} // namespace browser
