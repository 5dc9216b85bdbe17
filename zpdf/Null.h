#pragma once
// Null: the PDF null object, written "null".

#include "zpdf/Object.h"

namespace zpdf {

class Null : public Object {
    ZPDF_MAKEABLE
public:
    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    Null() : Object(Type::Null) {}
    bool equalsImpl(const Object& other, bool deep) const override;
};

} // namespace zpdf
