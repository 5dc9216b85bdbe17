#pragma once
// One request and its response over WinINet, in asynchronous mode so that every wait is our
// own: it ends when the call completes, when the request is cancelled, or when a time-out
// or the deadline passes (browser/net/AsyncCompletion.h). WinINet's own decoding is off;
// the body comes as the server sent it. Redirects are not followed here.

#include "browser/HttpMessage.h"
#include "browser/net/AsyncCompletion.h"
#include "browser/net/InternetHandle.h"

#include <memory>
#include <string>
#include <vector>

namespace browser {

class Cancellation;

// Why an exchange stopped: what the response will say.
struct HttpFailure {
    HttpOutcome outcome;
    ZString message;
};

struct ExchangeLimits {
    AsyncCompletion::Limits times;
    unsigned deadlineMs; // the whole request's, for the message
};

class WinInetExchange {
public:
    // Opens a session, a connection and a request for `url` (http or https) with `method`.
    // Throws HttpFailure.
    WinInetExchange(const ZString& url, const ZString& method, const ZString& userAgent, const ExchangeLimits& limits,
                    const Cancellation& cancellation);
    // Closes the handles and waits until WinINet has let go of this object.
    ~WinInetExchange();
    WinInetExchange(const WinInetExchange&) = delete;
    WinInetExchange& operator=(const WinInetExchange&) = delete;

    // Sends the request with `headers` ("Name: value\r\n" lines) and `body`, which must
    // outlive the exchange; returns once the response head is there. Throws HttpFailure.
    void send(const ZString& headers, const std::string& body);
    // The response head as received: the status line and the header lines, CR LF separated.
    ZString responseHead() const;
    // Appends the next piece of the body; false at its end. Throws HttpFailure, also with
    // `tooLarge` as the message when the body would pass `limit` bytes.
    bool receive(std::string& body, std::size_t limit, const ZString& tooLarge);

private:
    void await(BOOL answered);
    void checkGoingOn() const;
    HttpFailure cancelled() const;
    HttpFailure deadlinePassed() const;
    void close();
    void open(const ZString& url, const ZString& method, const ZString& userAgent);
    void setOptions();

    // Heap-held: if WinINet does not let go of it in time, it is left behind, not freed.
    std::unique_ptr<AsyncCompletion> async_ = std::make_unique<AsyncCompletion>();
    const ExchangeLimits limits_;
    const Cancellation& cancellation_;
    InternetHandle session_;
    InternetHandle connection_;
    InternetHandle request_;
    ZString headers_;
    // Written by WinINet when a call completes later, so they live as long as the handles.
    DWORD available_ = 0;
    DWORD read_ = 0;
    std::vector<char> buffer_;
};

} // namespace browser
