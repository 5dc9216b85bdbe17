#pragma once
// Object: the base of every PDF value of the zpdf object model.
//
// Objects are created only through make<T>() and held only through Ptr<T>; the owner that
// drops the count to 0 destroys the object. Accessors return borrowed raw pointers: they
// stay valid while the caller keeps an owner of the object they came from, and a borrowed
// pointer can be turned into an owner with Ptr<T>(raw).

#include "zpdf/Ptr.h"

#include <atomic>
#include <cstdint>

namespace zpdf {

class Array;
class Bool;
class Dict;
class Name;
class Number;
class Stream;
class String;
class Writer;

// Type ids; stored in every object and written nowhere.
enum class Type : std::int32_t {
    Number = 1,
    Array = 2,
    Null = 3,
    Reference = 4,
    Dict = 5,
    Bool = 6,
    Name = 7,
    String = 8,
    Indirect = 9,
    Marker = 10,
    Stream = 11,
    StreamData = 12,
    XRef = 13,
    StartXRef = 14,
    Trailer = 15,
};

// Lets make<T>() reach the protected constructors of a kind.
#define ZPDF_MAKEABLE                                                                                  \
    template <class T_, class... A_>                                                                   \
    friend ::zpdf::Ptr<T_> zpdf::make(A_&&...);

class Object {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    Type type() const { return type_; }
    std::uint32_t flag() const { return flag_; }
    // The current number of owners; for tests and diagnostics, racy by nature.
    std::int32_t refCount() const { return refCount_.load(std::memory_order_relaxed); }

    // Serialises the object itself; containers ask their elements in turn.
    virtual void write(Writer& out) const = 0;
    // A deep copy; the caller owns it. Immutable shared kinds (names, markers) return themselves.
    virtual Ptr<Object> clone() const = 0;
    // Debugging aid: prints the serialised object to standard output.
    void dump() const;

    // The object a Reference stands for, or this object for every other kind. Null when a
    // reference cannot be resolved. Borrowed.
    virtual Object* resolve();
    Object* resolved() { return resolve(); }
    // The object itself; an Indirect gives its value. Borrowed.
    virtual Object* self();

    // Typed access: the resolved object when it is of the kind, else null. Borrowed.
    Number* asNumber();
    Array* asArray();
    // For a stream, its dictionary.
    Dict* asDict();
    Bool* asBool();
    Name* asName();
    String* asString();
    Stream* asStream();

    // False for a null other. Deep compares contents of containers; shallow compares the
    // element pointers.
    bool equals(const Object* other, bool deep = true) const { return other && equalsImpl(*other, deep); }

protected:
    explicit Object(Type type) : type_(type) {}
    virtual ~Object() = default;

    virtual bool equalsImpl(const Object& other, bool deep) const = 0;

private:
    friend class IPtrBase;

    std::atomic<std::int32_t> refCount_{0};
    Type type_;
    std::uint32_t flag_ = 1;
};

// Equality of two possibly null pointers: both null, or equal objects.
bool sameValue(const Object* a, const Object* b, bool deep);

// An entry that counts as absent: none, a reference that resolves to nothing, or null.
bool isAbsent(Object* object);

inline void IPtrBase::retain() const
{
    if (object_)
        object_->refCount_.fetch_add(1, std::memory_order_relaxed);
}

inline void IPtrBase::releaseObject(Object* object)
{
    // acq_rel: the destroying thread must see every write made through other owners.
    if (object && object->refCount_.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete object;
}

} // namespace zpdf
