#pragma once
// The capture dialog's in-app page: the embedded browser as the dialog's InAppPage. It is
// the default of screenCapture::inAppPageFactory (screencapture/ui/InAppPage.h).

#include "screencapture/ui/InAppPage.h"

namespace browser {

// An EmbeddedBrowser in `parent`; null when its window cannot be made.
std::unique_ptr<screenCapture::InAppPage> makeInAppPage(HWND parent);

} // namespace browser
