#pragma once
// Trailer: the trailer dictionary, written "trailer", the dictionary and a line break.

#include "zpdf/Dict.h"

namespace zpdf {

class Trailer : public Dict {
    ZPDF_MAKEABLE
public:
    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    Trailer() : Dict(Type::Trailer) {}
};

} // namespace zpdf
