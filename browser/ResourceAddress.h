#pragma once
// Addresses of the program's private scheme: "pryxa://res/<name>" names one resource of the
// module (markup, images, scripts), or one that the script bridge adds. Nothing else can be
// named: a name is 1 to 128 of the characters A-Z, a-z, 0-9, ".", "-" and "_", does not
// begin with "." and holds no "..", so that no escape ("%2e", "\", "/", ":") and no path
// can reach beyond those resources. The scheme and "res" may be in any case; a query or
// fragment after the name is allowed and ignored. Addresses longer than 1024 characters fail.

#include "base/ZString.h"

#include <optional>

namespace browser {

constexpr const ZChar* kPryxaScheme = ZSTR("pryxa");
constexpr int kMaxResourceAddress = 1024;
constexpr int kMaxResourceName = 128;

// The resource's name, as written; nothing when the address is not such an address.
std::optional<ZString> resourceName(const ZString& address);
// "pryxa://res/" followed by the name.
ZString resourceAddress(const ZString& name);
// The MIME type of a resource by the extension of its name, in any case: "text/html" for
// .html, .htm and .xhtml, "image/png" for .png, ...; "application/octet-stream" when the
// extension is not known.
ZString mimeTypeOf(const ZString& name);

} // namespace browser
