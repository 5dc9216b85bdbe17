#include "browser/InAppAddress.h"

#include "browser/UrlEncoding.h"

#include <random>

namespace browser {

namespace {

const ZChar* const kVendorEndpoint = ZSTR("https://inapp.pryxa.com");

ZString& endpointOverride()
{
    static ZString endpoint;
    return endpoint;
}

} // namespace

ZString inAppEndpoint()
{
    const ZString& endpoint = endpointOverride();
    return endpoint.isEmpty() ? ZString(kVendorEndpoint) : endpoint;
}

void setInAppEndpoint(const ZString& endpoint)
{
    endpointOverride() = endpoint;
}

ZString inAppQuery(const AppInfo& info, const ZString& random, const ZString& extra)
{
    const struct {
        const ZChar* key;
        ZString value;
    } parameters[] = {
        {ZSTR("name="), info.name},
        {ZSTR("&version="), info.version},
        {ZSTR("&lang="), info.language},
        {ZSTR("&installer="), info.installer},
        {ZSTR("&arch="), info.architecture},
        {ZSTR("&updateMode="), info.updateMode},
        {ZSTR("&iid="), info.installationId},
        {ZSTR("&uid="), info.userId},
        {ZSTR("&cid="), info.campaignId},
        {ZSTR("&customBanner="), ZString(info.customBanner ? ZSTR("true") : ZSTR("false"))},
        {ZSTR("&osVersion="), info.osVersion},
        {ZSTR("&osArch="), info.osArchitecture},
        {ZSTR("&lcid="), ZString::fromUInt(info.lcid)},
        {ZSTR("&uLangCode="), info.userLanguageCode},
        {ZSTR("&uCountryCode="), info.userCountryCode},
        {ZSTR("&random="), random},
    };
    ZString query;
    for (const auto& parameter : parameters)
        query += ZString(parameter.key) + urlEncode(parameter.value);
    return query + extra;
}

ZString newRandomValue()
{
    std::random_device device;
    return ZString::fromUInt(device());
}

} // namespace browser
