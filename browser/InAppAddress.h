#pragma once
// The vendor's in-app pages: their endpoint and the program's common in-app query string.
//
// The query is the sixteen parameters "name", "version", "lang", "installer", "arch",
// "updateMode", "iid", "uid", "cid", "customBanner" ("true" or "false"), "osVersion",
// "osArch", "lcid", "uLangCode", "uCountryCode" and "random", in that order, joined by "&",
// each value URL-encoded (UTF-8, percent-encoded). A page's address is the endpoint, the
// page's path, "?" and the query.

#include "browser/AppInfo.h"
#include "base/ZString.h"

namespace browser {

// Scheme and host of the vendor's in-app pages, without a trailing slash:
// "https://inapp.pryxa.com", unless a test has pointed it at a server of its own.
ZString inAppEndpoint();
// Empty goes back to the vendor's endpoint.
void setInAppEndpoint(const ZString& endpoint);

// The query for these facts and this random value; `extra` (further parameters of one
// page, each beginning with "&") is appended as given.
ZString inAppQuery(const AppInfo& info, const ZString& random, const ZString& extra);
// A new random value for the query, so that no cache between the program and the vendor
// answers with an old page: a decimal number below 2^32.
ZString newRandomValue();

} // namespace browser
