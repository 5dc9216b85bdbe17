#pragma once
// The capture dialog's in-app page: the embedded browser, with the script bridge as the
// external object of its pages. It is the default of screenCapture::inAppPageFactory
// (screencapture/ui/InAppPage.h).
//
// What a page asks of the bridge acts on the dialog around it: close() hides the page (the
// bottom bar's own content shows again), openApp() starts suite programs with the shell's
// "open" verb and shows the About and format options dialogs modal to the dialog, openUrl()
// goes to the default browser, fetchUrl()'s requests run as jobs of the page. When the page
// goes (with the dialog), the bridge is detached, every request is cancelled and its thread
// joined, so nothing of it outlives the dialog; a script engine that still holds the bridge
// gets "the page is closed".

#include "browser/EmbeddedBrowser.h"
#include "browser/JobRunner.h"
#include "browser/WebBridge.h"
#include "screencapture/ui/InAppPage.h"

#include <memory>

namespace browser {

class InAppBrowserPage final : public screenCapture::InAppPage, private BridgeHost {
public:
    explicit InAppBrowserPage(std::unique_ptr<EmbeddedBrowser> browser);
    ~InAppBrowserPage() override;

    void setBounds(const RECT& bounds) override { browser_->setBounds(bounds); }
    void navigate(const ZString& address) override { browser_->navigate(address); }

    EmbeddedBrowser& browser() { return *browser_; }
    IDispatch* bridge() const { return bridge_.Get(); }

private:
    HWND dialog() const { return GetParent(browser_->window()); }

    // BridgeHost
    void closePage() override { browser_->dismiss(); }
    void openInBrowser(const ZString& url) override;
    bool startProgram(const ZString& program, const ZString& arguments) override;
    void showAbout() override;
    void showFormatOptions() override;
    JobRunner& jobs() override { return jobs_; }

    std::unique_ptr<EmbeddedBrowser> browser_;
    Microsoft::WRL::ComPtr<WebBridge> bridge_; // let go before the browser
    JobRunner jobs_;                           // cancelled and joined first
};

// An InAppBrowserPage in `parent`; null when its window cannot be made.
std::unique_ptr<screenCapture::InAppPage> makeInAppPage(HWND parent);

} // namespace browser
