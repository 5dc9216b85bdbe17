#include "browser/ResourceAddress.h"

namespace browser {

namespace {

const ZChar* const kPrefix = ZSTR("pryxa://res/");

bool isNameCharacter(ZChar c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '-'
           || c == '_';
}

// name = name-character{1,128}, not beginning with "." and without ".."
bool isResourceName(const ZString& name)
{
    if (name.isEmpty() || name.length() > kMaxResourceName || name[0] == '.' || name.find(ZSTR("..")) != ZString::npos)
        return false;
    for (int i = 0; i < name.length(); ++i) {
        if (!isNameCharacter(name[i]))
            return false;
    }
    return true;
}

} // namespace

// address = "pryxa://res/" name [ ("?" | "#") anything ]
std::optional<ZString> resourceName(const ZString& address)
{
    const ZString prefix(kPrefix);
    if (address.length() > kMaxResourceAddress || !address.substring(0, prefix.length()).equalsNoCase(prefix))
        return std::nullopt;
    int end = address.length();
    for (const ZChar stop : {ZChar('?'), ZChar('#')}) {
        const int at = address.find(stop, prefix.length());
        if (at != ZString::npos && at < end)
            end = at;
    }
    ZString name = address.substring(prefix.length(), end - prefix.length());
    if (!isResourceName(name))
        return std::nullopt;
    return name;
}

ZString resourceAddress(const ZString& name)
{
    return ZString(kPrefix) + name;
}

ZString mimeTypeOf(const ZString& name)
{
    static const struct {
        const ZChar* extension;
        const ZChar* type;
    } types[] = {
        {ZSTR(".html"), ZSTR("text/html")},        {ZSTR(".htm"), ZSTR("text/html")},
        {ZSTR(".xhtml"), ZSTR("text/html")},       {ZSTR(".css"), ZSTR("text/css")},
        {ZSTR(".js"), ZSTR("text/javascript")},    {ZSTR(".json"), ZSTR("application/json")},
        {ZSTR(".txt"), ZSTR("text/plain")},        {ZSTR(".png"), ZSTR("image/png")},
        {ZSTR(".gif"), ZSTR("image/gif")},         {ZSTR(".jpg"), ZSTR("image/jpeg")},
        {ZSTR(".jpeg"), ZSTR("image/jpeg")},       {ZSTR(".svg"), ZSTR("image/svg+xml")},
        {ZSTR(".ico"), ZSTR("image/x-icon")},
    };
    const ZString lower = name.toLower();
    for (const auto& type : types) {
        if (lower.endsWith(type.extension))
            return type.type;
    }
    return ZSTR("application/octet-stream");
}

} // namespace browser
