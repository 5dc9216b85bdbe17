#include "browser/InAppPageFactory.h"

#include "browser/EmbeddedBrowser.h"

namespace browser {

std::unique_ptr<screenCapture::InAppPage> makeInAppPage(HWND parent)
{
    try { // called while the dialog's window is being created: nothing may leave
        return EmbeddedBrowser::create(parent);
    } catch (...) {
        return nullptr;
    }
}

} // namespace browser
