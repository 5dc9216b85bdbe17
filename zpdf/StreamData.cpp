#include "zpdf/StreamData.h"

#include "zpdf/Writer.h"

namespace zpdf {

void StreamData::write(Writer& out) const { out.write(bytes_); }

Ptr<Object> StreamData::clone() const { return make<StreamData>(bytes_); }

bool StreamData::equalsImpl(const Object& other, bool) const
{
    return other.type() == Type::StreamData && static_cast<const StreamData&>(other).bytes_ == bytes_;
}

} // namespace zpdf
