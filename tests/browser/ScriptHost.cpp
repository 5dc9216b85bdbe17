#include "tests/browser/ScriptHost.h"

#include <oleauto.h>

// The engine asks its site for the named item's object and reports script errors to it.
class ScriptHost::Site final : public IActiveScriptSite {
public:
    explicit Site(IDispatch* external) : external_(external) {}

    std::wstring takeError()
    {
        std::wstring error;
        error.swap(error_);
        return error;
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (iid == IID_IUnknown || iid == __uuidof(IActiveScriptSite)) {
            *object = static_cast<IActiveScriptSite*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --references_;
        if (!left)
            delete this;
        return left;
    }

    STDMETHODIMP GetLCID(LCID* locale) override
    {
        *locale = LOCALE_USER_DEFAULT;
        return S_OK;
    }
    STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item, ITypeInfo** info) override
    {
        if (info)
            *info = nullptr;
        if (item)
            *item = nullptr;
        if (std::wstring(name) != L"external" || !(mask & SCRIPTINFO_IUNKNOWN) || !item)
            return TYPE_E_ELEMENTNOTFOUND;
        external_->AddRef();
        *item = external_.Get();
        return S_OK;
    }
    STDMETHODIMP GetDocVersionString(BSTR* version) override
    {
        *version = nullptr;
        return E_NOTIMPL;
    }
    STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
    STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
    STDMETHODIMP OnScriptError(IActiveScriptError* error) override
    {
        EXCEPINFO info{};
        error->GetExceptionInfo(&info);
        if (info.pfnDeferredFillIn)
            info.pfnDeferredFillIn(&info);
        error_ = info.bstrDescription ? info.bstrDescription : L"(no description)";
        SysFreeString(info.bstrSource);
        SysFreeString(info.bstrDescription);
        SysFreeString(info.bstrHelpFile);
        return S_OK;
    }
    STDMETHODIMP OnEnterScript() override { return S_OK; }
    STDMETHODIMP OnLeaveScript() override { return S_OK; }

private:
    ~Site() = default;
    ULONG references_ = 1;
    Microsoft::WRL::ComPtr<IDispatch> external_;
    std::wstring error_;
};

ScriptHost::ScriptHost(IDispatch* external)
{
    *site_.GetAddressOf() = new Site(external); // MinGW's Attach would add a reference
    CLSID jscript{};
    if (FAILED(CLSIDFromProgID(L"JScript", &jscript))
        || FAILED(CoCreateInstance(jscript, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript),
                                   reinterpret_cast<void**>(engine_.GetAddressOf()))))
        return;
    Microsoft::WRL::ComPtr<IActiveScriptParse> parse;
    if (FAILED(engine_->QueryInterface(__uuidof(IActiveScriptParse), reinterpret_cast<void**>(parse.GetAddressOf())))
        || FAILED(engine_->SetScriptSite(site_.Get())) || FAILED(parse->InitNew())
        || FAILED(engine_->AddNamedItem(L"external", SCRIPTITEM_ISVISIBLE))
        || FAILED(engine_->SetScriptState(SCRIPTSTATE_CONNECTED)))
        return;
    parse_ = parse;
}

ScriptHost::~ScriptHost()
{
    if (engine_)
        engine_->Close(); // lets go of the site and of the named item's object
}

std::wstring ScriptHost::parse(const std::wstring& text, DWORD flags, VARIANT* result)
{
    if (!parse_)
        return L"error: no script engine";
    EXCEPINFO exception{};
    const HRESULT status =
        parse_->ParseScriptText(text.c_str(), nullptr, nullptr, nullptr, 0, 0, flags, result, &exception);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    const std::wstring error = site_->takeError();
    if (FAILED(status) || !error.empty())
        return L"error: " + (error.empty() ? std::wstring(L"script failed") : error);
    return std::wstring();
}

std::wstring ScriptHost::eval(const std::wstring& expression)
{
    VARIANT value;
    VariantInit(&value);
    std::wstring text = parse(expression, SCRIPTTEXT_ISEXPRESSION, &value);
    if (text.empty()) {
        if (value.vt == VT_EMPTY) {
            text = L"undefined";
        } else if (SUCCEEDED(VariantChangeType(&value, &value, VARIANT_ALPHABOOL, VT_BSTR))) {
            text.assign(value.bstrVal, SysStringLen(value.bstrVal));
        } else {
            text = L"(no text)";
        }
    }
    VariantClear(&value);
    return text;
}

std::wstring ScriptHost::run(const std::wstring& statements)
{
    return parse(statements, 0, nullptr);
}
