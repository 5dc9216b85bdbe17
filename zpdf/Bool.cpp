#include "zpdf/Bool.h"

#include "zpdf/Writer.h"

namespace zpdf {

void Bool::write(Writer& out) const { out.write(value_ ? "true" : "false"); }

Ptr<Object> Bool::clone() const { return make<Bool>(value_); }

bool Bool::equalsImpl(const Object& other, bool) const
{
    return other.type() == Type::Bool && static_cast<const Bool&>(other).value_ == value_;
}

} // namespace zpdf
