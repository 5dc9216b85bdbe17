#pragma once
// Undoing the Content-Encoding of an HTTP response body: gzip, and deflate in both forms
// that servers send under that name (zlib-wrapped, as the standard says, and raw). Portable.
//
// A body is decoded whole or not at all: corrupt or truncated data, data after the end of
// the compressed stream and output beyond the limit are errors, never a shortened body.

#include <cstddef>
#include <string>
#include <string_view>

namespace browser {

// What the client offers in Accept-Encoding: exactly the encodings decodeContent undoes.
inline constexpr const char* acceptedEncodings = "gzip, deflate";

struct DecodedContent {
    bool ok = false;
    std::string bytes; // the decoded body; empty unless ok
    std::string error; // why decoding failed, in English; empty if ok
};

// Decodes `body` (moved in, so that an unencoded body is not copied) sent with the Content-Encoding header value `encodings`: a comma-separated
// list of codings in the order the server applied them, so they are undone from the last.
// "gzip" and "x-gzip" are gzip (members written one after another are all decoded);
// "deflate" is zlib-wrapped when its first two bytes form a zlib header, else raw deflate;
// "identity" and an empty value leave the body as it is. An empty body decodes to nothing
// whatever the coding (responses without content may still name one).
//
// Errors: "Unsupported content encoding "br"", "The gzip content is corrupt (<zlib's
// reason>)", "The deflate content is truncated", "The gzip content has data after its end",
// "The decoded content is larger than the limit of <limit> bytes".
DecodedContent decodeContent(std::string_view encodings, std::string body, std::size_t limit);

} // namespace browser
