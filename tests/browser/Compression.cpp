#include "Compression.h"

#include <zlib.h>

#include <cstdint>
#include <stdexcept>

namespace browserTest {

namespace {

std::string deflateWith(std::string_view data, int windowBits)
{
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("deflateInit2");
    std::string out(deflateBound(&stream, static_cast<uLong>(data.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int status = deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    if (status != Z_STREAM_END)
        throw std::runtime_error("deflate");
    return out;
}

} // namespace

std::string gzip(std::string_view data)
{
    return deflateWith(data, 16 + MAX_WBITS);
}

std::string zlibWrapped(std::string_view data)
{
    return deflateWith(data, MAX_WBITS);
}

std::string rawDeflate(std::string_view data)
{
    return deflateWith(data, -MAX_WBITS);
}

std::string sampleText(std::size_t size)
{
    static const char* const words[] = {"capture", "screen", "window", "page", "the", "of", "a", "document",
                                        "{\"id\":", "\"name\":", "42,", "true", "pixel", "area", "\n", "PDF"};
    std::string text;
    text.reserve(size + 16);
    std::uint32_t state = 12345;
    while (text.size() < size) {
        state = state * 1103515245u + 12345u;
        text += words[(state >> 16) % 16];
        text += (state >> 8) % 7 == 0 ? std::to_string(state % 100000) : std::string(" ");
    }
    text.resize(size);
    return text;
}

} // namespace browserTest
