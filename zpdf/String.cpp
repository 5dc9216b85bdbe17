#include "zpdf/String.h"

#include "zpdf/Writer.h"

namespace zpdf {

String::String(std::string_view bytes, StringMode mode) : Object(Type::String)
{
    switch (mode) {
    case StringMode::literal:
        serialized_.reserve(bytes.size() + 2);
        serialized_.append(1, '(').append(bytes).append(1, ')');
        break;
    case StringMode::hex:
        serialized_.reserve(bytes.size() + 2);
        serialized_.append(1, '<').append(bytes).append(1, '>');
        break;
    default: // raw, and every value without a meaning of its own
        serialized_.assign(bytes);
        break;
    }
}

String::String(const ZString& text) : Object(Type::String)
{
    if (text.isEmpty()) {
        serialized_ = "()";
        return;
    }
    static const char digits[] = "0123456789abcdef";
    serialized_.reserve(6 + 4 * static_cast<std::size_t>(text.length()));
    serialized_ = "<FEFF";
    for (const ZChar unit : text.units()) {
        const auto value = static_cast<std::uint16_t>(unit);
        for (int shift = 12; shift >= 0; shift -= 4)
            serialized_.push_back(digits[(value >> shift) & 0xF]);
    }
    serialized_.push_back('>');
}

void String::write(Writer& out) const { out.write(serialized_); }

Ptr<Object> String::clone() const { return make<String>(serialized_, StringMode::raw); }

bool String::equalsImpl(const Object& other, bool) const
{
    return other.type() == Type::String && static_cast<const String&>(other).serialized_ == serialized_;
}

} // namespace zpdf
