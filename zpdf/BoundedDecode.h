#pragma once
// Decoding of the streams that hold a file's structure (cross-reference streams and object
// streams), with a ceiling on the decoded size so that damaged or hostile data cannot make
// the reader allocate without bound.

#include <cstddef>
#include <string>

namespace zpdf {

class Stream;

// The stream's data with its filters undone: none, or FlateDecode (also in an array, and
// with PNG predictors in DecodeParms). Throws PdfException for other filters, damaged data
// and for a result longer than `limit` bytes.
std::string decodeBounded(const Stream& stream, std::size_t limit);

// The ceiling for the structure streams of a file: what deflate could expand the whole
// file to, capped at 256 MB.
std::size_t structureLimit(std::size_t fileSize);

} // namespace zpdf
