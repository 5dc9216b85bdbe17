#pragma once
// Name: a PDF name, stored as its bytes without the slash and written "/" + bytes.
//
// Names compare by identity: the program uses the shared predefined names (Names.h) for
// every name it compares, so two separately made names with the same bytes are different
// objects. Dictionaries order and find their keys by bytes (see Name::less).

#include "zpdf/Object.h"

#include <string>
#include <string_view>

namespace zpdf {

class AbstractName : public Object {
public:
    const std::string& bytes() const { return bytes_; }

    // Key order: the bytes compared one by one as signed chars; a name sorts before any
    // longer name that it begins. Upper-case keys sort before lower-case ones.
    static int compare(std::string_view a, std::string_view b);
    static bool less(std::string_view a, std::string_view b) { return compare(a, b) < 0; }

protected:
    AbstractName(Type type, std::string bytes) : Object(type), bytes_(std::move(bytes)) {}
    bool equalsImpl(const Object& other, bool) const override { return &other == this; }

private:
    std::string bytes_;
};

class Name : public AbstractName {
    ZPDF_MAKEABLE
public:
    void write(Writer& out) const override;
    // Names are immutable and compared by identity, so a clone is the name itself.
    Ptr<Object> clone() const override;

protected:
    explicit Name(std::string bytes) : AbstractName(Type::Name, std::move(bytes)) {}
};

} // namespace zpdf
