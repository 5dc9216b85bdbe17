#include "zpdf/Reference.h"

#include "zpdf/IndirectTable.h"
#include "zpdf/Writer.h"

namespace zpdf {

namespace {

// Longer chains of references to references are treated as loops.
constexpr int maxChain = 32;

} // namespace

Object* Reference::resolve()
{
    const std::shared_ptr<const IndirectTable> table = table_.lock();
    if (!table)
        return nullptr;
    const Reference* current = this;
    for (int step = 0; step < maxChain; ++step) {
        Indirect* target = table->find(current->number_);
        if (!target || target->generation() != current->generation_)
            return nullptr;
        Object* value = target->value();
        if (!value || value->type() != Type::Reference)
            return value;
        current = static_cast<const Reference*>(value);
    }
    return nullptr;
}

void Reference::write(Writer& out) const
{
    out.writeInt(number_);
    out.put(' ');
    out.writeInt(generation_);
    out.write(" R");
}

Ptr<Object> Reference::clone() const { return make<Reference>(number_, generation_, table_); }

bool Reference::equalsImpl(const Object& other, bool) const
{
    if (other.type() != Type::Reference)
        return false;
    const auto& that = static_cast<const Reference&>(other);
    return that.number_ == number_ && that.generation_ == generation_;
}

} // namespace zpdf
