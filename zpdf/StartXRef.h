#pragma once
// StartXRef: the file's tail, "startxref", the offset of the table and "%%EOF" with no
// line break after it.

#include "zpdf/Object.h"

namespace zpdf {

class StartXRef : public Object {
    ZPDF_MAKEABLE
public:
    std::int64_t offset() const { return offset_; }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override { return make<StartXRef>(offset_); }

protected:
    explicit StartXRef(std::int64_t offset) : Object(Type::StartXRef), offset_(offset) {}
    bool equalsImpl(const Object& other, bool) const override
    {
        return other.type() == Type::StartXRef && static_cast<const StartXRef&>(other).offset_ == offset_;
    }

private:
    std::int64_t offset_;
};

} // namespace zpdf
