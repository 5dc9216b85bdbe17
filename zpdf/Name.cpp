#include "zpdf/Name.h"

#include "zpdf/Writer.h"

namespace zpdf {

int AbstractName::compare(std::string_view a, std::string_view b)
{
    const std::size_t common = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < common; ++i) {
        const auto x = static_cast<signed char>(a[i]);
        const auto y = static_cast<signed char>(b[i]);
        if (x != y)
            return x < y ? -1 : 1;
    }
    if (a.size() == b.size())
        return 0;
    return a.size() < b.size() ? -1 : 1;
}

void Name::write(Writer& out) const
{
    out.put('/');
    out.write(bytes());
}

Ptr<Object> Name::clone() const { return Ptr<Object>(const_cast<Name*>(this)); }

} // namespace zpdf
