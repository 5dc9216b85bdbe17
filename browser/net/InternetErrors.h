#pragma once
// WinINet's and Winsock's error codes as the HTTP client reports them.

#include "browser/HttpMessage.h"

#include <windows.h>

namespace browser {

// A description in English, such as "Could not connect to the server"; unknown codes give
// "Network error <code>".
ZString internetErrorText(DWORD code);
// timedOut for WinINet's and Winsock's time-out codes, else failed.
HttpOutcome internetErrorOutcome(DWORD code);

} // namespace browser
