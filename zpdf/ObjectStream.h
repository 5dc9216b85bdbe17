#pragma once
// ObjectStream: the objects packed into one stream of /Type /ObjStm, N of them, whose
// bytes start at First after a table of N pairs "number offset".

#include "zpdf/Object.h"

#include <memory>
#include <string>
#include <vector>

namespace zpdf {

class IndirectTable;
class NameTable;
class Stream;

class ObjectStream {
public:
    // Decodes `stream` (within the structure limit for a file of `fileSize` bytes) and reads
    // its table. `offset` is the stream object's, for messages. Throws PdfException when N
    // or First is missing or larger than the data allows, or the table is malformed.
    ObjectStream(const Stream& stream, std::size_t fileSize, std::size_t offset);

    std::size_t count() const { return entries_.size(); }
    std::uint32_t number(std::size_t index) const { return entries_[index].number; }
    // The object at `index`, read from its own bytes only. Throws PdfException.
    Ptr<Object> parse(std::size_t index, NameTable& names, std::weak_ptr<const IndirectTable> table) const;

private:
    struct Entry {
        std::uint32_t number;
        std::size_t start; // in data_
    };

    std::string data_;
    std::vector<Entry> entries_;
    std::size_t offset_;
};

} // namespace zpdf
