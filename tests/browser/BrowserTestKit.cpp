#include "tests/browser/BrowserTestKit.h"

#include "browser/ComObject.h"
#include "tests/support/UiRobot.h"

#include <exdispid.h>
#include <urlmon.h>
#include <wrl/client.h>

#include <vector>

using Microsoft::WRL::ComPtr;

void BrowserTest::SetUp()
{
    ole_ = SUCCEEDED(OleInitialize(nullptr));
    ASSERT_TRUE(ole_);
    parent_ = CreateWindowExW(0, L"STATIC", L"Browser test parent", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 100, 100,
                              500, 300, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(parent_, nullptr);
}

void BrowserTest::TearDown()
{
    if (parent_)
        DestroyWindow(parent_);
    pumpMessages(50);
    EXPECT_EQ(browser::liveComObjects(), 0) << "a site, protocol or factory was not released";
    if (ole_)
        OleUninitialize();
}

namespace {

// Reads what a binding delivers; one reference count, like the objects it tests.
class Binding final : public IBindStatusCallback {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IBindStatusCallback)) {
            *result = nullptr;
            return E_NOINTERFACE;
        }
        *result = static_cast<IBindStatusCallback*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++refs_; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --refs_;
        if (!left)
            delete this;
        return left;
    }
    STDMETHODIMP OnStartBinding(DWORD, IBinding*) override { return S_OK; }
    STDMETHODIMP GetPriority(LONG* priority) override
    {
        *priority = THREAD_PRIORITY_NORMAL;
        return S_OK;
    }
    STDMETHODIMP OnLowResource(DWORD) override { return S_OK; }
    STDMETHODIMP OnProgress(ULONG, ULONG, ULONG status, LPCWSTR text) override
    {
        if ((status == BINDSTATUS_MIMETYPEAVAILABLE || status == BINDSTATUS_VERIFIEDMIMETYPEAVAILABLE) && text)
            result.mimeType = text;
        return S_OK;
    }
    STDMETHODIMP OnStopBinding(HRESULT status, LPCWSTR) override
    {
        result.result = status;
        stopped = true;
        return S_OK;
    }
    STDMETHODIMP GetBindInfo(DWORD* flags, BINDINFO* info) override
    {
        *flags = BINDF_ASYNCHRONOUS | BINDF_ASYNCSTORAGE | BINDF_PULLDATA | BINDF_GETNEWESTVERSION
                 | BINDF_NOWRITECACHE;
        const ULONG size = info->cbSize;
        ZeroMemory(info, size);
        info->cbSize = size;
        return S_OK;
    }
    STDMETHODIMP OnDataAvailable(DWORD, DWORD, FORMATETC*, STGMEDIUM* medium) override
    {
        if (!medium || medium->tymed != TYMED_ISTREAM || !medium->pstm)
            return S_OK;
        char buffer[4096];
        ULONG read = 0;
        HRESULT status;
        do {
            status = medium->pstm->Read(buffer, sizeof buffer, &read);
            result.data.append(buffer, read);
        } while (status == S_OK && read > 0);
        return S_OK;
    }
    STDMETHODIMP OnObjectAvailable(REFIID, IUnknown*) override { return S_OK; }

    BindResult result;
    bool stopped = false;

private:
    ~Binding() = default;
    ULONG refs_ = 1;
};

HRESULT invokeOnSite(IWebBrowser2* control, DISPID event, std::vector<VARIANT> arguments)
{
    ComPtr<IOleObject> object;
    ComPtr<IOleClientSite> site;
    ComPtr<IDispatch> events;
    if (!control || FAILED(control->QueryInterface(IID_PPV_ARGS(&object))) || FAILED(object->GetClientSite(&site))
        || !site || FAILED(site.As(&events)))
        return E_NOINTERFACE;
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    return events->Invoke(event, IID_NULL, LOCALE_SYSTEM_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                          nullptr);
}

VARIANT dispatchValue(IDispatch* object)
{
    VARIANT value;
    V_VT(&value) = VT_DISPATCH;
    V_DISPATCH(&value) = object;
    return value;
}

VARIANT reference(VARIANT* inner)
{
    VARIANT value;
    V_VT(&value) = VT_VARIANT | VT_BYREF;
    V_VARIANTREF(&value) = inner;
    return value;
}

VARIANT flagReference(VARIANT_BOOL* flag)
{
    VARIANT value;
    V_VT(&value) = VT_BOOL | VT_BYREF;
    V_BOOLREF(&value) = flag;
    return value;
}

// A BSTR in a VARIANT, freed when the object goes.
struct TextValue {
    explicit TextValue(const wchar_t* text)
    {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocString(text);
    }
    ~TextValue() { VariantClear(&value); }
    VARIANT value;
};

void fireAddressEvent(IWebBrowser2* control, DISPID event, IDispatch* frame, const wchar_t* address)
{
    TextValue url(address);
    EXPECT_EQ(invokeOnSite(control, event, {dispatchValue(frame), reference(&url.value)}), S_OK);
}

} // namespace

BindResult bindAsync(const ZString& address)
{
    ComPtr<IMoniker> moniker;
    ComPtr<IBindCtx> context;
    BindResult failed;
    if (FAILED(failed.result = CreateURLMonikerEx(nullptr, address.c_str(), &moniker, URL_MK_UNIFORM))
        || FAILED(failed.result = CreateBindCtx(0, &context)))
        return failed;
    const ComPtr<Binding> binding = browser::makeComObject<Binding>();
    if (FAILED(failed.result = RegisterBindStatusCallback(context.Get(), binding.Get(), nullptr, 0)))
        return failed;
    ComPtr<IStream> stream;
    const HRESULT started = moniker->BindToStorage(context.Get(), nullptr, IID_PPV_ARGS(&stream));
    if (SUCCEEDED(started))
        pumpUntil([&] { return binding->stopped; }, 10000);
    RevokeBindStatusCallback(context.Get(), binding.Get());
    BindResult result = binding->result;
    if (FAILED(started))
        result.result = started;
    else if (!binding->stopped)
        result.result = E_PENDING;
    return result;
}

SilentServer::SilentServer()
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    socket_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in local = {};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof local;
    if (socket_ == INVALID_SOCKET || bind(socket_, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0
        || listen(socket_, 8) != 0 || getsockname(socket_, reinterpret_cast<sockaddr*>(&local), &size) != 0)
        return;
    port_ = ntohs(local.sin_port);
}

SilentServer::~SilentServer()
{
    if (socket_ != INVALID_SOCKET)
        closesocket(socket_);
    WSACleanup();
}

ZString SilentServer::address() const
{
    return ZString::format(L"http://127.0.0.1:%d", port_);
}

ZString closedAddress()
{
    SilentServer gone; // its port is free again once it has gone
    const ZString address = gone.address();
    return address;
}

void fireNavigateComplete(IWebBrowser2* control, IDispatch* frame, const wchar_t* address)
{
    fireAddressEvent(control, DISPID_NAVIGATECOMPLETE2, frame, address);
}

void fireDocumentComplete(IWebBrowser2* control, IDispatch* frame, const wchar_t* address)
{
    fireAddressEvent(control, DISPID_DOCUMENTCOMPLETE, frame, address);
}

bool fireNavigateError(IWebBrowser2* control, IDispatch* frame, const wchar_t* address, long status)
{
    TextValue url(address);
    TextValue target(L"");
    VARIANT code;
    V_VT(&code) = VT_I4;
    V_I4(&code) = status;
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(invokeOnSite(control, DISPID_NAVIGATEERROR,
                           {dispatchValue(frame), reference(&url.value), reference(&target.value), reference(&code),
                            flagReference(&cancel)}),
              S_OK);
    return cancel == VARIANT_TRUE;
}

bool fireNewWindow(IWebBrowser2* control, const wchar_t* address)
{
    IDispatch* newWindow = nullptr;
    VARIANT window;
    V_VT(&window) = VT_DISPATCH | VT_BYREF;
    V_DISPATCHREF(&window) = &newWindow;
    VARIANT flags;
    V_VT(&flags) = VT_UI4;
    V_UI4(&flags) = 0;
    TextValue context(L"pryxa://res/page.html");
    TextValue url(address);
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(invokeOnSite(control, DISPID_NEWWINDOW3,
                           {window, flagReference(&cancel), flags, context.value, url.value}),
              S_OK);
    return cancel == VARIANT_TRUE;
}

RECT rectInParent(HWND window)
{
    RECT rect = {};
    GetWindowRect(window, &rect);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}
