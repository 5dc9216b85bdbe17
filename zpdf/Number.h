#pragma once
// Number: a PDF integer or real, kept as a double with its kind.
//
// Written in the C numeric locale whatever the process locale: an integer-kind number with
// an integral value as a plain integer; any other value as "%f" with trailing zeros trimmed
// to one digit after the point ("1.5", "2.0"); a number with its own printf format string
// with that format.

#include "zpdf/Object.h"

#include <memory>
#include <string>
#include <string_view>

namespace zpdf {

class Number : public Object {
    ZPDF_MAKEABLE
public:
    enum Kind : std::int32_t { realKind = 1, integerKind = 2 };

    // Reads a PDF number token ("12", "-3", "+.5", "4."): an integer without a point, a
    // real with one. Throws NumberFormatException for anything else. The caller owns it.
    static Ptr<Number> parse(std::string_view text);

    double value() const { return value_; }
    Kind kind() const { return kind_; }
    bool isInteger() const { return kind_ == integerKind; }
    // The value truncated towards zero and clamped to the 32-bit range.
    std::int32_t intValue() const;
    // The number's own printf format, or null.
    const std::string* format() const { return format_.get(); }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    explicit Number(int value) : Object(Type::Number), value_(value), kind_(integerKind) {}
    explicit Number(std::int64_t value)
        : Object(Type::Number), value_(static_cast<double>(value)), kind_(integerKind)
    {
    }
    explicit Number(double value) : Object(Type::Number), value_(value), kind_(realKind) {}
    // `format` is a printf format with one double conversion, for example "%.2f".
    Number(double value, std::string format)
        : Object(Type::Number), value_(value), kind_(realKind), format_(std::make_unique<std::string>(std::move(format)))
    {
    }
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    double value_;
    Kind kind_;
    // Held apart: almost no number has one, and numbers are the most frequent objects.
    std::unique_ptr<std::string> format_;
};

} // namespace zpdf
