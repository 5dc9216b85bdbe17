#pragma once
// StreamData: the byte buffer of a stream, written as the bytes themselves.

#include "zpdf/Object.h"

#include <string>
#include <string_view>

namespace zpdf {

class StreamData : public Object {
    ZPDF_MAKEABLE
public:
    const std::string& bytes() const { return bytes_; }
    std::size_t size() const { return bytes_.size(); }
    void append(std::string_view bytes) { bytes_.append(bytes); }
    // Takes the buffer without copying.
    void setBytes(std::string bytes) { bytes_ = std::move(bytes); }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    explicit StreamData(std::string bytes = {}) : Object(Type::StreamData), bytes_(std::move(bytes)) {}
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    std::string bytes_;
};

} // namespace zpdf
