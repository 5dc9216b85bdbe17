#include "zpdf/Indirect.h"

#include "zpdf/Writer.h"

namespace zpdf {

void Indirect::write(Writer& out) const
{
    out.writeInt(number_);
    out.put(' ');
    out.writeInt(generation_);
    out.write(" obj\r\n");
    if (value_)
        value_->write(out);
    else
        out.write("null");
    out.write("\r\nendobj");
}

Ptr<Object> Indirect::clone() const
{
    return make<Indirect>(number_, generation_, value_ ? value_->clone() : nullptr);
}

bool Indirect::equalsImpl(const Object& other, bool deep) const
{
    if (other.type() != Type::Indirect)
        return false;
    const auto& that = static_cast<const Indirect&>(other);
    return that.number_ == number_ && that.generation_ == generation_
        && sameValue(value_.get(), that.value_.get(), deep);
}

} // namespace zpdf
