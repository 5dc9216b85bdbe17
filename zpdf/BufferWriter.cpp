#include "zpdf/BufferWriter.h"

#include <algorithm>

namespace zpdf {

const std::string& BufferWriter::data()
{
    flush();
    return bytes_;
}

std::string BufferWriter::take()
{
    flush();
    return std::move(bytes_);
}

void BufferWriter::sink(const char* data, std::size_t size)
{
    const std::size_t needed = bytes_.size() + size;
    if (needed > bytes_.capacity()) {
        // Doubling for many small pieces; a large piece (a big stream) gets room for what
        // follows it, so the tail of the file does not copy the whole buffer again.
        bytes_.reserve(std::max(bytes_.capacity() * 2, needed + needed / 16 + 64 * 1024));
    }
    bytes_.append(data, size);
}

} // namespace zpdf
