#pragma once
// The in-app page that the capture dialog can show over its bottom bar: a hosted browser
// of the embedded-browser subsystem, reached through a factory that the subsystem installs.
// Without one, or when it cannot make a page, the bar shows the markup's own content.

#include "base/ZString.h"

#include <windows.h>

#include <memory>

namespace screenCapture {

class InAppPage {
public:
    virtual ~InAppPage() = default;
    // In the parent's client coordinates.
    virtual void setBounds(const RECT& bounds) = 0;
    virtual void navigate(const ZString& address) = 0;
};

// Makes a page as a child of `parent`; null when it cannot.
using InAppPageFactory = std::unique_ptr<InAppPage> (*)(HWND parent);
extern InAppPageFactory inAppPageFactory;

// The program's feature switch: the configuration value "feature.embeddedBrowser" (off
// unless set), switched off by the program setting "NoEmbeddedBrowser".
bool embeddedBrowserEnabled();

// The page's address: the vendor's in-app endpoint, the dialog's path and the program's
// common in-app query string.
ZString inAppPageAddress(const ZString& query);

} // namespace screenCapture
