#include "browser/HttpClient.h"

#include "browser/Cancellation.h"
#include "browser/ContentDecoding.h"
#include "browser/HttpRedirect.h"
#include "browser/net/WinInetExchange.h"

#include "pryxa/Version.h"

#include <limits>
#include <optional>
#include <vector>

namespace browser {

namespace {

ExchangeLimits limitsOf(const HttpRequest& request)
{
    const auto atLeastOne = [](unsigned ms) { return ms == 0 ? 1u : ms; };
    ExchangeLimits limits{};
    limits.times.connectMs = atLeastOne(request.connectTimeoutMs);
    limits.times.sendMs = atLeastOne(request.sendTimeoutMs);
    limits.times.receiveMs = atLeastOne(request.receiveTimeoutMs);
    limits.deadlineMs = atLeastOne(request.deadlineMs);
    limits.times.deadline = GetTickCount64() + limits.deadlineMs;
    return limits;
}

// What may arrive for a decoded limit: deflate never grows data by more than this.
std::size_t encodedLimit(std::size_t limit)
{
    const std::size_t slack = limit / 64 + 1024;
    return limit > std::numeric_limits<std::size_t>::max() - slack ? std::numeric_limits<std::size_t>::max()
                                                                   : limit + slack;
}

// The caller's own Accept-Encoding is left out: the client decodes only what it offers.
ZString headerLines(const HttpHeaders& headers)
{
    ZString lines = ZString(u"Accept-Encoding: ") + ZString::fromUtf8(acceptedEncodings) + u"\r\n";
    for (const HttpHeader& header : headers)
        if (!header.name.equalsNoCase(u"Accept-Encoding"))
            lines += header.name + u": " + header.value + u"\r\n";
    return lines;
}

// The Location resolved against the address that answered with it.
ZString redirectTarget(const ZString& base, const ZString& location)
{
    std::vector<wchar_t> target(INTERNET_MAX_URL_LENGTH + 1);
    DWORD length = static_cast<DWORD>(target.size());
    if (!InternetCombineUrlW(base.c_str(), location.c_str(), target.data(), &length, 0)) {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER)
            return ZString();
        target.resize(length + 1);
        length = static_cast<DWORD>(target.size());
        if (!InternetCombineUrlW(base.c_str(), location.c_str(), target.data(), &length, 0))
            return ZString();
    }
    return ZString(target.data(), static_cast<int>(length));
}

bool hasBody(const HttpRequest& request, int status)
{
    return !request.method.equalsNoCase(u"HEAD") && status >= 200 && status != 204 && status != 304;
}

std::optional<long long> contentLength(const HttpHeaders& headers)
{
    long long length = 0;
    const ZString* value = findHeader(headers, u"Content-Length");
    return value && value->toInt(length) && length >= 0 ? std::optional<long long>(length) : std::nullopt;
}

void readBody(WinInetExchange& exchange, const HttpRequest& request, HttpResponse& response)
{
    const std::size_t limit = encodedLimit(request.maxBodyBytes);
    const ZString tooLarge = ZString(u"The response is larger than the limit of ")
        + ZString::fromUInt(request.maxBodyBytes) + u" bytes";
    const std::optional<long long> length = contentLength(response.headers);
    if (length && static_cast<unsigned long long>(*length) > limit)
        throw HttpFailure{HttpOutcome::failed, tooLarge};
    std::string raw;
    while (exchange.receive(raw, limit, tooLarge)) {
    }
    if (length && hasBody(request, response.status) && raw.size() < static_cast<unsigned long long>(*length))
        throw HttpFailure{HttpOutcome::failed, u"The connection closed before the whole response arrived"};
    const ZString* encoding = findHeader(response.headers, u"Content-Encoding");
    DecodedContent decoded = decodeContent(encoding ? encoding->toUtf8() : std::string(), std::move(raw),
                                           request.maxBodyBytes);
    if (!decoded.ok)
        throw HttpFailure{HttpOutcome::failed, ZString::fromUtf8(decoded.error)};
    response.body = std::move(decoded.bytes);
}

// One request and its response. Returns where to go next when the response is a redirect
// to follow; else the response is complete.
std::optional<ZString> exchangeOnce(const HttpRequest& request, const ZString& userAgent, const ExchangeLimits& limits,
                                    const Cancellation& cancellation, HttpResponse& response)
{
    WinInetExchange exchange(request.url, request.method, userAgent, limits, cancellation);
    exchange.send(headerLines(request.headers), request.body);
    ResponseHead head = parseResponseHead(exchange.responseHead());
    if (head.status == 0)
        throw HttpFailure{HttpOutcome::failed, u"The server sent no valid response"};
    response.status = head.status;
    response.statusText = std::move(head.statusText);
    response.headers = std::move(head.headers);
    const ZString* location = findHeader(response.headers, u"Location");
    if (isRedirectStatus(response.status) && location) {
        ZString target = redirectTarget(request.url, *location);
        if (!isHttpUrl(target))
            throw HttpFailure{HttpOutcome::failed, u"A redirect led to an address that is not http or https"};
        return target;
    }
    readBody(exchange, request, response);
    return std::nullopt;
}

} // namespace

HttpClient::HttpClient(ZString userAgent) : userAgent_(std::move(userAgent)) {}

ZString HttpClient::defaultUserAgent()
{
    return ZString::fromUtf8(PRYXA_PRODUCT_NAME "/" PRYXA_VERSION_TEXT);
}

HttpResponse HttpClient::fetch(const HttpRequest& original, const Cancellation& cancellation) const
{
    HttpResponse response;
    response.url = original.url;
    try {
        const ZString problem = requestProblem(original);
        if (!problem.isEmpty())
            throw HttpFailure{HttpOutcome::failed, problem};
        const ExchangeLimits limits = limitsOf(original);
        HttpRequest request = original;
        for (unsigned redirects = 0;; ++redirects) {
            response.url = request.url;
            const std::optional<ZString> next = exchangeOnce(request, userAgent_, limits, cancellation, response);
            if (!next)
                break;
            if (redirects == request.maxRedirects)
                throw HttpFailure{HttpOutcome::failed, ZString(u"Too many redirects (more than ")
                                                           + ZString::fromUInt(request.maxRedirects) + u")"};
            request = redirectedRequest(request, response.status, *next);
        }
        response.outcome = HttpOutcome::completed;
    } catch (const HttpFailure& failure) {
        response.outcome = failure.outcome;
        response.error = failure.message;
        response.body.clear();
    } catch (const std::bad_alloc&) {
        response.outcome = HttpOutcome::failed;
        response.error = u"Out of memory";
        response.body.clear();
    }
    return response;
}

} // namespace browser
