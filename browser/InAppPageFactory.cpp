#include "browser/InAppPageFactory.h"

#include "browser/DefaultBrowser.h"
#include "companions/about/About.h"
#include "companions/formatoptions/FormatOptions.h"

#include <shellapi.h>

namespace browser {

InAppBrowserPage::InAppBrowserPage(std::unique_ptr<EmbeddedBrowser> browser)
    : browser_(std::move(browser)), bridge_(makeComObject<WebBridge>(static_cast<BridgeHost&>(*this)))
{
    browser_->setExternal(bridge_);
}

InAppBrowserPage::~InAppBrowserPage()
{
    bridge_->detach();
}

void InAppBrowserPage::openInBrowser(const ZString& url)
{
    openInDefaultBrowser(url);
}

bool InAppBrowserPage::startProgram(const ZString& program, const ZString& arguments)
{
    const HINSTANCE started =
        ShellExecuteW(nullptr, L"open", program.c_str(), arguments.c_str(), nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(started) > 32; // ShellExecute's way of saying it worked
}

void InAppBrowserPage::showAbout()
{
    about_show(dialog());
}

void InAppBrowserPage::showFormatOptions()
{
    formatOptions_show(dialog());
}

std::unique_ptr<screenCapture::InAppPage> makeInAppPage(HWND parent)
{
    try { // called while the dialog's window is being created: nothing may leave
        std::unique_ptr<EmbeddedBrowser> browser = EmbeddedBrowser::create(parent);
        return browser ? std::make_unique<InAppBrowserPage>(std::move(browser)) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

} // namespace browser
