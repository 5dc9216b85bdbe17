#include "screencapture/ui/InAppPage.h"

#include "companions/settings/Settings.h"

namespace screenCapture {

InAppPageFactory inAppPageFactory = nullptr;

bool embeddedBrowserEnabled()
{
    if (progConfig_getBool(L"NoEmbeddedBrowser", false))
        return false;
    return config_getBool(L"feature.embeddedBrowser", false);
}

ZString inAppPageAddress(const ZString& query)
{
    return ZString(L"https://inapp.pryxa.com/inapp/screenCapture/") + query;
}

} // namespace screenCapture
