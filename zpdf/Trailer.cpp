#include "zpdf/Trailer.h"

#include "zpdf/Writer.h"

namespace zpdf {

void Trailer::write(Writer& out) const
{
    out.write("trailer\r\n");
    Dict::write(out);
    out.write("\r\n");
}

Ptr<Object> Trailer::clone() const
{
    Ptr<Trailer> copy = make<Trailer>();
    cloneInto(*copy);
    return copy;
}

} // namespace zpdf
