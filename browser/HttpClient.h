#pragma once
// The web bridge's HTTP client, over WinINet: GET, POST and the other methods, request
// headers and body, redirects (counted, and only to http and https), time-outs for
// connecting, sending and receiving and a deadline for the whole request, a limit on the
// body, and cancellation from any thread at any moment. It asks for gzip and deflate and
// decodes them itself (browser/ContentDecoding.h); a body that cannot be decoded, or that
// ends before its Content-Length, is an error and never a short body.
//
// Requests go out without cookies, without cache and without any dialog (proxy and
// certificate problems are errors). Each fetch has its own WinINet session.
//
//     browser::HttpClient client;
//     browser::HttpRequest request;
//     request.url = u"https://example.com/data.json";
//     browser::HttpResponse response = client.fetch(request, cancellation);   // on a worker
//     if (response.ok()) use(response.status, response.headers, response.text());
//     else show(response.error);

#include "browser/HttpMessage.h"

namespace browser {

class Cancellation;

class HttpClient {
public:
    // `userAgent` is sent in the User-Agent header.
    explicit HttpClient(ZString userAgent = defaultUserAgent());

    // "Pryxa Creator/<version>".
    static ZString defaultUserAgent();

    // Sends the request and waits for the whole response. It blocks the calling thread, so
    // call it on a worker (browser/JobRunner.h), never on a window's thread. Thread-safe;
    // never throws. When `cancellation` is raised, from any thread, the fetch stops at once
    // and says cancelled. Besides the messages of requestProblem, internetErrorText and
    // decodeContent, the response's error may be "The request was cancelled", "Could not
    // connect to the server within N ms", "Could not send the request within N ms", "The
    // server did not respond within N ms", "The request did not complete within N ms", "Too
    // many redirects (more than N)", "A redirect led to an address that is not http or
    // https", "The server sent no valid response", "The response is larger than the limit of
    // N bytes" and "The connection closed before the whole response arrived". A failed
    // response keeps the status and headers that had arrived, but no body.
    HttpResponse fetch(const HttpRequest& request, const Cancellation& cancellation) const;

private:
    ZString userAgent_;
};

} // namespace browser
