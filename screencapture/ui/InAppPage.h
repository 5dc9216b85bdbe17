#pragma once
// The in-app page that the capture dialog can show over its bottom bar: the embedded
// browser (browser/EmbeddedBrowser.h), reached through a factory so that tests can put
// another page in its place. When the factory makes no page, or the page cannot show one,
// the bar shows the markup's own content.

#include "base/ZString.h"

#include <windows.h>

#include <memory>

namespace screenCapture {

class InAppPage {
public:
    virtual ~InAppPage() = default;
    // In the parent's client coordinates.
    virtual void setBounds(const RECT& bounds) = 0;
    // Starts loading; the page shows itself once it has something to show.
    virtual void navigate(const ZString& address) = 0;
};

// Makes a page as a child of `parent`; null when it cannot. The embedded browser's
// (browser::makeInAppPage) unless a test has replaced it.
using InAppPageFactory = std::unique_ptr<InAppPage> (*)(HWND parent);
extern InAppPageFactory inAppPageFactory;

// The program's feature switch: the configuration value "feature.embeddedBrowser" (off
// unless set), switched off by the program setting "NoEmbeddedBrowser".
bool embeddedBrowserEnabled();

// The page's address: the vendor's in-app endpoint, the dialog's path "/inapp/screenCapture/",
// "?" and the program's common in-app query string.
ZString inAppPageAddress(const ZString& query);

} // namespace screenCapture
