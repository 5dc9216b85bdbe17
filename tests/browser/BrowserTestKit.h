#pragma once
// What the browser tests share: OLE and a parent window, binding an address as a page's
// consumer does, a local port that never answers, and the control's events fired at its
// site as the control fires them.

#include "base/ZString.h"

#include <gtest/gtest.h>
#include <ole2.h>
#include <exdisp.h>
#include <winsock2.h>

#include <string>

// OLE, a visible top-level window, and no live COM object of the browser left at the end.
class BrowserTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    HWND parent() const { return parent_; }

private:
    bool ole_ = false;
    HWND parent_ = nullptr;
};

struct BindResult {
    HRESULT result = E_FAIL; // of BindToStorage, or what the binding stopped with
    std::string data;
    std::wstring mimeType;
};

// A URL moniker bound asynchronously to a stream, messages pumped until it has stopped.
BindResult bindAsync(const ZString& address);

// A port on 127.0.0.1 that accepts connections and never answers while the object lives.
class SilentServer {
public:
    SilentServer();
    ~SilentServer();
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;
    ZString address() const { return ZString::format(L"http://127.0.0.1:%d", port_); }

private:
    SOCKET socket_ = INVALID_SOCKET;
    int port_ = 0;
};

// DocumentComplete, NavigateComplete2, NavigateError (status 404) or NewWindow3 for the
// address, fired at the control's client site; `frame` is the control for the top frame
// (NewWindow3 has none). Returns what the site set the Cancel argument to.
bool fireEvent(IWebBrowser2* control, DISPID event, IDispatch* frame, const wchar_t* address);
