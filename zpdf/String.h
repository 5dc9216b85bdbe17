#pragma once
// String: a PDF string, stored in its serialised form with its brackets.

#include "zpdf/Object.h"

#include "base/ZString.h"

#include <string>
#include <string_view>

namespace zpdf {

enum class StringMode : int {
    // "(" bytes ")"; nothing inside is escaped, so callers pass only text without
    // unbalanced parentheses or backslashes.
    literal = 0,
    // The bytes are already a complete serialised string and are kept unchanged.
    raw = 1,
    // "<" bytes ">"; the bytes are hexadecimal digits already.
    hex = 2,
    // Any other value keeps the bytes unchanged, as raw does.
};

class String : public Object {
    ZPDF_MAKEABLE
public:
    // The serialised form, brackets included.
    const std::string& serialized() const { return serialized_; }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    String(std::string_view bytes, StringMode mode);
    // Empty text gives "()", other text "<FEFF" and four lower-case hexadecimal digits per
    // UTF-16 unit, then ">".
    explicit String(const ZString& text);
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    std::string serialized_;
};

} // namespace zpdf
