#include "browser/BrowserSite.h"

#include <exdisp.h>
#include <idispids.h>
#include <mshtmdid.h>

namespace browser {

namespace {

constexpr DWORD kHostFlags = DOCHOSTUIFLAG_NO3DBORDER | DOCHOSTUIFLAG_NO3DOUTERBORDER | DOCHOSTUIFLAG_SCROLL_NO
                             | DOCHOSTUIFLAG_DISABLE_HELP_MENU | DOCHOSTUIFLAG_DIALOG | DOCHOSTUIFLAG_THEME;
// Scripts run; plug-ins do not.
constexpr long kDownloadControl = DLCTL_DLIMAGES | DLCTL_VIDEOS | DLCTL_BGSOUNDS | DLCTL_SILENT | DLCTL_NO_JAVA
                                  | DLCTL_NO_DLACTIVEXCTLS | DLCTL_NO_RUNACTIVEXCTLS | DLCTL_NO_BEHAVIORS;

} // namespace

STDMETHODIMP BrowserSite::QueryInterface(REFIID iid, void** result)
{
    if (!result)
        return E_POINTER;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IOleClientSite))
        *result = static_cast<IOleClientSite*>(this);
    else if (iid == __uuidof(IOleWindow) || iid == __uuidof(IOleInPlaceSite))
        *result = static_cast<IOleInPlaceSite*>(this);
    else if (iid == __uuidof(IOleInPlaceUIWindow) || iid == __uuidof(IOleInPlaceFrame))
        *result = static_cast<IOleInPlaceFrame*>(this);
    else if (iid == __uuidof(IDocHostUIHandler))
        *result = static_cast<IDocHostUIHandler*>(this);
    else if (iid == __uuidof(IDispatch) || iid == __uuidof(DWebBrowserEvents2))
        *result = static_cast<IDispatch*>(this);
    else {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP BrowserSite::GetMoniker(DWORD, DWORD, IMoniker** moniker)
{
    if (!moniker)
        return E_POINTER;
    *moniker = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP BrowserSite::GetContainer(IOleContainer** container)
{
    if (!container)
        return E_POINTER;
    *container = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP BrowserSite::GetWindow(HWND* window)
{
    if (!window)
        return E_POINTER;
    *window = owner_ ? owner_->hostWindow() : nullptr;
    return *window ? S_OK : E_FAIL;
}

STDMETHODIMP BrowserSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position,
                                           RECT* clip, OLEINPLACEFRAMEINFO* info)
{
    if (!frame || !document || !position || !clip || !info)
        return E_POINTER;
    *document = nullptr;
    const HWND host = owner_ ? owner_->hostWindow() : nullptr;
    if (!host) {
        *frame = nullptr;
        return E_FAIL;
    }
    *frame = static_cast<IOleInPlaceFrame*>(this);
    AddRef();
    GetClientRect(host, position);
    *clip = *position;
    info->fMDIApp = FALSE;
    info->hwndFrame = GetAncestor(host, GA_ROOT);
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
}

STDMETHODIMP BrowserSite::GetHostInfo(DOCHOSTUIINFO* info)
{
    if (!info || info->cbSize < sizeof(DOCHOSTUIINFO))
        return E_INVALIDARG;
    info->dwFlags = kHostFlags;
    info->dwDoubleClick = DOCHOSTUIDBLCLK_DEFAULT;
    info->pchHostCss = nullptr;
    info->pchHostNS = nullptr;
    return S_OK;
}

STDMETHODIMP BrowserSite::GetOptionKeyPath(LPOLESTR* key, DWORD)
{
    if (!key)
        return E_POINTER;
    *key = nullptr;
    return S_FALSE;
}

STDMETHODIMP BrowserSite::GetDropTarget(IDropTarget*, IDropTarget** target)
{
    if (!target)
        return E_POINTER;
    *target = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP BrowserSite::GetExternal(IDispatch** external)
{
    if (!external)
        return E_POINTER;
    *external = nullptr;
    if (!owner_)
        return S_FALSE;
    return guarded([&] {
        Microsoft::WRL::ComPtr<IDispatch> object = owner_->externalForPage();
        *external = object.Detach();
        return *external ? S_OK : S_FALSE;
    });
}

STDMETHODIMP BrowserSite::TranslateUrl(DWORD, LPWSTR, LPWSTR* translated)
{
    if (!translated)
        return E_POINTER;
    *translated = nullptr;
    return S_FALSE;
}

STDMETHODIMP BrowserSite::FilterDataObject(IDataObject*, IDataObject** filtered)
{
    if (!filtered)
        return E_POINTER;
    *filtered = nullptr;
    return S_FALSE;
}

STDMETHODIMP BrowserSite::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = 0;
    return S_OK;
}

STDMETHODIMP BrowserSite::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT* result,
                                 EXCEPINFO*, UINT*)
{
    switch (member) {
    case DISPID_AMBIENT_DLCONTROL:
        if (!result)
            return E_POINTER;
        V_VT(result) = VT_I4;
        V_I4(result) = kDownloadControl;
        return S_OK;
    case DISPID_AMBIENT_SILENT: // asked by controls that predate DLCTL_SILENT
        if (!result)
            return E_POINTER;
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = VARIANT_TRUE;
        return S_OK;
    default:
        if (member < 0) // other ambient properties: the control's defaults
            return DISP_E_MEMBERNOTFOUND;
        if (!owner_)
            return S_OK;
        return guarded([&] { return dispatchBrowserEvent(member, arguments, *owner_); });
    }
}

} // namespace browser
