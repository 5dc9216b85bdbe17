#include "screencapture/ui/InAppPage.h"

#include "browser/InAppAddress.h"
#include "browser/InAppPageFactory.h"
#include "companions/settings/Settings.h"

namespace screenCapture {

InAppPageFactory inAppPageFactory = browser::makeInAppPage;

bool embeddedBrowserEnabled()
{
    if (progConfig_getBool(L"NoEmbeddedBrowser", false))
        return false;
    return config_getBool(L"feature.embeddedBrowser", false);
}

ZString inAppPageAddress(const ZString& query)
{
    return browser::inAppEndpoint() + ZString(L"/inapp/screenCapture/?") + query;
}

} // namespace screenCapture
