#pragma once
// Repair: rebuilds the cross-reference data of a damaged file from its contents, as the
// widespread readers do: every "N G obj" header in the file is an object (a later one
// wins over an earlier one with the same number), object streams add the objects they
// hold, and the trailer is the last "trailer" dictionary that names a Root, else the last
// cross-reference stream's dictionary that does, else one made from the last catalog.

#include "zpdf/CrossReference.h"
#include "zpdf/Dict.h"

#include <memory>
#include <string_view>
#include <vector>

namespace zpdf {

class IndirectTable;
class NameTable;

class Repair {
public:
    // Scans `data` (the whole file). Object numbers at or above `limit` are ignored.
    // References in what it reads are bound to `table`.
    Repair(std::string_view data, NameTable& names, std::weak_ptr<const IndirectTable> table, std::uint32_t limit);

    CrossReference& entries() { return entries_; }
    // Null when the file has neither a trailer nor a catalog.
    const Ptr<Dict>& trailer() const { return trailer_; }
    // Object and cross-reference streams: structure, not document content.
    const std::vector<std::uint32_t>& structureNumbers() const { return structure_; }

private:
    struct Found {
        std::uint32_t number;
        std::uint16_t generation;
        std::size_t offset;
    };

    void scanObjects();
    // Looks at the object at `found`, which ends before `end`: notes streams of structure
    // and catalogs.
    void inspect(const Found& found, std::size_t end);
    void addObjectStreams();
    void findTrailer();
    Ptr<Dict> lastTrailerWithRoot() const;

    std::string_view data_;
    NameTable& names_;
    std::weak_ptr<const IndirectTable> table_;
    CrossReference entries_;
    Ptr<Dict> trailer_;
    std::vector<std::uint32_t> structure_;
    std::vector<Found> objectStreams_;
    Ptr<Dict> xrefStreamTrailer_;
    std::vector<Found> catalogs_;
};

} // namespace zpdf
