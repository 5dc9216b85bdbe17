#pragma once
// Reference: "N G R", standing for a numbered object of a document.

#include "zpdf/Object.h"

#include <memory>

namespace zpdf {

class IndirectTable;

class Reference : public Object {
    ZPDF_MAKEABLE
public:
    std::uint32_t number() const { return number_; }
    std::uint16_t generation() const { return generation_; }

    // The value of the referenced object, following chains of references. Null when the
    // reference belongs to no live document, the object is missing or has another
    // generation, or the chain loops. Borrowed: owned by the document.
    Object* resolve() override;

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    // A reference made without a table resolves to null.
    Reference(std::uint32_t number, std::uint16_t generation, std::weak_ptr<const IndirectTable> table = {})
        : Object(Type::Reference), number_(number), generation_(generation), table_(std::move(table))
    {
    }
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    std::uint32_t number_;
    std::uint16_t generation_;
    std::weak_ptr<const IndirectTable> table_;
};

} // namespace zpdf
