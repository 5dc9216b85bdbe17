#pragma once
// What the browser tests share: OLE on the test's thread, a window to host a browser in,
// binding an address the way a page's consumer does, servers on 127.0.0.1 that never
// answer or are not there, and firing the control's events at its site as the control does.

#include "base/ZString.h"

#include <gtest/gtest.h>
#include <ole2.h>
#include <exdisp.h>
#include <winsock2.h>

#include <string>

// OLE for the test, a visible top-level window, and the live COM objects of the browser
// checked to be none at the end.
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

// Binds the address asynchronously to a stream (a URL moniker with BindToStorage and a
// callback that reads the data as it comes), pumping messages until it has stopped.
BindResult bindAsync(const ZString& address);

// A port on 127.0.0.1 that accepts connections and never answers: navigations to it stay
// loading. Closed when the object goes.
class SilentServer {
public:
    SilentServer();
    ~SilentServer();
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    ZString address() const; // "http://127.0.0.1:<port>"

private:
    SOCKET socket_ = INVALID_SOCKET;
    int port_ = 0;
};

// "http://127.0.0.1:<port>" with a port that nothing listens on.
ZString closedAddress();

// The control's events, fired at its client site as the control fires them. `frame` is the
// control itself for the top frame.
void fireNavigateComplete(IWebBrowser2* control, IDispatch* frame, const wchar_t* address);
void fireDocumentComplete(IWebBrowser2* control, IDispatch* frame, const wchar_t* address);
// Each returns what the site set the Cancel argument to.
bool fireNavigateError(IWebBrowser2* control, IDispatch* frame, const wchar_t* address, long status);
bool fireNewWindow(IWebBrowser2* control, const wchar_t* address);

// The window's rectangle in its parent's client coordinates.
RECT rectInParent(HWND window);
