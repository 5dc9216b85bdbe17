#include "zpdf/StartXRef.h"

#include "zpdf/Writer.h"

namespace zpdf {

void StartXRef::write(Writer& out) const
{
    out.write("startxref\r\n");
    out.writeInt(offset_);
    out.write("\r\n%%EOF");
}

} // namespace zpdf
