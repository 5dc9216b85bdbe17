#pragma once
// Runs JScript with one named item, "external", as an in-app page's script reaches the web
// bridge: calls go through IDispatch exactly as from a page. The engine is the system's
// own JScript, found by its ProgID.

#include <activscp.h>
#include <wrl/client.h>

#include <string>

class ScriptHost {
public:
    // COM must be initialised on the thread; `external` is what the script sees.
    explicit ScriptHost(IDispatch* external);
    ~ScriptHost();
    ScriptHost(const ScriptHost&) = delete;
    ScriptHost& operator=(const ScriptHost&) = delete;

    bool ready() const { return parse_ != nullptr; }
    // The value of an expression as text ("undefined" when there is none), or "error: "
    // followed by the script exception's message.
    std::wstring eval(const std::wstring& expression);
    // Runs statements; "" or "error: ...".
    std::wstring run(const std::wstring& statements);

private:
    class Site;
    std::wstring parse(const std::wstring& text, DWORD flags, VARIANT* result);

    Microsoft::WRL::ComPtr<Site> site_;
    Microsoft::WRL::ComPtr<IActiveScript> engine_;
    Microsoft::WRL::ComPtr<IActiveScriptParse> parse_;
};
