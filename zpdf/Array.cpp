#include "zpdf/Array.h"

#include "zpdf/PdfException.h"
#include "zpdf/Writer.h"

namespace zpdf {

void Array::append(Ptr<Object> element)
{
    if (elements_.size() >= maxListElements)
        throw PdfException("list too long");
    if (elements_.capacity() == 0)
        elements_.reserve(4); // skips the growth steps 1 and 2
    elements_.push_back(std::move(element));
}

std::size_t Array::checkedIndex(int index) const
{
    if (index < 0 || static_cast<std::size_t>(index) >= elements_.size())
        throw PdfException("Index not in array range");
    return static_cast<std::size_t>(index);
}

Object* Array::at(int index) const { return elements_[checkedIndex(index)].get(); }

void Array::set(int index, Ptr<Object> element) { elements_[checkedIndex(index)] = std::move(element); }

void Array::remove(int index) { elements_.erase(elements_.begin() + checkedIndex(index)); }

void Array::write(Writer& out) const
{
    out.put('[');
    bool first = true;
    for (const Ptr<Object>& element : elements_) {
        if (!first)
            out.put(' ');
        first = false;
        if (element)
            element->write(out);
        else
            out.write("null");
    }
    out.put(']');
}

Ptr<Object> Array::clone() const
{
    Ptr<Array> copy = make<Array>();
    copy->elements_.reserve(elements_.size());
    for (const Ptr<Object>& element : elements_)
        copy->elements_.push_back(element ? element->clone() : nullptr);
    return copy;
}

bool Array::equalsImpl(const Object& other, bool deep) const
{
    if (other.type() != Type::Array)
        return false;
    const Elements& theirs = static_cast<const Array&>(other).elements_;
    if (theirs.size() != elements_.size())
        return false;
    for (std::size_t i = 0; i < elements_.size(); ++i)
        if (!sameValue(elements_[i].get(), theirs[i].get(), deep))
            return false;
    return true;
}

} // namespace zpdf
