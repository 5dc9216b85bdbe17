#include "browser/InAppPageFactory.h"

#include "browser/EmbeddedBrowser.h"

namespace browser {

std::unique_ptr<screenCapture::InAppPage> makeInAppPage(HWND parent)
{
    return EmbeddedBrowser::create(parent);
}

} // namespace browser
