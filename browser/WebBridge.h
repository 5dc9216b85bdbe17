#pragma once
// The web bridge: the object that an in-app page reaches as `window.external`. Only pages
// of the in-app endpoint and of pryxa:// get it (the embedded browser decides); everything
// it offers is still checked here, since a page's script is not trusted.
//
// Methods (arguments in script terms; a wrong type, a missing or extra argument, or an
// over-long text raises a script exception whose message says what was wrong):
//
//   getAppInfo()                      JSON text: name, version, lang, arch, osVersion,
//                                     osArch, lcid, installer, updateMode
//   config(key)                       the user value `key`, a number
//   config(key, value)                stores it; true if it was stored
//                                     (keys: those of pageConfigKeys only)
//   fetchUrl(url, callback[, options]) runs an HTTP request in the background and calls
//                                     callback(status, headers, text, error) on the page's
//                                     thread: status 0 and an error text when it failed,
//                                     headers as a JSON object text. options: a JSON object
//                                     text {"method", "headers": {..}, "body", "timeout" (ms),
//                                     "maxBytes"} (browser/FetchOptions.h). Returns the
//                                     request's number. At most 256 requests at once.
//   openApp(name[, arguments])        starts a suite program of the allow-list from the
//                                     program folder ("BinDir"), or opens the About or
//                                     format options dialog; true if it was started.
//                                     arguments: plain words separated by blanks; no word
//                                     may look like an option or a path.
//   openUrl(url)                      an http or https address in the default browser
//   close()                           hides the page
//   lang(key)                         the language text of `key` (the key itself if none)
//
// The bridge lives on the page's (the dialog's) thread and is called only there. The page's
// surroundings may go before the script engine lets go of the bridge: after detach(), every
// call raises "the page is closed".

#include "base/ZString.h"
#include "browser/ComObject.h"

#include <oaidl.h>
#include <wrl/client.h>

namespace browser {

class JobRunner;
class ScriptArguments;

// What the bridge asks of the program around the page. The in-app page supplies one that
// acts; tests supply their own.
class BridgeHost {
public:
    virtual ~BridgeHost() = default;
    virtual void closePage() = 0;
    virtual void openInBrowser(const ZString& url) = 0;
    // `program` is a full path; `arguments` a command line of quoted items.
    virtual bool startProgram(const ZString& program, const ZString& arguments) = 0;
    virtual void showAbout() = 0;
    virtual void showFormatOptions() = 0;
    // Runs fetchUrl's requests; going with the page, it cancels them, so no callback comes.
    virtual JobRunner& jobs() = 0;
};

// The user values a page may read and write.
extern const wchar_t* const pageConfigKeys[];

struct AppInfo;
// getAppInfo()'s answer for these facts.
ZString appInfoJson(const AppInfo& info);

// Made with makeComObject<WebBridge>(host); `host` must outlive the bridge or detach it.
class WebBridge final : public IDispatch {
public:
    explicit WebBridge(BridgeHost& host) : host_(&host) {}

    void detach() { host_ = nullptr; }

    // IUnknown
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    // IDispatch: names are matched exactly, as script is case-sensitive.
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                        EXCEPINFO* exception, UINT* argumentError) override;

    using Method = void (WebBridge::*)(const ScriptArguments& args, VARIANT& result);

private:
    friend struct WebBridgeMethods;

    BridgeHost& host() const;

    void getAppInfo(const ScriptArguments& args, VARIANT& result);
    void config(const ScriptArguments& args, VARIANT& result);
    void fetchUrl(const ScriptArguments& args, VARIANT& result);
    void openApp(const ScriptArguments& args, VARIANT& result);
    void openUrl(const ScriptArguments& args, VARIANT& result);
    void close(const ScriptArguments& args, VARIANT& result);
    void lang(const ScriptArguments& args, VARIANT& result);

    ComRefCount refs_;
    BridgeHost* host_;
    int pendingFetches_ = 0;
};

} // namespace browser
