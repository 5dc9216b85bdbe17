#pragma once
// Bool: the PDF boolean, written "true" or "false".

#include "zpdf/Object.h"

namespace zpdf {

class Bool : public Object {
    ZPDF_MAKEABLE
public:
    bool value() const { return value_; }
    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    explicit Bool(bool value) : Object(Type::Bool), value_(value) {}
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    bool value_;
};

} // namespace zpdf
