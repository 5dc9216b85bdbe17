#pragma once
// What the web bridge asks of the HTTP client and what it gets back, with the parts of HTTP
// that need no network: checking a request, reading a response head, and turning a body
// into text. Portable; the client that sends requests is browser/HttpClient.h.

#include "base/ZString.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace browser {

struct HttpHeader {
    ZString name;
    ZString value;
};
using HttpHeaders = std::vector<HttpHeader>;

// The value of the first header of that name (compared without case), or null.
const ZString* findHeader(const HttpHeaders& headers, const ZString& name);

// One request. Time-outs are in milliseconds and count from the start of the step they
// bound; values below 1 count as 1.
struct HttpRequest {
    ZString url;              // http or https only
    ZString method = u"GET";  // any HTTP token: GET, POST, HEAD, PUT, ...
    HttpHeaders headers;      // sent as given, except Accept-Encoding, which the client sets
    std::string body;         // sent as is; GET and HEAD take none
    unsigned connectTimeoutMs = 30000; // from sending until connected to the server
    unsigned sendTimeoutMs = 30000;    // for sending the request with its body
    unsigned receiveTimeoutMs = 30000; // longest wait for the response head or a piece of body
    unsigned deadlineMs = 120000;      // the whole request, redirects and decoding included
    std::size_t maxBodyBytes = 32 * 1024 * 1024; // the decoded body, and the body as received
    unsigned maxRedirects = 10;        // followed; one more is an error
};

enum class HttpOutcome {
    completed, // a response arrived whole, whatever its status (404 too)
    failed,    // no usable response: refused request, network or server fault, bad content
    timedOut,  // a time-out or the deadline passed
    cancelled, // cancelled through the request's Cancellation
};

struct HttpResponse {
    HttpOutcome outcome = HttpOutcome::failed;
    ZString error;        // a description in English; empty when completed
    int status = 0;       // the final response's status; 0 when none arrived
    ZString statusText;   // "OK", "Not Found", ...
    HttpHeaders headers;  // the final response's headers, in the order received
    std::string body;     // decoded; empty unless completed
    ZString url;          // the address that gave the final response, after redirects

    bool ok() const { return outcome == HttpOutcome::completed; }
    // The body as text, by the charset of its Content-Type (see decodeText).
    ZString text() const;
};

// Why the request cannot be sent, or empty: "Only http and https addresses can be
// fetched", "The method "..." is not a valid HTTP method", "The request header "..." is not
// valid" (an empty name, a name that is no token, or a line break in the value), "A GET or
// HEAD request cannot have a body".
ZString requestProblem(const HttpRequest& request);

// True for an absolute http or https address with a host ("https://example.com/a").
bool isHttpUrl(const ZString& url);

// A response head as WinINet gives it: the status line, then "Name: value" lines, separated
// by CR LF. Lines without a colon are skipped; a head without a status line has status 0.
struct ResponseHead {
    int status = 0;
    ZString statusText;
    HttpHeaders headers;
};
ResponseHead parseResponseHead(const ZString& raw);

// Bytes to text by the charset parameter of a Content-Type: UTF-8 unless the charset names
// ISO-8859-1, Latin-1, US-ASCII or windows-1252 (all read as windows-1252, as browsers do).
// A UTF-8 byte order mark is dropped; malformed UTF-8 becomes U+FFFD.
ZString decodeText(std::string_view bytes, const ZString* contentType);

} // namespace browser
