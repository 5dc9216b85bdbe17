#pragma once
// The container side of one hosted WebBrowser control, as one COM object with one reference
// count and one QueryInterface table: client site, in-place site and frame, the document
// host's UI handler, and the IDispatch that receives both the control's ambient-property
// questions and its events (DWebBrowserEvents2).
//
// What it answers: no context menu, no scroll bars, no border, no help menu, no text
// selection; silent (no script-error or other dialogs); pictures, videos and sounds, no
// Java and no ActiveX controls. The external object and the events go to the owner, until
// detach() is called when the owner closes the control.

#include "browser/BrowserEvents.h"
#include "browser/ComObject.h"

#include <mshtmhst.h>
#include <ole2.h>
#include <wrl/client.h>

namespace browser {

class SiteOwner : public BrowserEvents {
public:
    virtual HWND hostWindow() const = 0;
    // The object that window.external is for the page shown now; null when the page may
    // not have one.
    virtual Microsoft::WRL::ComPtr<IDispatch> externalForPage() = 0;
};

class BrowserSite final : public IOleClientSite,
                          public IOleInPlaceSite,
                          public IOleInPlaceFrame,
                          public IDocHostUIHandler,
                          public IDispatch {
public:
    explicit BrowserSite(SiteOwner& owner) : owner_(&owner) {}
    // The owner is gone: the site answers on, but reaches nothing.
    void detach() { owner_ = nullptr; }

    // IUnknown
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override { return refs_.add(); }
    STDMETHODIMP_(ULONG) Release() override { return refs_.release(this); }

    // IOleClientSite
    STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
    STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker** moniker) override;
    STDMETHODIMP GetContainer(IOleContainer** container) override;
    STDMETHODIMP ShowObject() override { return S_OK; }
    STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
    STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleWindow, for the in-place site and the frame alike
    STDMETHODIMP GetWindow(HWND* window) override;
    STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

    // IOleInPlaceSite
    STDMETHODIMP CanInPlaceActivate() override { return S_OK; }
    STDMETHODIMP OnInPlaceActivate() override { return S_OK; }
    STDMETHODIMP OnUIActivate() override { return S_OK; }
    STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position,
                                  RECT* clip, OLEINPLACEFRAMEINFO* info) override;
    STDMETHODIMP Scroll(SIZE) override { return E_NOTIMPL; }
    STDMETHODIMP OnUIDeactivate(BOOL) override { return S_OK; }
    STDMETHODIMP OnInPlaceDeactivate() override { return S_OK; }
    STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
    STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
    STDMETHODIMP OnPosRectChange(LPCRECT) override { return S_OK; }

    // IOleInPlaceUIWindow and IOleInPlaceFrame: no tool space, menus or status bar
    STDMETHODIMP GetBorder(RECT*) override { return INPLACE_E_NOTOOLSPACE; }
    STDMETHODIMP RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
    STDMETHODIMP SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
    STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) override { return S_OK; }
    STDMETHODIMP InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
    STDMETHODIMP SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
    STDMETHODIMP RemoveMenus(HMENU) override { return E_NOTIMPL; }
    STDMETHODIMP SetStatusText(LPCOLESTR) override { return S_OK; }
    // Also IDocHostUIHandler::EnableModeless.
    STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }
    STDMETHODIMP TranslateAccelerator(MSG*, WORD) override { return S_FALSE; }

    // IDocHostUIHandler
    STDMETHODIMP ShowContextMenu(DWORD, POINT*, IUnknown*, IDispatch*) override { return S_OK; }
    STDMETHODIMP GetHostInfo(DOCHOSTUIINFO* info) override;
    STDMETHODIMP ShowUI(DWORD, IOleInPlaceActiveObject*, IOleCommandTarget*, IOleInPlaceFrame*,
                        IOleInPlaceUIWindow*) override
    {
        return S_OK;
    }
    STDMETHODIMP HideUI() override { return S_OK; }
    STDMETHODIMP UpdateUI() override { return S_OK; }
    STDMETHODIMP OnDocWindowActivate(BOOL) override { return S_OK; }
    STDMETHODIMP OnFrameWindowActivate(BOOL) override { return S_OK; }
    STDMETHODIMP ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) override { return S_OK; }
    STDMETHODIMP TranslateAccelerator(LPMSG, const GUID*, DWORD) override { return S_FALSE; }
    STDMETHODIMP GetOptionKeyPath(LPOLESTR* key, DWORD) override;
    STDMETHODIMP GetDropTarget(IDropTarget*, IDropTarget** target) override;
    STDMETHODIMP GetExternal(IDispatch** external) override;
    STDMETHODIMP TranslateUrl(DWORD, LPWSTR, LPWSTR* translated) override;
    STDMETHODIMP FilterDataObject(IDataObject*, IDataObject** filtered) override;

    // IDispatch: ambient properties and DWebBrowserEvents2
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                        UINT*) override;

private:
    ~BrowserSite() = default;
    friend class ComRefCount;

    ComRefCount refs_;
    SiteOwner* owner_;
};

} // namespace browser
