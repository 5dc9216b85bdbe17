#pragma once
// The events of the WebBrowser control (DWebBrowserEvents2) that the embedded browser acts
// on, decoded from the control's IDispatch::Invoke arguments. Arguments of the wrong type
// are not acted on; other events are ignored.

#include "base/ZString.h"

#include <oaidl.h>

namespace browser {

class BrowserEvents {
public:
    virtual ~BrowserEvents() = default;
    // `frame` is the control or one of its frames. A navigation has its document (which may
    // still be loading), then the document is complete.
    virtual void navigateComplete(IDispatch* frame, const ZString& address) = 0;
    virtual void documentComplete(IDispatch* frame, const ZString& address) = 0;
    // Returns whether to cancel the control's own error page.
    virtual bool navigateError(IDispatch* frame, const ZString& address, long status) = 0;
    // A page asks for a new window; returns whether to cancel it.
    virtual bool newWindow(const ZString& address) = 0;
};

// Hands the event with these arguments to `events`; S_OK, also for an event it ignores.
HRESULT dispatchBrowserEvent(DISPID event, DISPPARAMS* arguments, BrowserEvents& events);

} // namespace browser
