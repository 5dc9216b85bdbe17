#pragma once
// How a request changes when the server redirects it. Portable; the client resolves the
// Location against the current address and counts the redirects (browser/HttpClient.cpp).

#include "browser/HttpMessage.h"

namespace browser {

// 301, 302, 303, 307 and 308: the statuses whose Location the client follows.
bool isRedirectStatus(int status);

// The request to send to `target` (absolute, http or https) after `status`, as browsers do:
// 303 turns every method but HEAD into GET, and so do 301 and 302 for POST; 307 and 308
// keep method and body. A request that becomes GET loses its body and the Content-Type
// that described it. Authorization and Cookie headers are not sent on to another origin
// (scheme, host and port).
HttpRequest redirectedRequest(const HttpRequest& request, int status, const ZString& target);

// "scheme://host:port" in lower case, with the scheme's default port filled in and any user
// name left out; empty for an address that is not http or https.
ZString originOf(const ZString& url);

} // namespace browser
