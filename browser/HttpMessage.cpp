#include "browser/HttpMessage.h"

namespace browser {

namespace {

// tchar of RFC 9110: the characters of methods and header names.
bool isTokenChar(ZChar c)
{
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
        return true;
    return c != 0 && ZString(u"!#$%&'*+-.^_`|~").find(c) != ZString::npos;
}

bool isToken(const ZString& text)
{
    if (text.isEmpty())
        return false;
    for (ZChar c : text.units())
        if (!isTokenChar(c))
            return false;
    return true;
}

bool isValidHeader(const HttpHeader& header)
{
    return isToken(header.name) && header.value.find(u'\r') == ZString::npos
        && header.value.find(u'\n') == ZString::npos && header.value.find(ZChar(0)) == ZString::npos;
}

// The value of parameter `name` in a header value such as "text/html; charset=utf-8".
ZString parameter(const ZString& value, const ZString& name)
{
    int start = value.find(u';');
    while (start != ZString::npos) {
        const int end = value.find(u';', start + 1);
        const ZString part = value.substring(start + 1, end == ZString::npos ? ZString::npos : end - start - 1);
        const int equals = part.find(u'=');
        if (equals != ZString::npos && part.substring(0, equals).trim().equalsNoCase(name)) {
            ZString result = part.substring(equals + 1).trim();
            if (result.length() >= 2 && result[0] == u'"' && result[result.length() - 1] == u'"')
                result = result.substring(1, result.length() - 2);
            return result;
        }
        start = end;
    }
    return ZString();
}

// windows-1252 at 0x80..0x9F; the rest of the bytes are Latin-1. Undefined bytes stay C1.
constexpr char16_t windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

ZString fromWindows1252(std::string_view bytes)
{
    ZString::Storage units(bytes.size(), 0);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const unsigned char byte = static_cast<unsigned char>(bytes[i]);
        units[i] = static_cast<ZChar>(byte >= 0x80 && byte < 0xA0 ? windows1252High[byte - 0x80] : byte);
    }
    return ZString(std::move(units));
}

bool isLatinCharset(const ZString& charset)
{
    for (const char16_t* name : {u"iso-8859-1", u"latin1", u"l1", u"us-ascii", u"ascii", u"windows-1252", u"cp1252"})
        if (charset.equalsNoCase(name))
            return true;
    return false;
}

} // namespace

const ZString* findHeader(const HttpHeaders& headers, const ZString& name)
{
    for (const HttpHeader& header : headers)
        if (header.name.equalsNoCase(name))
            return &header.value;
    return nullptr;
}

ZString HttpResponse::text() const
{
    return decodeText(body, findHeader(headers, u"Content-Type"));
}

bool isHttpUrl(const ZString& url)
{
    for (const char16_t* scheme : {u"http://", u"https://"}) {
        const ZString prefix(scheme);
        if (url.length() > prefix.length() && url.substring(0, prefix.length()).equalsNoCase(prefix)) {
            const ZChar first = url[prefix.length()];
            return first != u'/' && first != u'?' && first != u'#' && first != u':';
        }
    }
    return false;
}

ZString requestProblem(const HttpRequest& request)
{
    if (!isHttpUrl(request.url))
        return u"Only http and https addresses can be fetched";
    if (!isToken(request.method))
        return ZString(u"The method \"") + request.method + u"\" is not a valid HTTP method";
    for (const HttpHeader& header : request.headers)
        if (!isValidHeader(header))
            return ZString(u"The request header \"") + header.name + u"\" is not valid";
    const bool bodiless = request.method.equalsNoCase(u"GET") || request.method.equalsNoCase(u"HEAD");
    if (bodiless && !request.body.empty())
        return u"A GET or HEAD request cannot have a body";
    return ZString();
}

// status-line = HTTP-version SP status-code SP [ reason-phrase ]; field-line = name ":" value
ResponseHead parseResponseHead(const ZString& raw)
{
    ResponseHead head;
    int start = 0;
    bool first = true;
    while (start < raw.length()) {
        int end = raw.find(u"\r\n", start);
        if (end == ZString::npos)
            end = raw.length();
        const ZString line = raw.substring(start, end - start);
        start = end + 2;
        if (first) {
            first = false;
            const int space = line.find(u' ');
            if (line.startsWith(u"HTTP/") && space != ZString::npos) {
                const int reason = line.find(u' ', space + 1);
                head.status = line.substring(space + 1, reason == ZString::npos ? ZString::npos : reason - space - 1)
                                  .toIntOr(0);
                head.statusText = reason == ZString::npos ? ZString() : line.substring(reason + 1).trim();
                continue;
            }
        }
        const int colon = line.find(u':');
        if (colon > 0)
            head.headers.push_back({line.substring(0, colon).trim(), line.substring(colon + 1).trim()});
    }
    return head;
}

ZString decodeText(std::string_view bytes, const ZString* contentType)
{
    if (contentType && isLatinCharset(parameter(*contentType, u"charset")))
        return fromWindows1252(bytes);
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
        bytes.remove_prefix(3);
    return ZString::fromUtf8(bytes);
}

} // namespace browser
