#include "browser/PryxaProtocol.h"

#include "browser/ResourceAddress.h"

#include <wrl/client.h>

#include <algorithm>
#include <cstring>


namespace browser {

STDMETHODIMP PryxaProtocol::QueryInterface(REFIID iid, void** result)
{
    if (!result)
        return E_POINTER;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IInternetProtocolRoot) || iid == __uuidof(IInternetProtocol)) {
        *result = static_cast<IInternetProtocol*>(this);
        AddRef();
        return S_OK;
    }
    *result = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP PryxaProtocol::Start(LPCWSTR address, IInternetProtocolSink* sink, IInternetBindInfo*, DWORD,
                                  HANDLE_PTR)
{
    if (!address || !sink)
        return E_POINTER;
    return guarded([&] {
        std::optional<Content> content = content_->find(address);
        if (!content) {
            // Reported rather than returned: a binding whose Start fails is never released
            // by Wine's urlmon, and a reported result ends it as any other.
            sink->ReportResult(resourceName(address) ? INET_E_RESOURCE_NOT_FOUND : INET_E_INVALID_URL, 0, nullptr);
            return S_OK;
        }
        served_ = std::move(*content);
        position_ = 0;
        // All data is there at once: urlmon may read it during ReportData.
        const auto size = static_cast<ULONG>(served_.bytes.size());
        sink->ReportProgress(BINDSTATUS_VERIFIEDMIMETYPEAVAILABLE, served_.mimeType.c_str());
        sink->ReportData(BSCF_FIRSTDATANOTIFICATION | BSCF_LASTDATANOTIFICATION | BSCF_DATAFULLYAVAILABLE, size, size);
        sink->ReportResult(S_OK, 0, nullptr);
        return S_OK;
    });
}

STDMETHODIMP PryxaProtocol::Read(void* buffer, ULONG size, ULONG* read)
{
    if (!buffer && size)
        return E_POINTER;
    const size_t count = std::min<size_t>(size, served_.bytes.size() - position_);
    if (count)
        std::memcpy(buffer, served_.bytes.data() + position_, count);
    position_ += count;
    if (read)
        *read = static_cast<ULONG>(count);
    return position_ < served_.bytes.size() ? S_OK : S_FALSE;
}

STDMETHODIMP PryxaProtocolFactory::QueryInterface(REFIID iid, void** result)
{
    if (!result)
        return E_POINTER;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IClassFactory)) {
        *result = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    *result = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP PryxaProtocolFactory::CreateInstance(IUnknown* outer, REFIID iid, void** result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    if (outer)
        return CLASS_E_NOAGGREGATION;
    return guarded([&] {
        return makeComObject<PryxaProtocol>(content_)->QueryInterface(iid, result);
    });
}

} // namespace browser
