#include "browser/HttpRedirect.h"

#include <algorithm>

namespace browser {

namespace {

bool becomesGet(int status, const ZString& method)
{
    if (status == 303)
        return !method.equalsNoCase(u"HEAD");
    return (status == 301 || status == 302) && method.equalsNoCase(u"POST");
}

void removeHeader(HttpHeaders& headers, const ZString& name)
{
    headers.erase(std::remove_if(headers.begin(), headers.end(),
                                 [&](const HttpHeader& header) { return header.name.equalsNoCase(name); }),
                  headers.end());
}

} // namespace

bool isRedirectStatus(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

HttpRequest redirectedRequest(const HttpRequest& request, int status, const ZString& target)
{
    HttpRequest next = request;
    next.url = target;
    if (becomesGet(status, request.method)) {
        next.method = u"GET";
        next.body.clear();
        removeHeader(next.headers, u"Content-Type");
    }
    if (originOf(target) != originOf(request.url)) {
        removeHeader(next.headers, u"Authorization");
        removeHeader(next.headers, u"Cookie");
    }
    return next;
}

// origin = scheme "://" host [ ":" port ]; the authority ends at the first "/", "?" or "#".
ZString originOf(const ZString& url)
{
    if (!isHttpUrl(url))
        return ZString();
    const ZString lower = url.toLower();
    const int schemeEnd = lower.find(u"://");
    const ZString scheme = lower.substring(0, schemeEnd);
    int end = lower.length();
    for (ZChar stop : {u'/', u'?', u'#'}) {
        const int at = lower.find(stop, schemeEnd + 3);
        if (at != ZString::npos)
            end = std::min(end, at);
    }
    ZString authority = lower.substring(schemeEnd + 3, end - schemeEnd - 3);
    const int at = authority.findLast(u'@');
    if (at != ZString::npos)
        authority = authority.substring(at + 1);
    const int colon = authority.findLast(u':');
    const bool hasPort = colon != ZString::npos && authority.find(u']', colon) == ZString::npos;
    if (!hasPort)
        authority += scheme == u"https" ? ZString(u":443") : ZString(u":80");
    return scheme + u"://" + authority;
}

} // namespace browser
