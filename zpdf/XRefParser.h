#pragma once
// XRefParser: reads the cross-reference sections of a file, from the newest (where
// "startxref" points) through every older one named by Prev: classic tables with their
// subsections and trailer, cross-reference streams (W, Index, predictors), and hybrid
// sections whose table names a stream in XRefStm.

#include "zpdf/CrossReference.h"
#include "zpdf/Dict.h"

#include <memory>
#include <string_view>
#include <vector>

namespace zpdf {

class IndirectTable;
class NameTable;
class Tokenizer;

class XRefParser {
public:
    // `data` is the whole file; `names` and the table must outlive the parser.
    XRefParser(std::string_view data, NameTable& names, std::weak_ptr<const IndirectTable> table);

    // The offset written after the last "startxref". Throws PdfException when there is none.
    static std::uint64_t findStartXRef(std::string_view data);

    // Reads the section at `offset` and all older ones into `entries`, newer entries
    // winning. Returns the newest trailer, completed with Root, Info, ID and Encrypt from
    // older trailers when it lacks them. Throws PdfException naming the offset for a
    // malformed section and for a loop in the Prev chain.
    Ptr<Dict> readChain(std::uint64_t offset, CrossReference& entries);

    // The numbers of the cross-reference streams read: structure, not document content.
    const std::vector<std::uint32_t>& streamNumbers() const { return streamNumbers_; }

private:
    Ptr<Dict> readSection(std::uint64_t offset, CrossReference& section);
    Ptr<Dict> readTable(Tokenizer& tokens, CrossReference& section);
    void readSubsection(Tokenizer& tokens, std::int64_t first, std::int64_t count, CrossReference& section);
    // `hybrid`: the stream completes a table's section and does not override its entries.
    Ptr<Dict> readStream(std::uint64_t offset, CrossReference& section, bool hybrid);

    std::string_view data_;
    NameTable& names_;
    std::weak_ptr<const IndirectTable> table_;
    std::vector<std::uint32_t> streamNumbers_;
};

} // namespace zpdf
