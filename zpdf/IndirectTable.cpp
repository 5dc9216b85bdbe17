#include "zpdf/IndirectTable.h"

#include "zpdf/Array.h"
#include "zpdf/PdfException.h"

namespace zpdf {

Ptr<Indirect>& IndirectTable::slot(std::uint32_t number)
{
    if (number >= maxListElements)
        throw PdfException("list too long");
    if (number >= slots_.size())
        slots_.resize(static_cast<std::size_t>(number) + 1);
    Ptr<Indirect>& at = slots_[number];
    if (!at) {
        ++count_; // the caller fills it
        if (source_)
            source_->discard(number);
    }
    return at;
}

bool IndirectTable::erase(std::uint32_t number)
{
    // An object still in its source is loaded first, so that it is gone for good.
    if (!find(number))
        return false;
    slots_[number] = nullptr;
    --count_;
    while (!slots_.empty() && !slots_.back())
        slots_.pop_back();
    return true;
}

} // namespace zpdf
