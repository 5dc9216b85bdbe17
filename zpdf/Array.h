#pragma once
// Array: an ordered list of object pointers; a null element means absent and is written
// "null". Written "[" elements separated by single blanks "]".

#include "zpdf/Object.h"

#include <vector>

namespace zpdf {

// The most elements an array or dictionary may hold; one more raises "list too long".
constexpr std::size_t maxListElements = 0x7FFFFFFF;

class Array : public Object {
    ZPDF_MAKEABLE
public:
    using Elements = std::vector<Ptr<Object>>;

    int size() const { return static_cast<int>(elements_.size()); }
    bool isEmpty() const { return elements_.empty(); }

    // Appending may invalidate iterators and references into elements().
    void append(Ptr<Object> element);
    // Index outside 0..size()-1: PdfException "Index not in array range". Borrowed.
    Object* at(int index) const;
    void set(int index, Ptr<Object> element);
    void remove(int index);

    const Elements& elements() const { return elements_; }
    Elements::const_iterator begin() const { return elements_.begin(); }
    Elements::const_iterator end() const { return elements_.end(); }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    Array() : Object(Type::Array) {}
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    std::size_t checkedIndex(int index) const;

    Elements elements_;
};

} // namespace zpdf
