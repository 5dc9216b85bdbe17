#pragma once
// The asynchronous pluggable protocol of the "pryxa" scheme and its class factory. A
// protocol object serves one address: Start looks the address up in the content table and,
// when it is there, reports the MIME type, all data at once and the result, and then hands
// the bytes out through Read; an address that is not a resource address fails with
// INET_E_INVALID_URL, one that nobody serves with INET_E_RESOURCE_NOT_FOUND.
// ProtocolRegistration makes urlmon use the factory for the scheme.

#include "browser/ComObject.h"
#include "browser/ProtocolContent.h"

#include <urlmon.h>

#include <memory>

namespace browser {

class PryxaProtocol final : public IInternetProtocol {
public:
    explicit PryxaProtocol(std::shared_ptr<const ProtocolContent> content) : content_(std::move(content)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override { return refs_.add(); }
    STDMETHODIMP_(ULONG) Release() override { return refs_.release(this); }

    STDMETHODIMP Start(LPCWSTR address, IInternetProtocolSink* sink, IInternetBindInfo* bindInfo, DWORD flags,
                       HANDLE_PTR reserved) override;
    STDMETHODIMP Continue(PROTOCOLDATA*) override { return S_OK; }
    STDMETHODIMP Abort(HRESULT, DWORD) override { return S_OK; }
    STDMETHODIMP Terminate(DWORD) override { return S_OK; }
    STDMETHODIMP Suspend() override { return E_NOTIMPL; }
    STDMETHODIMP Resume() override { return E_NOTIMPL; }
    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override;
    STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    STDMETHODIMP LockRequest(DWORD) override { return S_OK; }
    STDMETHODIMP UnlockRequest() override { return S_OK; }

private:
    ~PryxaProtocol() = default;
    friend class ComRefCount;

    ComRefCount refs_;
    std::shared_ptr<const ProtocolContent> content_;
    Content served_;
    size_t position_ = 0;
};

class PryxaProtocolFactory final : public IClassFactory {
public:
    explicit PryxaProtocolFactory(std::shared_ptr<const ProtocolContent> content) : content_(std::move(content)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override { return refs_.add(); }
    STDMETHODIMP_(ULONG) Release() override { return refs_.release(this); }

    // Aggregation is refused; urlmon then asks again without an outer object.
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** result) override;
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

private:
    ~PryxaProtocolFactory() = default;
    friend class ComRefCount;

    ComRefCount refs_;
    std::shared_ptr<const ProtocolContent> content_;
};

} // namespace browser
