#pragma once
// Marker: a token that a parser keeps on its stack while it reads a container ("[" or
// "<<"). Markers are shared and compared by identity; they are never written.

#include "zpdf/Object.h"

namespace zpdf {

class Marker : public Object {
public:
    enum Kind { arrayStart, dictStart };

    // The shared marker of the kind; borrowed for the life of the process.
    static const Ptr<Marker>& get(Kind kind);

    Kind kind() const { return kind_; }
    // Throws UnsupportedException: a marker is not a PDF value.
    void write(Writer& out) const override;
    Ptr<Object> clone() const override { return Ptr<Object>(const_cast<Marker*>(this)); }

private:
    explicit Marker(Kind kind) : Object(Type::Marker), kind_(kind) {}
    bool equalsImpl(const Object& other, bool) const override { return &other == this; }

    Kind kind_;
};

} // namespace zpdf
