#pragma once
// What the COM objects of the browser share: one reference count per object, which deletes
// the object at zero, and a count of the objects alive in the module, so that tests can see
// that nothing of a browser outlives it. Each class keeps one QueryInterface table of its
// own and forwards AddRef and Release to its count:
//
//     STDMETHODIMP_(ULONG) AddRef() override { return refs_.add(); }
//     STDMETHODIMP_(ULONG) Release() override { return refs_.release(this); }

#include <windows.h>
#include <oleauto.h>

#include <wrl/client.h>

#include <atomic>
#include <new>
#include <utility>

namespace browser {

// COM objects of the browser alive in this module now.
long liveComObjects();

namespace detail {
extern std::atomic<long> liveObjects;
}

class ComRefCount {
public:
    ComRefCount() { ++detail::liveObjects; }
    ~ComRefCount() { --detail::liveObjects; }
    ComRefCount(const ComRefCount&) = delete;
    ComRefCount& operator=(const ComRefCount&) = delete;

    ULONG add() { return static_cast<ULONG>(++count_); }
    template <typename Object>
    ULONG release(Object* object)
    {
        const long left = --count_;
        if (left == 0)
            delete object;
        return static_cast<ULONG>(left);
    }

private:
    std::atomic<long> count_{1}; // the creator's reference
};

// Runs a COM method's body so that no exception leaves it: running out of memory answers
// E_OUTOFMEMORY, anything else E_FAIL.
template <typename Body>
HRESULT guarded(Body body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

// A new object of a class of ours, held by its creator's reference. (MinGW's
// ComPtr::Attach adds a reference of its own, so it must not take a new object.)
template <typename Object, typename... Arguments>
Microsoft::WRL::ComPtr<Object> makeComObject(Arguments&&... arguments)
{
    Microsoft::WRL::ComPtr<Object> object;
    *object.GetAddressOf() = new Object(std::forward<Arguments>(arguments)...);
    return object;
}

// A BSTR that this code owns, freed when the object goes.
class OwnedBstr {
public:
    OwnedBstr() = default;
    explicit OwnedBstr(const wchar_t* text) : text_(SysAllocString(text)) {}
    ~OwnedBstr() { SysFreeString(text_); }
    OwnedBstr(const OwnedBstr&) = delete;
    OwnedBstr& operator=(const OwnedBstr&) = delete;

    BSTR get() const { return text_; }

private:
    BSTR text_ = nullptr;
};

} // namespace browser
