#include "zpdf/Names.h"

#include <algorithm>
#include <vector>

namespace zpdf {

namespace {

struct Predefined {
#define ZPDF_NAME_MEMBER(n) Ptr<zpdf::Name> n = make<zpdf::Name>(#n);
    ZPDF_PREDEFINED_NAMES(ZPDF_NAME_MEMBER)
#undef ZPDF_NAME_MEMBER

    // All of them in key order, for find().
    std::vector<zpdf::Name*> sorted;

    Predefined()
    {
#define ZPDF_NAME_SORTED(n) sorted.push_back(n.get());
        ZPDF_PREDEFINED_NAMES(ZPDF_NAME_SORTED)
#undef ZPDF_NAME_SORTED
        std::sort(sorted.begin(), sorted.end(),
                  [](const zpdf::Name* a, const zpdf::Name* b) { return AbstractName::less(a->bytes(), b->bytes()); });
    }
};

// Made on first use, whichever static initialiser of the program comes first; never
// destroyed, so names stay valid during the destruction of other statics.
const Predefined& predefined()
{
    static const Predefined* const table = new Predefined;
    return *table;
}

// Creates the names while the module loads.
[[maybe_unused]] const bool madeAtLoad = (predefined(), true);

} // namespace

namespace names {

#define ZPDF_DEFINE_NAME(n)                                                                              \
    const Ptr<zpdf::Name>& n() { return predefined().n; }
ZPDF_PREDEFINED_NAMES(ZPDF_DEFINE_NAME)
#undef ZPDF_DEFINE_NAME

zpdf::Name* find(std::string_view bytes)
{
    const std::vector<zpdf::Name*>& sorted = predefined().sorted;
    const auto at = std::lower_bound(sorted.begin(), sorted.end(), bytes, [](const zpdf::Name* name, std::string_view b) {
        return AbstractName::less(name->bytes(), b);
    });
    return at != sorted.end() && (*at)->bytes() == bytes ? *at : nullptr;
}

} // namespace names

} // namespace zpdf
