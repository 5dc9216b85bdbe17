#include "browser/PageOrigin.h"

#include "browser/ResourceAddress.h"

namespace browser {

bool mayUseBridge(const ZString& pageAddress, const ZString& endpoint)
{
    if (resourceName(pageAddress))
        return true;
    if (endpoint.isEmpty() || !pageAddress.substring(0, endpoint.length()).equalsNoCase(endpoint))
        return false;
    if (pageAddress.length() == endpoint.length())
        return true;
    const ZChar next = pageAddress[endpoint.length()];
    return next == '/' || next == '?' || next == '#';
}

bool isWebAddress(const ZString& address)
{
    for (const ZChar* scheme : {ZSTR("http://"), ZSTR("https://")}) {
        const ZString prefix(scheme);
        if (address.length() > prefix.length() && address.substring(0, prefix.length()).equalsNoCase(prefix))
            return true;
    }
    return false;
}

} // namespace browser
