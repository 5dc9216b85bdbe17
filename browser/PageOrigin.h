#pragma once
// Which pages may reach the program through the script bridge (window.external): pages of
// the vendor's in-app endpoint and the program's own "pryxa://res/" resources. Any other
// page gets no external object. And which addresses a page may send to the user's default
// web browser: web addresses only.

#include "base/ZString.h"

namespace browser {

// True for a page below `endpoint` (scheme and host, "https://inapp.pryxa.com") and for a
// valid "pryxa://res/" address. The endpoint must be followed by the end, "/", "?" or "#":
// "https://inapp.pryxa.com.example.com/", "https://inapp.pryxa.com@example.com/",
// another port, another scheme or a look-alike in the path or query are refused. Scheme and
// host compare in any case.
bool mayUseBridge(const ZString& pageAddress, const ZString& endpoint);

// True for "http://" and "https://" addresses (in any case) with something after them.
bool isWebAddress(const ZString& address);

} // namespace browser
