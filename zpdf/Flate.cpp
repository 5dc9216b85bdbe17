#include "zpdf/Flate.h"

#include "zpdf/PdfException.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace zpdf::flate {

namespace {

constexpr std::size_t pieceSize = 2048;
// zlib counts in uInt; larger buffers are fed in parts of at most this size.
constexpr std::size_t maxFeed = std::numeric_limits<uInt>::max();

// End a zlib stream that was set up, however the work on it ends.
struct DeflateEnd {
    z_stream& stream;
    ~DeflateEnd() { deflateEnd(&stream); }
};

struct InflateEnd {
    z_stream& stream;
    ~InflateEnd() { inflateEnd(&stream); }
};

void feed(z_stream& stream, const char*& next, std::size_t& remaining)
{
    if (stream.avail_in != 0 || remaining == 0)
        return;
    const std::size_t part = std::min(remaining, maxFeed);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(next));
    stream.avail_in = static_cast<uInt>(part);
    next += part;
    remaining -= part;
}

// Inflates at most `limit` bytes. Data that ends before the zlib stream does is an error,
// or with `keepTruncated` gives what was decoded.
std::string inflateAll(std::string_view data, std::size_t limit, bool keepTruncated)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        throw PdfException("ZLib decompression error");
    const InflateEnd end{stream};
    std::string result;
    const char* next = data.data();
    std::size_t remaining = data.size();
    char piece[16384];
    int status = Z_OK;
    while (status != Z_STREAM_END) {
        feed(stream, next, remaining);
        stream.next_out = reinterpret_cast<Bytef*>(piece);
        stream.avail_out = sizeof piece;
        status = inflate(&stream, Z_NO_FLUSH);
        const std::size_t produced = sizeof piece - stream.avail_out;
        const bool stalled = status == Z_BUF_ERROR && stream.avail_in == 0 && remaining == 0;
        if (stalled && keepTruncated)
            break;
        if ((status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) || stalled)
            throw PdfException("ZLib decompression error");
        if (produced > limit - result.size())
            throw PdfException("Decoded stream too long");
        result.append(piece, produced);
    }
    return result;
}

} // namespace

std::string compress(std::string_view data)
{
    z_stream stream{};
    if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK)
        throw PdfException("ZLib compression error");
    const DeflateEnd end{stream};
    std::string result;
    // The bound is only reserved, not touched, so memory in use grows with the output.
    result.reserve(deflateBound(&stream, static_cast<uLong>(std::min<std::size_t>(data.size(), maxFeed))));
    const char* next = data.data();
    std::size_t remaining = data.size();
    char piece[pieceSize];
    int status = Z_OK;
    while (status != Z_STREAM_END) {
        feed(stream, next, remaining);
        stream.next_out = reinterpret_cast<Bytef*>(piece);
        stream.avail_out = pieceSize;
        status = deflate(&stream, remaining == 0 ? Z_FINISH : Z_NO_FLUSH);
        if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR)
            throw PdfException("ZLib compression error");
        result.append(piece, pieceSize - stream.avail_out);
    }
    return result;
}

std::string decompress(std::string_view data)
{
    return inflateAll(data, std::numeric_limits<std::size_t>::max(), false);
}

std::string decompressBounded(std::string_view data, std::size_t limit)
{
    return inflateAll(data, limit, true);
}

} // namespace zpdf::flate
