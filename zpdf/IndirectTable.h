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

// Supplies the objects of a table that are not in memory yet: a document read from a file
// loads each object on first use.
class IndirectSource {
public:
    // Called by find() for a number whose slot is empty: enters the object into the table
    // and returns it, or returns null when there is none. May throw PdfException.
    virtual Indirect* load(std::uint32_t number) = 0;
    // The table has an object of its own for `number` now; the source must not load one.
    virtual void discard(std::uint32_t number) = 0;

protected:
    ~IndirectSource() = default;
};

class IndirectTable {
public:
    using Slots = std::vector<Ptr<Indirect>>;

    // Borrowed; null when no object has the number. With a source, an object not loaded
    // yet is loaded first.
    Indirect* find(std::uint32_t number) const
    {
        Indirect* found = number < slots_.size() ? slots_[number].get() : nullptr;
        return found || !source_ ? found : source_->load(number);
    }
    // The slot of `number`, made when needed. Throws PdfException "list too long" for a
    // number beyond what a table can hold.
    Ptr<Indirect>& slot(std::uint32_t number);
    bool erase(std::uint32_t number);

    bool isEmpty() const { return count_ == 0; }
    std::size_t count() const { return count_; }
    // 0 for an empty table; with a source, at least the source's highest number.
    std::uint32_t highestNumber() const
    {
        const std::uint32_t loaded = slots_.empty() ? 0 : static_cast<std::uint32_t>(slots_.size() - 1);
        return loaded > sourceHighest_ ? loaded : sourceHighest_;
    }

    // `source` (null for none) must outlive its use by the table; its objects are numbered
    // up to `highestNumber`.
    void setSource(IndirectSource* source, std::uint32_t highestNumber)
    {
        source_ = source;
        sourceHighest_ = source ? highestNumber : 0;
    }
    // Indexed by number, nulls included; adding or removing objects invalidates iterators.
    const Slots& slots() const { return slots_; }

private:
    Slots slots_;
    std::size_t count_ = 0;
    IndirectSource* source_ = nullptr;
    std::uint32_t sourceHighest_ = 0;
};

} // namespace zpdf
