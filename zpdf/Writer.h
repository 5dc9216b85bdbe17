#pragma once
// Writer: an output sink with a running byte position, and the writing of whole documents.
//
// Objects serialise themselves through write(); writeDocument() only orders the objects
// and writes the frame: header, objects, cross-reference table, trailer, start offset and
// end marker. Every line break the writer emits is CR LF. Bytes are staged in a buffer and
// handed to the sink in large pieces.

#include <cstdint>
#include <memory>
#include <string_view>

namespace zpdf {

class Document;
class Object;

class Writer {
public:
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    virtual ~Writer();

    // Bytes written so far, staged ones included.
    std::int64_t position() const { return flushed_ + static_cast<std::int64_t>(used_); }

    void write(const Object& object);
    void write(const char* text) { write(std::string_view(text)); }
    void write(std::string_view bytes)
    {
        if (bytes.size() <= capacity - used_) {
            std::char_traits<char>::copy(buffer_.get() + used_, bytes.data(), bytes.size());
            used_ += bytes.size();
        } else {
            writeLarge(bytes);
        }
    }
    void put(char byte)
    {
        if (used_ == capacity)
            flush();
        buffer_[used_++] = byte;
    }
    // Decimal, with a minus sign when negative.
    void writeInt(std::int64_t value);

    // Writes `document` as a complete PDF file and flushes. Throws PdfException from the
    // objects ("ZLib compression error" among them) and from the sink; the output is then
    // incomplete.
    void writeDocument(Document& document);

    // Hands the staged bytes to the sink.
    void flush();

protected:
    Writer();
    // Receives the bytes in order; throws PdfException when they cannot be stored.
    virtual void sink(const char* data, std::size_t size) = 0;

private:
    static constexpr std::size_t capacity = 64 * 1024;

    void writeLarge(std::string_view bytes);

    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    std::int64_t flushed_ = 0;
};

} // namespace zpdf
