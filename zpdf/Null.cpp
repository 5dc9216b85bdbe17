#include "zpdf/Null.h"

#include "zpdf/Writer.h"

namespace zpdf {

void Null::write(Writer& out) const { out.write("null"); }

Ptr<Object> Null::clone() const { return make<Null>(); }

bool Null::equalsImpl(const Object& other, bool) const { return other.type() == Type::Null; }

} // namespace zpdf
