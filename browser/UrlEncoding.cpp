#include "browser/UrlEncoding.h"

#include <string>

namespace browser {

namespace {

bool isUnreserved(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.'
           || c == '_' || c == '~';
}

} // namespace

ZString urlEncode(const ZString& text)
{
    static const char hex[] = "0123456789ABCDEF";
    const std::string utf8 = text.toUtf8();
    ZString encoded;
    for (const char byte : utf8) {
        const auto c = static_cast<unsigned char>(byte);
        if (isUnreserved(c)) {
            encoded += static_cast<ZChar>(c);
        } else {
            encoded += static_cast<ZChar>('%');
            encoded += static_cast<ZChar>(hex[c >> 4]);
            encoded += static_cast<ZChar>(hex[c & 0xF]);
        }
    }
    return encoded;
}

} // namespace browser
