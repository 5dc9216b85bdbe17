#pragma once
// BufferWriter: a Writer into memory.

#include "zpdf/Writer.h"

#include <string>

namespace zpdf {

class BufferWriter : public Writer {
public:
    BufferWriter() = default;

    // Everything written so far. Borrowed: valid until the next write or take().
    const std::string& data();
    // Moves the bytes out; the writer is empty afterwards but keeps its position.
    std::string take();

protected:
    void sink(const char* data, std::size_t size) override;

private:
    std::string bytes_;
};

} // namespace zpdf
