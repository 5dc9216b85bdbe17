#include "zpdf/Marker.h"

#include "zpdf/PdfException.h"

namespace zpdf {

const Ptr<Marker>& Marker::get(Kind kind)
{
    // Never destroyed, like the predefined names.
    static const Ptr<Marker>* const markers = new Ptr<Marker>[2]{Ptr<Marker>(new Marker(arrayStart)),
                                                                  Ptr<Marker>(new Marker(dictStart))};
    return markers[kind == arrayStart ? 0 : 1];
}

void Marker::write(Writer&) const { throw UnsupportedException("Marker: a parser token cannot be written"); }

} // namespace zpdf
