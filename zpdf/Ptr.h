#pragma once
// The intrusive counted pointer that holds every zpdf object.
//
// The count lives in the object (Object::refCount), so a raw pointer handed out by an
// accessor can be turned back into an owning Ptr at any time. Copies change the count
// atomically; one Ptr itself must not be assigned from two threads at once.

#include <cstddef>
#include <type_traits>
#include <utility>

namespace zpdf {

class Object;

// The untyped part of every Ptr: holds one counted reference to an object, or none.
class IPtrBase {
public:
    Object* rawObject() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

protected:
    IPtrBase() = default;
    explicit IPtrBase(Object* object) : object_(object) { retain(); }
    IPtrBase(const IPtrBase& other) : object_(other.object_) { retain(); }
    IPtrBase(IPtrBase&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
    ~IPtrBase() { release(); }

    void assign(Object* object)
    {
        if (object == object_)
            return;
        Object* old = object_;
        object_ = object;
        retain();
        releaseObject(old);
    }
    void swapWith(IPtrBase& other) noexcept { std::swap(object_, other.object_); }

private:
    // Defined in Object.h, which every user of a Ptr includes.
    inline void retain() const;
    void release() const { releaseObject(object_); }
    static inline void releaseObject(Object* object);

    Object* object_ = nullptr;
};

template <class T>
class Ptr : public IPtrBase {
public:
    Ptr() = default;
    Ptr(std::nullptr_t) {}
    // Takes one more reference to `object` (which may already be owned elsewhere).
    explicit Ptr(T* object) : IPtrBase(object) {}
    Ptr(const Ptr& other) = default;
    Ptr(Ptr&& other) noexcept = default;
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(const Ptr<U>& other) : IPtrBase(static_cast<T*>(other.get())) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(Ptr<U>&& other) noexcept : IPtrBase(std::move(other)) {}

    Ptr& operator=(const Ptr& other)
    {
        assign(other.rawObject());
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept
    {
        Ptr moved(std::move(other));
        swapWith(moved);
        return *this;
    }
    Ptr& operator=(std::nullptr_t)
    {
        assign(nullptr);
        return *this;
    }

    // Borrowed: valid while this Ptr (or another owner) holds the object.
    T* get() const { return static_cast<T*>(rawObject()); }
    T* operator->() const { return get(); }
    T& operator*() const { return *get(); }

    friend bool operator==(const Ptr& a, const Ptr& b) { return a.get() == b.get(); }
    friend bool operator!=(const Ptr& a, const Ptr& b) { return a.get() != b.get(); }
    friend bool operator==(const Ptr& a, std::nullptr_t) { return !a; }
    friend bool operator!=(const Ptr& a, std::nullptr_t) { return bool(a); }
};

// The one way to create an object: the caller owns the returned pointer.
template <class T, class... Args>
Ptr<T> make(Args&&... args)
{
    return Ptr<T>(new T(std::forward<Args>(args)...));
}

// Unchecked downcast; the caller has checked the type id.
template <class T, class U>
Ptr<T> staticPtrCast(const Ptr<U>& ptr)
{
    return Ptr<T>(static_cast<T*>(ptr.get()));
}

} // namespace zpdf
