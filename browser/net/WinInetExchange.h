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

    // Sends the request with `headers` ("Name: value\r\n" lines) and `body`; returns once
    // the response head is there. Throws HttpFailure.
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
    bool waitForData();
    void open(const ZString& url, const ZString& method, const ZString& userAgent);
    void setOptions();

    // Everything WinINet may use while a call is pending. If WinINet does not let go of it
    // in time, it is left behind rather than freed under WinINet.
    struct InFlight {
        AsyncCompletion async;
        ZString headers;
        std::string body;
        DWORD available = 0;
        INTERNET_BUFFERSW buffers = {};
        std::vector<char> buffer;
    };

    std::unique_ptr<InFlight> inFlight_ = std::make_unique<InFlight>();
    AsyncCompletion& async_ = inFlight_->async;
    const ExchangeLimits limits_;
    const Cancellation& cancellation_;
    InternetHandle session_;
    InternetHandle connection_;
    InternetHandle request_;
};

} // namespace browser
