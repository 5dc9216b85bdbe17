#include "browser/WebBridge.h"

#include "base/win/TempFolder.h"
#include "browser/AppInfo.h"
#include "browser/Cancellation.h"
#include "browser/FetchOptions.h"
#include "browser/HttpClient.h"
#include "browser/JobRunner.h"
#include "browser/Json.h"
#include "browser/ScriptArguments.h"
#include "companions/language/Language.h"
#include "companions/settings/Settings.h"
#include "screencapture/FileHandlerArgs.h"

#include <oleauto.h>

#include <memory>
#include <new>
#include <vector>

namespace browser {

const wchar_t* const pageConfigKeys[] = {L"screenCapture.lastMode", L"screenCapture.lastTarget", nullptr};

namespace {

// Longer texts than these are refused: nothing a page legitimately passes comes near them.
constexpr int kMaxKey = 256;
constexpr int kMaxUrl = 2048;
constexpr int kMaxArguments = 1024;
constexpr int kMaxFetchOptions = 1024 * 1024; // a request body included
constexpr int kMaxPendingFetches = 256;

struct MethodEntry {
    const wchar_t* name;
    WebBridge::Method method;
};

enum class AppKind { program, about, formatOptions };

struct PageApp {
    const wchar_t* name;
    AppKind kind;
    const wchar_t* file; // in the program folder, for programs
};

const PageApp kPageApps[] = {
    {L"assistant", AppKind::program, L"pryxa-Assistant.exe"},
    {L"about", AppKind::about, nullptr},
    {L"formatOptions", AppKind::formatOptions, nullptr},
};

void setText(VARIANT& result, const ZString& text)
{
    result.vt = VT_BSTR;
    result.bstrVal = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.length()));
    if (!result.bstrVal)
        throw std::bad_alloc();
}

void setBool(VARIANT& result, bool value)
{
    result.vt = VT_BOOL;
    result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

// A BSTR argument of a call into script, or an empty one when memory ran out.
VARIANT textArgument(const ZString& text)
{
    VARIANT value;
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.length()));
    return value;
}

// callback(status, headers, text, error) on the page's thread.
void callBack(IDispatch* callback, const HttpResponse& response)
{
    VARIANT args[4]; // the last argument first
    args[3].vt = VT_I4;
    args[3].lVal = response.ok() ? response.status : 0;
    args[2] = textArgument(headersJson(response.headers));
    args[1] = textArgument(response.ok() ? response.text() : ZString());
    args[0] = textArgument(response.error);
    DISPPARAMS params{args, nullptr, 4, 0};
    // What the page's function does, throws or answers is its own affair.
    callback->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    for (VARIANT& arg : args)
        VariantClear(&arg);
}

bool isPageConfigKey(const ZString& key)
{
    for (const wchar_t* const* allowed = pageConfigKeys; *allowed; ++allowed) {
        if (key == ZString(*allowed))
            return true;
    }
    return false;
}

bool startsWithNoCase(const ZString& text, const ZString& prefix)
{
    return text.substring(0, prefix.length()).equalsNoCase(prefix);
}

// A word a page may pass to a program: no option, no path, no quoting games.
bool isPlainWord(const ZString& word)
{
    if (word.isEmpty() || word[0] == '-' || word[0] == '/')
        return false;
    for (const ZChar unit : word.units()) {
        const bool allowed = (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z')
                             || (unit >= '0' && unit <= '9') || unit == '.' || unit == '_' || unit == '='
                             || unit == '+' || unit == '-' || unit == ',';
        if (!allowed)
            return false;
    }
    return true;
}

std::vector<ZString> splitWords(const ZString& text)
{
    std::vector<ZString> words;
    int start = 0;
    while (start < text.length()) {
        int end = text.find(ZChar(' '), start);
        if (end == ZString::npos)
            end = text.length();
        if (end > start)
            words.push_back(text.substring(start, end - start));
        start = end + 1;
    }
    return words;
}

} // namespace

ZString appInfoJson(const AppInfo& info)
{
    const auto text = [](const ZString& value) { return JsonValue(value); };
    return writeJson(JsonValue(JsonValue::Object{
        {u"name", text(info.name)},
        {u"version", text(info.version)},
        {u"lang", text(info.language)},
        {u"arch", text(info.architecture)},
        {u"osVersion", text(info.osVersion)},
        {u"osArch", text(info.osArchitecture)},
        {u"lcid", JsonValue(static_cast<double>(info.lcid))},
        {u"installer", text(info.installer)},
        {u"updateMode", text(info.updateMode)},
    }));
}

BridgeHost& WebBridge::host() const
{
    if (!host_)
        throw ScriptError(ZString(u"the page is closed"));
    return *host_;
}

// --- the methods ------------------------------------------------------------------------

void WebBridge::getAppInfo(const ScriptArguments& args, VARIANT& result)
{
    args.expectCount(0, 0);
    setText(result, appInfoJson(gatherAppInfo()));
}

void WebBridge::config(const ScriptArguments& args, VARIANT& result)
{
    args.expectCount(1, 2);
    const ZString key = args.text(0, kMaxKey);
    if (!isPageConfigKey(key))
        throw ScriptError(ZString(u"config: \"") + key + ZString(u"\" is not a value that pages may use"));
    if (!args.has(1)) {
        result.vt = VT_R8; // a script number holds every DWORD
        result.dblVal = userConfig_getDword(key, 0);
        return;
    }
    setBool(result, userConfig_setDword(key, args.dword(1)));
}

void WebBridge::fetchUrl(const ScriptArguments& args, VARIANT& result)
{
    args.expectCount(2, 3);
    auto request = std::make_shared<HttpRequest>();
    request->url = args.text(0, kMaxUrl);
    if (!isHttpUrl(request->url))
        args.refuse(0, u"an http or https address");
    const Microsoft::WRL::ComPtr<IDispatch> callback = args.function(1);
    ZString problem;
    if (args.has(2) && !applyFetchOptions(args.text(2, kMaxFetchOptions), *request, problem))
        throw ScriptError(ZString(u"fetchUrl: ") + problem);
    problem = requestProblem(*request);
    if (!problem.isEmpty())
        throw ScriptError(ZString(u"fetchUrl: ") + problem);
    if (pendingFetches_ >= kMaxPendingFetches)
        throw ScriptError(ZString(u"fetchUrl: too many requests at once"));

    auto response = std::make_shared<HttpResponse>();
    const Microsoft::WRL::ComPtr<WebBridge> self(this);
    const JobId id = host().jobs().post(
        [request, response](const Cancellation& cancellation) { *response = HttpClient().fetch(*request, cancellation); },
        [self, callback, response] {
            --self->pendingFetches_;
            callBack(callback.Get(), *response);
        });
    if (!id)
        throw ScriptError(ZString(u"fetchUrl: the request could not be started"));
    ++pendingFetches_;
    result.vt = VT_R8; // a script number holds every job number there will be
    result.dblVal = static_cast<double>(id);
}

void WebBridge::openApp(const ScriptArguments& args, VARIANT& result)
{
    args.expectCount(1, 2);
    const ZString name = args.text(0, kMaxKey);
    const PageApp* app = nullptr;
    for (const PageApp& candidate : kPageApps) {
        if (name == ZString(candidate.name))
            app = &candidate;
    }
    if (!app)
        throw ScriptError(ZString(u"openApp: \"") + name + ZString(u"\" is not a program that pages may open"));
    const std::vector<ZString> words = args.has(1) ? splitWords(args.text(1, kMaxArguments)) : std::vector<ZString>();
    for (const ZString& word : words) {
        if (!isPlainWord(word))
            args.refuse(1, u"plain words (\"" + word + ZString(u"\" is not)"));
    }
    switch (app->kind) {
    case AppKind::program: {
        const ZString folder = progConfig_getStr(L"BinDir", ZString());
        setBool(result, !folder.isEmpty()
                            && host().startProgram(joinPath(folder, app->file), screenCapture::joinArguments(words)));
        return;
    }
    case AppKind::about:
        host().showAbout();
        break;
    case AppKind::formatOptions:
        host().showFormatOptions();
        break;
    }
    setBool(result, true);
}

void WebBridge::openUrl(const ScriptArguments& args, VARIANT&)
{
    args.expectCount(1, 1);
    const ZString url = args.text(0, kMaxUrl);
    if (!startsWithNoCase(url, u"http://") && !startsWithNoCase(url, u"https://"))
        args.refuse(0, u"an http or https address");
    host().openInBrowser(url);
}

void WebBridge::close(const ScriptArguments& args, VARIANT&)
{
    args.expectCount(0, 0);
    host().closePage();
}

void WebBridge::lang(const ScriptArguments& args, VARIANT& result)
{
    args.expectCount(1, 1);
    setText(result, lang_getStr(args.text(0, kMaxKey)));
}

// --- IDispatch --------------------------------------------------------------------------

struct WebBridgeMethods {
    static constexpr MethodEntry table[] = {
        {L"getAppInfo", &WebBridge::getAppInfo}, {L"config", &WebBridge::config},
        {L"fetchUrl", &WebBridge::fetchUrl},     {L"openApp", &WebBridge::openApp},
        {L"openUrl", &WebBridge::openUrl},       {L"close", &WebBridge::close},
        {L"lang", &WebBridge::lang},
    };
};

namespace {

const auto& kMethods = WebBridgeMethods::table;
constexpr DISPID kFirstId = 1;
constexpr DISPID kMethodCount = static_cast<DISPID>(sizeof kMethods / sizeof kMethods[0]);

void fillException(EXCEPINFO* exception, const ZString& text)
{
    if (!exception)
        return;
    *exception = EXCEPINFO{};
    exception->bstrSource = SysAllocString(L"external");
    exception->bstrDescription = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.length()));
    exception->scode = E_INVALIDARG;
}

} // namespace

STDMETHODIMP WebBridge::QueryInterface(REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) WebBridge::AddRef()
{
    return refs_.add();
}

STDMETHODIMP_(ULONG) WebBridge::Release()
{
    return refs_.release(this);
}

STDMETHODIMP WebBridge::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = 0;
    return S_OK;
}

STDMETHODIMP WebBridge::GetTypeInfo(UINT, LCID, ITypeInfo** info)
{
    if (info)
        *info = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP WebBridge::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!names || !ids)
        return E_POINTER;
    HRESULT status = S_OK;
    for (UINT i = 0; i < count; ++i) {
        ids[i] = DISPID_UNKNOWN;
        // Only the method's name itself (i == 0) can be known: methods take no named arguments.
        for (DISPID m = 0; i == 0 && names[i] && m < kMethodCount; ++m) {
            if (ZString(names[i]) == ZString(kMethods[m].name))
                ids[i] = kFirstId + m;
        }
        if (ids[i] == DISPID_UNKNOWN)
            status = DISP_E_UNKNOWNNAME;
    }
    return status;
}

STDMETHODIMP WebBridge::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                               EXCEPINFO* exception, UINT*)
{
    if (id < kFirstId || id >= kFirstId + kMethodCount)
        return DISP_E_MEMBERNOTFOUND;
    if (!(flags & DISPATCH_METHOD))
        return DISP_E_MEMBERNOTFOUND; // methods only: nothing here can be read or assigned
    if (params && params->cNamedArgs > 0)
        return DISP_E_NONAMEDARGS;
    const MethodEntry& entry = kMethods[id - kFirstId];
    VARIANT value;
    VariantInit(&value);
    try {
        const DISPPARAMS none{};
        (this->*entry.method)(ScriptArguments(ZString(entry.name), params ? *params : none), value);
    } catch (const ScriptError& error) {
        VariantClear(&value);
        fillException(exception, error.text());
        return DISP_E_EXCEPTION;
    } catch (const std::bad_alloc&) {
        VariantClear(&value);
        fillException(exception, ZString(entry.name) + ZString(u": out of memory"));
        return DISP_E_EXCEPTION;
    }
    if (result)
        *result = value; // the caller owns it now
    else
        VariantClear(&value);
    return S_OK;
}

} // namespace browser
