#pragma once
// The options of the bridge's fetchUrl(url, callback, options), a JSON object text, and the
// headers a page gets back, as a JSON object text. Portable, so that the reading of what a
// page sends is fuzzed natively.
//
// Options (each may be left out; any other name is refused, so a misspelt option does not
// pass unnoticed):
//   "method"   a text: "GET" unless given
//   "headers"  an object of texts: request headers
//   "body"     a text, sent as UTF-8
//   "timeout"  a whole number of milliseconds from 1 to 600000: bounds every step and the
//              whole request
//   "maxBytes" a whole number from 1 to 33554432: the largest response body taken

#include "base/ZString.h"
#include "browser/HttpMessage.h"

namespace browser {

constexpr double kMaxFetchTimeoutMs = 600000;
constexpr double kMaxFetchBytes = 32 * 1024 * 1024;

// Applies `json` to `request`; false with a description of what is wrong (and `request` in
// an unspecified state) when the text is no such object.
bool applyFetchOptions(const ZString& json, HttpRequest& request, ZString& error);

// {"name": "value", ...} in the order received; values of a repeated header joined by ", ",
// as HTTP allows, under the first spelling of its name.
ZString headersJson(const HttpHeaders& headers);

} // namespace browser
