#include "tests/browser/BrowserTestKit.h"

#include "browser/ComObject.h"
#include "tests/support/UiRobot.h"

#include <exdispid.h>
#include <urlmon.h>
#include <wrl/client.h>

#include <utility>
#include <vector>

using Microsoft::WRL::ComPtr;

void BrowserTest::SetUp()
{
    ASSERT_TRUE(ole_ = SUCCEEDED(OleInitialize(nullptr)));
    parent_ = CreateWindowExW(0, L"STATIC", L"Browser test parent", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 100, 100,
                              500, 300, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(parent_, nullptr);
}

void BrowserTest::TearDown()
{
    DestroyWindow(parent_);
    pumpMessages(50);
    EXPECT_EQ(browser::liveComObjects(), 0) << "a site, protocol or factory was not released";
    if (ole_)
        OleUninitialize();
}

namespace {

// Collects what a binding delivers.
class Binding final : public IBindStatusCallback {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        const bool ours = iid == __uuidof(IUnknown) || iid == __uuidof(IBindStatusCallback);
        *result = ours ? static_cast<IBindStatusCallback*>(this) : nullptr;
        return ours ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return refs_.add(); }
    STDMETHODIMP_(ULONG) Release() override { return refs_.release(this); }
    STDMETHODIMP OnStartBinding(DWORD, IBinding*) override { return S_OK; }
    STDMETHODIMP GetPriority(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP OnLowResource(DWORD) override { return S_OK; }
    STDMETHODIMP OnProgress(ULONG, ULONG, ULONG status, LPCWSTR text) override
    {
        if (status == BINDSTATUS_MIMETYPEAVAILABLE && text)
            result.mimeType = text;
        return S_OK;
    }
    STDMETHODIMP OnStopBinding(HRESULT status, LPCWSTR) override
    {
        result.result = status;
        stopped = true;
        return S_OK;
    }
    STDMETHODIMP GetBindInfo(DWORD* flags, BINDINFO*) override
    {
        *flags = BINDF_ASYNCHRONOUS | BINDF_ASYNCSTORAGE | BINDF_PULLDATA | BINDF_NOWRITECACHE;
        return S_OK;
    }
    STDMETHODIMP OnDataAvailable(DWORD, DWORD, FORMATETC*, STGMEDIUM* medium) override
    {
        char buffer[4096];
        ULONG read = 0;
        while (medium->tymed == TYMED_ISTREAM && medium->pstm->Read(buffer, sizeof buffer, &read) != E_PENDING && read)
            result.data.append(buffer, std::exchange(read, 0));
        return S_OK;
    }
    STDMETHODIMP OnObjectAvailable(REFIID, IUnknown*) override { return S_OK; }

    BindResult result;
    bool stopped = false;

private:
    browser::ComRefCount refs_;
};

} // namespace

BindResult bindAsync(const ZString& address)
{
    ComPtr<IMoniker> moniker;
    ComPtr<IBindCtx> context;
    ComPtr<IStream> stream;
    const ComPtr<Binding> binding = browser::makeComObject<Binding>();
    HRESULT started = CreateURLMonikerEx(nullptr, address.c_str(), &moniker, URL_MK_UNIFORM);
    if (SUCCEEDED(started) && SUCCEEDED(started = CreateBindCtx(0, &context))
        && SUCCEEDED(started = RegisterBindStatusCallback(context.Get(), binding.Get(), nullptr, 0))) {
        started = moniker->BindToStorage(context.Get(), nullptr, IID_PPV_ARGS(&stream));
        pumpUntil([&] { return FAILED(started) || binding->stopped; }, 10000);
        RevokeBindStatusCallback(context.Get(), binding.Get());
    }
    BindResult result = binding->result;
    result.result = FAILED(started) ? started : binding->stopped ? result.result : E_PENDING;
    return result;
}

SilentServer::SilentServer()
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    sockaddr_in local = {};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof local;
    socket_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (bind(socket_, reinterpret_cast<sockaddr*>(&local), sizeof local) == 0 && listen(socket_, 8) == 0
        && getsockname(socket_, reinterpret_cast<sockaddr*>(&local), &size) == 0)
        port_ = ntohs(local.sin_port);
}

SilentServer::~SilentServer()
{
    closesocket(socket_);
    WSACleanup();
}

bool fireEvent(IWebBrowser2* control, DISPID event, IDispatch* frame, const wchar_t* address)
{
    ComPtr<IOleObject> object;
    ComPtr<IOleClientSite> site;
    ComPtr<IDispatch> events;
    if (!control || FAILED(control->QueryInterface(IID_PPV_ARGS(&object))) || FAILED(object->GetClientSite(&site))
        || !site || FAILED(site.As(&events))) {
        ADD_FAILURE() << "no site to fire at";
        return false;
    }
    const browser::OwnedBstr url(address), noName(L"");
    VARIANT byValue[4] = {}; // URL, frame name, status, flags
    V_VT(&byValue[0]) = V_VT(&byValue[1]) = VT_BSTR;
    V_BSTR(&byValue[0]) = url.get();
    V_BSTR(&byValue[1]) = noName.get();
    V_VT(&byValue[2]) = V_VT(&byValue[3]) = VT_I4;
    V_I4(&byValue[2]) = 404;
    VARIANT_BOOL cancel = VARIANT_FALSE;
    IDispatch* newWindow = nullptr;
    const auto ref = [](VARTYPE type, void* pointer) { // every pointer of the union is one field
        VARIANT value = {};
        V_VT(&value) = type;
        V_BYREF(&value) = pointer;
        return value;
    };
    const VARIANT urlRef = ref(VT_VARIANT | VT_BYREF, &byValue[0]), cancelRef = ref(VT_BOOL | VT_BYREF, &cancel);
    // Last first, as Invoke takes them.
    std::vector<VARIANT> arguments = {urlRef, ref(VT_DISPATCH, frame)}; // (pDisp, URL)
    if (event == DISPID_NEWWINDOW3) // (ppDisp, Cancel, dwFlags, bstrUrlContext, bstrUrl)
        arguments = {byValue[0], byValue[1], byValue[3], cancelRef, ref(VT_DISPATCH | VT_BYREF, &newWindow)};
    else if (event == DISPID_NAVIGATEERROR) // (pDisp, URL, TargetFrameName, StatusCode, Cancel)
        arguments = {cancelRef, ref(VT_VARIANT | VT_BYREF, &byValue[2]), ref(VT_VARIANT | VT_BYREF, &byValue[1]), urlRef,
                     ref(VT_DISPATCH, frame)};
    DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    EXPECT_EQ(events->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr), S_OK);
    return cancel == VARIANT_TRUE;
}
