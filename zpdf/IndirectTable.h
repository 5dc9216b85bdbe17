#pragma once
// IndirectTable: a document's numbered objects, indexed by object number.
//
// Object numbers of a file are dense (its cross-reference table has a line for every number
// up to the highest anyway), so the objects sit in a vector at their number; unused numbers
// hold null. The document owns the table through a shared_ptr; references hold it weakly,
// so a reference that outlives its document resolves to null instead of dangling, and no
// counting cycle forms between objects and the document.

#include "zpdf/Indirect.h"

#include <cstdint>
#include <vector>

namespace zpdf {

class IndirectTable {
public:
    using Slots = std::vector<Ptr<Indirect>>;

    // Borrowed; null when no object has the number.
    Indirect* find(std::uint32_t number) const { return number < slots_.size() ? slots_[number].get() : nullptr; }
    // The slot of `number`, made when needed. Throws PdfException "list too long" for a
    // number beyond what a table can hold.
    Ptr<Indirect>& slot(std::uint32_t number);
    bool erase(std::uint32_t number);

    bool isEmpty() const { return count_ == 0; }
    std::size_t count() const { return count_; }
    // 0 for an empty table.
    std::uint32_t highestNumber() const { return slots_.empty() ? 0 : static_cast<std::uint32_t>(slots_.size() - 1); }
    // Indexed by number, nulls included; adding or removing objects invalidates iterators.
    const Slots& slots() const { return slots_; }

private:
    Slots slots_;
    std::size_t count_ = 0;
};

} // namespace zpdf
