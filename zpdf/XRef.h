#pragma once
// XRef: the cross-reference table that the writer builds and writes.

#include "zpdf/Object.h"

#include <vector>

namespace zpdf {

class XRef : public Object {
    ZPDF_MAKEABLE
public:
    struct Entry {
        std::uint32_t number;
        std::uint16_t generation;
        // The byte offset of an object in use; for a free entry the next free number.
        std::int64_t offset;
        bool inUse;
    };

    // Adds or replaces the entry for entry.number; cheapest in ascending order.
    void add(const Entry& entry);
    // A free entry for every number from 0 to the highest that has none, in ascending
    // order: generation 65535 for object 0 and 0 for the others, each pointing back to the
    // free entry made before it (0 for the first). Throws PdfException "list too long"
    // when the highest number is too large for a table.
    void addFreeEntries();

    int size() const { return static_cast<int>(entries_.size()); }
    const std::vector<Entry>& entries() const { return entries_; }

    // "xref", then per run of consecutive numbers its subsection line and 20-byte lines.
    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    XRef() : Object(Type::XRef) {}
    bool equalsImpl(const Object& other, bool) const override { return &other == this; }

private:
    std::vector<Entry> entries_;
};

} // namespace zpdf
