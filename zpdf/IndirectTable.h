#pragma once
// IndirectTable: a document's numbered objects, ordered by object number.
//
// The document owns the table through a shared_ptr; references hold it weakly, so a
// reference that outlives its document resolves to null instead of dangling, and no
// counting cycle forms between objects and the document.

#include "zpdf/Indirect.h"

#include <cstdint>
#include <map>

namespace zpdf {

class IndirectTable {
public:
    using Objects = std::map<std::uint32_t, Ptr<Indirect>>;

    // Borrowed; null when no object has the number.
    Indirect* find(std::uint32_t number) const
    {
        const auto at = objects.find(number);
        return at == objects.end() ? nullptr : at->second.get();
    }

    Objects objects;
};

} // namespace zpdf
