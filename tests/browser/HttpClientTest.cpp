// The HTTP client against a loopback server of the test's own: content codings, bad bodies,
// redirects, time-outs, cancellation and refused requests.
#include "Compression.h"
#include "LoopbackServer.h"

#include "browser/Cancellation.h"
#include "browser/HttpClient.h"

#include <gtest/gtest.h>

#include "pryxa/Version.h"

#include <cstring>
#include <mutex>
#include <thread>

using namespace browser;
using namespace browserTest;

namespace {

const std::string text = sampleText(50000);

// A listener that never answers: with accept off it takes no connection at all (its queue
// is filled first), with accept on it takes one and never reads from it.
//
// Wine's WinINet lets a connection attempt run until the system gives up (minutes), and
// holds the request until then: so the refusing kind goes away after a while, and the
// client's next try (a second after its first) is turned down at once. Winsock is up while
// the fixture's server runs.
class SilentListener {
public:
    explicit SilentListener(bool accepting)
    {
        std::fill(std::begin(sockets_), std::end(sockets_), INVALID_SOCKET);
        sockets_[0] = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int length = sizeof address;
        bind(sockets_[0], reinterpret_cast<sockaddr*>(&address), sizeof address);
        getsockname(sockets_[0], reinterpret_cast<sockaddr*>(&address), &length);
        url_ = (L"http://127.0.0.1:" + std::to_wstring(ntohs(address.sin_port)) + L"/").c_str();
        listen(sockets_[0], accepting ? 1 : 0);
        if (accepting) {
            helper_ = std::thread([this] { sockets_[1] = accept(sockets_[0], nullptr, nullptr); });
            return;
        }
        for (SOCKET* filler = sockets_ + 2; filler != std::end(sockets_); ++filler) {
            *filler = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
            u_long nonBlocking = 1;
            ioctlsocket(*filler, FIONBIO, &nonBlocking);
            connect(*filler, reinterpret_cast<sockaddr*>(&address), sizeof address);
        }
        helper_ = std::thread([this] {
            Sleep(1500);
            closeAll();
        });
    }
    ~SilentListener()
    {
        closeAll();
        helper_.join();
    }

    ZString url() const { return url_; }

private:
    void closeAll()
    {
        std::lock_guard<SlimLock> hold(lock_);
        for (SOCKET& socket : sockets_)
            if (socket != INVALID_SOCKET)
                closesocket(std::exchange(socket, INVALID_SOCKET));
    }

    SlimLock lock_;
    SOCKET sockets_[6]; // the listener, the accepted connection, four queue fillers
    ZString url_;
    std::thread helper_;
};

class HttpClientTest : public testing::Test {
protected:
    HttpRequest request(const std::string& path, const char16_t* method = u"GET") const
    {
        HttpRequest made;
        made.url = url(path);
        made.method = method;
        return made;
    }
    ZString url(const std::string& path) const { return ZString(server.url(path).c_str()); }
    HttpResponse fetch(const HttpRequest& request) const { return client.fetch(request, cancellation); }

    ServerRequest lastEcho() const
    {
        std::lock_guard<SlimLock> hold(lock);
        return echoed;
    }

    std::map<std::string, LoopbackServer::Handler> makeRoutes()
    {
        std::map<std::string, LoopbackServer::Handler> routes;
        const std::string gz = gzip(text);
        const auto gzipped = [](const std::string& body) {
            return response(200, "OK", {{"Content-Encoding", "gzip"}}, body);
        };
        const auto moved = [](int status, const std::string& location) {
            return response(status, "Moved", {{"Location", location}}, "");
        };
        const std::pair<const char*, std::string> fixed[] = {
            {"/gzip", gzipped(gz)},
            {"/chunked", chunkedResponse({}, text, 777)},
            {"/truncated-gzip", gzipped(gz.substr(0, gz.size() - 8))},
            {"/bomb", gzipped(gzip(std::string(2 << 20, '\0')))},
            {"/short", response(200, "OK", {}, text).substr(0, 1000)},
            {"/no-response", ""},
            {"/redirect", moved(302, "/hop")},
            {"/see-other", moved(303, "echo")},
            {"/temporary", moved(307, "/echo")},
            {"/loop", moved(302, "/loop")},
            {"/to-ftp", moved(302, "ftp://127.0.0.1/file")},
        };
        for (const auto& [path, bytes] : fixed)
            routes[path] = [bytes = bytes](const ServerRequest&, ServerConnection& to) { to.send(bytes); };
        routes["/hop"] = [this, moved](const ServerRequest&, ServerConnection& connection) {
            connection.send(moved(301, "http://127.0.0.1:" + std::to_string(server.port()) + "/echo")); // known once up
        };
        routes["/plain"] = [](const ServerRequest& request, ServerConnection& connection) {
            const std::string whole = response(200, "OK", {{"Content-Type", "text/plain; charset=utf-8"}}, text);
            connection.send(request.method == "HEAD" ? whole.substr(0, whole.find("\r\n\r\n") + 4) : whole);
        };
        routes["/echo"] = [this](const ServerRequest& request, ServerConnection& connection) {
            {
                std::lock_guard<SlimLock> hold(lock);
                echoed = request;
            }
            connection.send(response(200, "OK", {{"X-A", "1"}, {"X-B", "b"}, {"X-A", "2"}}, request.body));
        };
        // Wine's WinINet holds a cancelled request until the server speaks or closes (Windows
        // lets go at once): the test releases the stalled server after cancelling.
        routes["/stall"] = [this](const ServerRequest&, ServerConnection&) {
            SetEvent(requestRead.get());
            const HANDLE events[] = {released.get(), server.stopEvent()};
            WaitForMultipleObjects(2, events, FALSE, 20000);
        };
        // Half the body, then a byte every 20 ms: it never ends, and never goes quiet.
        routes["/half"] = [this](const ServerRequest&, ServerConnection& connection) {
            connection.send(response(200, "OK", {}, text).substr(0, text.size() / 2));
            SetEvent(halfSent.get());
            while (connection.send("x") && connection.pause(20)) {
            }
        };
        return routes;
    }

    mutable SlimLock lock;
    ServerRequest echoed;
    KernelHandle requestRead{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    KernelHandle halfSent{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    KernelHandle released{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    LoopbackServer server{makeRoutes()};
    HttpClient client;
    Cancellation cancellation;
};

TEST_F(HttpClientTest, DecodedAndChunkedBodiesNotFoundAndHead)
{
    const struct { const char* path; const char16_t* method; int status; const char16_t* statusText; std::string body; }
    cases[] = {
        {"/gzip", u"GET", 200, u"OK", text},
        {"/chunked", u"GET", 200, u"OK", text},
        {"/plain", u"GET", 200, u"OK", text},
        {"/missing", u"GET", 404, u"Not Found", "no such page"},
        {"/plain", u"HEAD", 200, u"OK", ""},
    };
    for (const auto& c : cases) {
        const HttpResponse response = fetch(request(c.path, c.method));
        EXPECT_TRUE(response.ok()) << c.path << ": " << response.error.toUtf8();
        EXPECT_EQ(response.status, c.status) << c.path;
        EXPECT_EQ(response.statusText, ZString(c.statusText)) << c.path;
        EXPECT_TRUE(response.body == c.body) << c.path << ": " << response.body.size() << " bytes";
        if (c.body.empty() && c.status == 200) {
            EXPECT_EQ(*findHeader(response.headers, u"content-length"), ZString::fromUInt(text.size()));
        }
    }
    EXPECT_EQ(fetch(request("/plain")).text(), ZString::fromUtf8(text));
}

TEST_F(HttpClientTest, BadBodiesAreErrorsNeverShortBodies)
{
    const struct { const char* path; std::size_t limit; const char* error; } cases[] = {
        {"/truncated-gzip", 1 << 20, "The gzip content is truncated"},
        {"/short", 1 << 20, "The connection closed before the whole response arrived"},
        {"/bomb", 1 << 20, "The decoded content is larger than the limit of 1048576 bytes"},
        {"/plain", 1000, "The response is larger than the limit of 1000 bytes"}, // by its Content-Length
        {"/chunked", 1000, "The response is larger than the limit of 1000 bytes"}, // as it arrives
    };
    for (const auto& c : cases) {
        HttpRequest request = this->request(c.path);
        request.maxBodyBytes = c.limit;
        const HttpResponse response = fetch(request);
        EXPECT_EQ(response.outcome, HttpOutcome::failed) << c.path;
        EXPECT_EQ(response.error.toUtf8(), c.error) << c.path;
        EXPECT_EQ(response.status, 200) << c.path;
        EXPECT_TRUE(response.body.empty()) << c.path;
    }
}

TEST_F(HttpClientTest, PostSendsMethodHeadersAndBodyAndGetsHeadersInOrder)
{
    HttpRequest post = request("/echo?q=1#fragment", u"POST");
    post.body = std::string("a\0b \xC3\xA9\r\n", 8);
    post.headers = {{u"Content-Type", u"application/octet-stream"}, {u"X-Token", u"t 1"}, {u"Accept-Encoding", u"br"}};
    const HttpResponse response = fetch(post);
    ASSERT_TRUE(response.ok()) << response.error.toUtf8();
    EXPECT_EQ(response.body, post.body);

    const ServerRequest seen = lastEcho();
    EXPECT_EQ(seen.method + " " + seen.path, "POST /echo?q=1");
    EXPECT_EQ(seen.body, post.body);
    for (const auto& [name, value] : Headers{{"Content-Type", "application/octet-stream"}, {"X-Token", "t 1"},
                                             {"Accept-Encoding", "gzip, deflate"},
                                             {"User-Agent", "Pryxa Creator/" PRYXA_VERSION_TEXT}})
        EXPECT_EQ(seen.header(name), value) << name;

    std::vector<std::string> received;
    for (const HttpHeader& header : response.headers)
        if (header.name.startsWith(u"X-"))
            received.push_back(header.name.toUtf8() + "=" + header.value.toUtf8());
    EXPECT_EQ(received, (std::vector<std::string>{"X-A=1", "X-B=b", "X-A=2"}));
}

TEST_F(HttpClientTest, RedirectsAreFollowedWithinBoundsAndOnlyToTheWeb)
{
    // No echoed method: the request fails with `error`.
    const struct { const char* path; const char16_t* method; unsigned maxRedirects; const char* echoedMethod, *error; }
    cases[] = {
        {"/redirect", u"GET", 2, "GET", nullptr}, // through /hop, exactly the limit
        {"/see-other", u"POST", 10, "GET", nullptr},
        {"/temporary", u"POST", 10, "POST", nullptr},
        {"/redirect", u"GET", 1, nullptr, "Too many redirects (more than 1)"},
        {"/loop", u"GET", 3, nullptr, "Too many redirects (more than 3)"},
        {"/to-ftp", u"GET", 10, nullptr, "A redirect led to an address that is not http or https"},
    };
    for (const auto& c : cases) {
        HttpRequest request = this->request(c.path, c.method);
        request.maxRedirects = c.maxRedirects;
        if (request.method == ZString(u"POST"))
            request.body = "form=1";
        const HttpResponse response = fetch(request);
        if (!c.echoedMethod) {
            EXPECT_EQ(response.outcome, HttpOutcome::failed) << c.path;
            EXPECT_EQ(response.error.toUtf8(), c.error) << c.path;
            continue;
        }
        ASSERT_TRUE(response.ok()) << c.path << ": " << response.error.toUtf8();
        EXPECT_EQ(response.url, url("/echo")) << c.path;
        EXPECT_EQ(lastEcho().method, c.echoedMethod) << c.path;
        EXPECT_EQ(lastEcho().body, std::strcmp(c.echoedMethod, "POST") ? "" : "form=1") << c.path;
    }
    EXPECT_EQ(server.requestsFor("/loop"), 4); // the first request and three redirects
}

TEST_F(HttpClientTest, TimeOutsAndTheDeadlineEndARequest)
{
    const SilentListener notAccepting(false);
    const SilentListener notReading(true);
    const struct { ZString url; unsigned HttpRequest::*limit; unsigned ms; const char* error; } cases[] = {
        {notAccepting.url(), &HttpRequest::connectTimeoutMs, 300, "Could not connect to the server within 300 ms"},
        {notReading.url(), &HttpRequest::sendTimeoutMs, 300, "Could not send the request within 300 ms"},
        {url("/stall"), &HttpRequest::receiveTimeoutMs, 300, "The server did not respond within 300 ms"},
        {url("/half"), &HttpRequest::deadlineMs, 500, "The request did not complete within 500 ms"},
    };
    for (const auto& c : cases) {
        HttpRequest request;
        request.url = c.url;
        request.*c.limit = c.ms;
        if (c.limit == &HttpRequest::sendTimeoutMs) {
            request.method = u"POST";
            request.body.assign(64 << 20, 'x'); // more than the socket buffers take
        }
        const HttpResponse response = fetch(request);
        EXPECT_EQ(response.outcome, HttpOutcome::timedOut) << c.error;
        EXPECT_EQ(response.error.toUtf8(), c.error);
        EXPECT_TRUE(response.body.empty()) << c.error;
    }
}

TEST_F(HttpClientTest, CancellationStopsARequestAtAnyPoint)
{
    const auto cancelledWhen = [this](const std::string& path, HANDLE reached) {
        const Cancellation cancel;
        HttpResponse response;
        std::thread fetching([&] { response = client.fetch(request(path), cancel); });
        EXPECT_EQ(WaitForSingleObject(reached, 10000), WAIT_OBJECT_0) << path;
        cancel.cancel();
        SetEvent(released.get());
        fetching.join();
        EXPECT_EQ(response.outcome, HttpOutcome::cancelled) << path;
        EXPECT_EQ(response.error.toUtf8(), "The request was cancelled") << path;
        EXPECT_TRUE(response.body.empty()) << path;
    };
    cancelledWhen("/stall", requestRead.get()); // waiting for the response head
    cancelledWhen("/half", halfSent.get());     // in the middle of the body

    const Cancellation cancelled;
    cancelled.cancel();
    const int before = server.requests();
    EXPECT_EQ(client.fetch(request("/plain"), cancelled).outcome, HttpOutcome::cancelled);
    EXPECT_EQ(server.requests(), before);
}

TEST_F(HttpClientTest, RefusedRequestsAndBrokenServers)
{
    LoopbackServer gone({}); // its port, once it stops, is nobody's
    gone.stop();
    // No error: any description, as WinINets word it differently.
    const struct { ZString url; const char16_t* method; const char* error; } cases[] = {
        {u"ftp://127.0.0.1/file", u"GET", "Only http and https addresses can be fetched"},
        {url("/plain"), u"GE T", "The method \"GE T\" is not a valid HTTP method"},
        {ZString(gone.url("/").c_str()), u"GET", "Could not connect to the server"},
        {url("/no-response"), u"GET", nullptr},
    };
    for (const auto& c : cases) {
        HttpRequest request;
        request.url = c.url;
        request.method = c.method;
        const HttpResponse response = fetch(request);
        EXPECT_EQ(response.outcome, HttpOutcome::failed) << c.url.toUtf8();
        EXPECT_EQ(response.status, 0) << c.url.toUtf8();
        if (c.error) {
            EXPECT_EQ(response.error.toUtf8(), c.error);
        } else {
            EXPECT_FALSE(response.error.isEmpty()) << c.url.toUtf8();
        }
    }
    EXPECT_EQ(server.requests(), 1); // only /no-response was asked
}

} // namespace
