#pragma once
// Flate: zlib-format deflate and inflate of whole buffers.

#include <string>
#include <string_view>

namespace zpdf::flate {

// A zlib stream (with header) at the default level, one finishing pass, the output taken
// in 2 KB pieces. Throws PdfException "ZLib compression error".
std::string compress(std::string_view data);

// Inflates a zlib stream; bytes after its end are ignored. Throws PdfException
// "ZLib decompression error" for damaged or truncated data.
std::string decompress(std::string_view data);

// Inflates a zlib stream into at most `limit` bytes; truncated data gives what was decoded,
// as readers do. Throws PdfException "ZLib decompression error" for damaged data and
// "Decoded stream too long" beyond the limit.
std::string decompressBounded(std::string_view data, std::size_t limit);

} // namespace zpdf::flate
