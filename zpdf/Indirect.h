#pragma once
// Indirect: a numbered object of a document, written "N G obj" value "endobj".

#include "zpdf/Object.h"

namespace zpdf {

class Indirect : public Object {
    ZPDF_MAKEABLE
public:
    std::uint32_t number() const { return number_; }
    std::uint16_t generation() const { return generation_; }
    // Borrowed; null when the object has no value (written "null").
    Object* value() const { return value_.get(); }
    const Ptr<Object>& valuePtr() const { return value_; }
    void setValue(Ptr<Object> value) { value_ = std::move(value); }

    // The value.
    Object* self() override { return value_.get(); }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    Indirect(std::uint32_t number, std::uint16_t generation, Ptr<Object> value)
        : Object(Type::Indirect), number_(number), generation_(generation), value_(std::move(value))
    {
    }
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    std::uint32_t number_;
    std::uint16_t generation_;
    Ptr<Object> value_;
};

} // namespace zpdf
