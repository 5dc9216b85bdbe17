#include "browser/net/WinInetExchange.h"

#include "browser/Cancellation.h"
#include "browser/net/InternetErrors.h"

#include <algorithm>

namespace browser {

namespace {

using Phase = AsyncCompletion::Phase;
using WaitEnd = AsyncCompletion::WaitEnd;

constexpr std::size_t pieceSize = 64 * 1024;
// WinINet's own time-outs are set this much beyond ours, so that ours decide and WinINet's
// only end work that ours gave up on.
constexpr unsigned wininetMarginMs = 1000;
// How long closing may take beyond the longest time-out, before the context is left behind.
constexpr DWORD closeGraceMs = 10000;

HttpFailure lastErrorFailure()
{
    const DWORD code = GetLastError();
    return {internetErrorOutcome(code), internetErrorText(code)};
}

ZString timeoutMessage(Phase phase, const AsyncCompletion::Limits& limits)
{
    switch (phase) {
    case Phase::connecting:
        return ZString(u"Could not connect to the server within ") + ZString::fromUInt(limits.connectMs) + u" ms";
    case Phase::sending:
        return ZString(u"Could not send the request within ") + ZString::fromUInt(limits.sendMs) + u" ms";
    case Phase::receiving:
        break;
    }
    return ZString(u"The server did not respond within ") + ZString::fromUInt(limits.receiveMs) + u" ms";
}

void setTimeout(HINTERNET handle, DWORD option, unsigned ourMs)
{
    DWORD value = ourMs > MAXDWORD - wininetMarginMs ? MAXDWORD : ourMs + wininetMarginMs;
    InternetSetOptionW(handle, option, &value, sizeof value);
}

// On the session, before its connection and request exist, as some WinINets copy them then.
void setTimeouts(HINTERNET handle, const AsyncCompletion::Limits& limits)
{
    setTimeout(handle, INTERNET_OPTION_CONNECT_TIMEOUT, limits.connectMs);
    setTimeout(handle, INTERNET_OPTION_SEND_TIMEOUT, limits.sendMs);
    setTimeout(handle, INTERNET_OPTION_RECEIVE_TIMEOUT, limits.receiveMs);
}

// The parts of an address that WinINet's calls take.
struct UrlParts {
    ZString host;
    ZString path; // with the query
    INTERNET_PORT port = 0;
    bool secure = false;
};

UrlParts crack(const ZString& url)
{
    URL_COMPONENTSW parts = {};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = 1; // point into `url`
    if (!InternetCrackUrlW(url.c_str(), 0, 0, &parts))
        throw HttpFailure{HttpOutcome::failed, u"The address is not valid"};
    if (parts.nScheme != INTERNET_SCHEME_HTTP && parts.nScheme != INTERNET_SCHEME_HTTPS)
        throw HttpFailure{HttpOutcome::failed, u"Only http and https addresses can be fetched"};
    UrlParts result;
    result.host = ZString(parts.lpszHostName, static_cast<int>(parts.dwHostNameLength));
    result.path = ZString(parts.lpszUrlPath, static_cast<int>(parts.dwUrlPathLength));
    // The fragment is the page's business, never the server's.
    const ZString extra(parts.lpszExtraInfo, static_cast<int>(parts.dwExtraInfoLength));
    const int fragment = extra.find(u'#');
    result.path += fragment == ZString::npos ? extra : extra.substring(0, fragment);
    if (result.path.isEmpty())
        result.path = u"/";
    result.port = parts.nPort;
    result.secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
    return result;
}

} // namespace

WinInetExchange::WinInetExchange(const ZString& url, const ZString& method, const ZString& userAgent,
                                 const ExchangeLimits& limits, const Cancellation& cancellation)
    : limits_(limits), cancellation_(cancellation)
{
    inFlight_->buffer.resize(pieceSize);
    try {
        open(url, method, userAgent);
        setOptions();
    } catch (...) {
        close();
        throw;
    }
}

WinInetExchange::~WinInetExchange()
{
    close();
}

void WinInetExchange::close()
{
    request_.reset();
    connection_.reset();
    const unsigned longest = std::max({limits_.times.connectMs, limits_.times.sendMs, limits_.times.receiveMs});
    if (!async_.waitUntilClosed(std::min<DWORD>(longest, MAXDWORD - closeGraceMs) + closeGraceMs)) {
        // WinINet still holds the context and may yet call back with it: it must stay valid.
        static_cast<void>(inFlight_.release());
    }
    session_.reset();
}

void WinInetExchange::open(const ZString& url, const ZString& method, const ZString& userAgent)
{
    const UrlParts parts = crack(url);
    session_ = InternetHandle(
        InternetOpenW(userAgent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, INTERNET_FLAG_ASYNC));
    if (!session_ || InternetSetStatusCallbackW(session_.get(), &AsyncCompletion::statusCallback)
                         == INTERNET_INVALID_STATUS_CALLBACK)
        throw lastErrorFailure();
    setTimeouts(session_.get(), limits_.times);
    connection_ = InternetHandle(InternetConnectW(session_.get(), parts.host.c_str(), parts.port, nullptr, nullptr,
                                                  INTERNET_SERVICE_HTTP, 0, async_.context()));
    if (!connection_)
        throw lastErrorFailure();
    async_.handleOpened();
    const DWORD flags = INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_RELOAD
        | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI | INTERNET_FLAG_KEEP_CONNECTION
        | (parts.secure ? INTERNET_FLAG_SECURE : 0);
    request_ = InternetHandle(HttpOpenRequestW(connection_.get(), method.c_str(), parts.path.c_str(), nullptr, nullptr,
                                               nullptr, flags, async_.context()));
    if (!request_)
        throw lastErrorFailure();
    async_.handleOpened();
}

void WinInetExchange::setOptions()
{
    setTimeouts(request_.get(), limits_.times);
    // We decode the body ourselves (Wine's decoding fails on zlib-wrapped deflate).
    BOOL decoding = FALSE;
    InternetSetOptionW(request_.get(), INTERNET_OPTION_HTTP_DECODING, &decoding, sizeof decoding);
}

HttpFailure WinInetExchange::cancelled() const
{
    return {HttpOutcome::cancelled, u"The request was cancelled"};
}

HttpFailure WinInetExchange::deadlinePassed() const
{
    return {HttpOutcome::timedOut,
            ZString(u"The request did not complete within ") + ZString::fromUInt(limits_.deadlineMs) + u" ms"};
}

// Between calls that answer at once, nothing else would notice.
void WinInetExchange::checkGoingOn() const
{
    if (cancellation_.isCancelled())
        throw cancelled();
    if (GetTickCount64() >= limits_.times.deadline)
        throw deadlinePassed();
}

// For a call that was made after async_.begin: returns once it has succeeded.
void WinInetExchange::await(BOOL answered)
{
    if (answered)
        return;
    DWORD code = GetLastError();
    if (code == ERROR_IO_PENDING) {
        Phase phase = Phase::connecting;
        switch (async_.wait(cancellation_.event(), limits_.times, phase)) {
        case WaitEnd::completed:
            code = async_.error();
            break;
        case WaitEnd::cancelled:
            throw cancelled();
        case WaitEnd::phaseTimedOut:
            throw HttpFailure{HttpOutcome::timedOut, timeoutMessage(phase, limits_.times)};
        case WaitEnd::deadlinePassed:
            throw deadlinePassed();
        }
    }
    if (code != ERROR_SUCCESS)
        throw HttpFailure{internetErrorOutcome(code), internetErrorText(code)};
}

void WinInetExchange::send(const ZString& headers, const std::string& body)
{
    if (body.size() > MAXDWORD)
        throw HttpFailure{HttpOutcome::failed, u"The request body is too large"};
    checkGoingOn();
    inFlight_->headers = headers;
    inFlight_->body = body;
    async_.begin(Phase::connecting);
    await(HttpSendRequestW(request_.get(), inFlight_->headers.c_str(), static_cast<DWORD>(-1),
                           inFlight_->body.data(), static_cast<DWORD>(inFlight_->body.size())));
}

ZString WinInetExchange::responseHead() const
{
    std::vector<wchar_t> text(1024);
    DWORD bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    while (!HttpQueryInfoW(request_.get(), HTTP_QUERY_RAW_HEADERS_CRLF, text.data(), &bytes, nullptr)) {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER)
            return ZString();
        text.resize(bytes / sizeof(wchar_t) + 1);
    }
    return ZString(text.data(), static_cast<int>(bytes / sizeof(wchar_t)));
}

// Reads without waiting take what is there, up to a whole buffer; only when nothing is
// there does the exchange wait, for data to come (or for the end) and not into the buffer.
// So a cancelled exchange has no read that goes on filling the buffer until the server
// sends enough, and a fast one takes its body in few large pieces.
bool WinInetExchange::receive(std::string& body, std::size_t limit, const ZString& tooLarge)
{
    checkGoingOn();
    InFlight& in = *inFlight_;
    const std::size_t room = limit - std::min(limit, body.size());
    in.buffers = {};
    in.buffers.dwStructSize = sizeof in.buffers;
    in.buffers.lpvBuffer = in.buffer.data();
    // One byte more than there is room for, so that going over the limit shows.
    in.buffers.dwBufferLength = static_cast<DWORD>(std::min(in.buffer.size() - 1, room) + 1);
    async_.begin(Phase::receiving);
    const BOOL answered = InternetReadFileExW(request_.get(), &in.buffers, IRF_NO_WAIT, async_.context());
    if (!answered) {
        await(answered); // data has come meanwhile; the next read takes it
        return true;
    }
    const DWORD got = in.buffers.dwBufferLength;
    if (got > room)
        throw HttpFailure{HttpOutcome::failed, tooLarge};
    if (got > 0) {
        body.append(in.buffer.data(), got);
        return true;
    }
    return waitForData();
}

// Nothing was there: false at the end of the body, else true once data has come.
bool WinInetExchange::waitForData()
{
    InFlight& in = *inFlight_;
    async_.begin(Phase::receiving);
    const BOOL answered = InternetQueryDataAvailable(request_.get(), &in.available, 0, 0);
    if (answered)
        return in.available > 0;
    await(answered);
    return true;
}

} // namespace browser
