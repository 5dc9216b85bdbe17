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

std::string damaged(std::string data)
{
    data[data.size() / 2] ^= 0x55;
    return data;
}

// A listener that never answers: with accept off it takes no connection at all (its queue
// is filled first), with accept on it takes one and never reads from it.
//
// Wine's WinINet lets a connection attempt run until the system gives up (minutes), and
// holds the request until then: so the refusing kind goes away after a while, and the
// client's next try (a second after its first) is turned down at once.
class SilentListener {
public:
    explicit SilentListener(bool accepting)
    {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int length = sizeof address;
        bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address);
        listen(listener_, accepting ? 1 : 0);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
        if (accepting) {
            helper_ = std::thread([this] { accepted_ = accept(listener_, nullptr, nullptr); });
            return;
        }
        for (SOCKET& filler : fillers_) {
            filler = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
            u_long nonBlocking = 1;
            ioctlsocket(filler, FIONBIO, &nonBlocking);
            connect(filler, reinterpret_cast<sockaddr*>(&address), sizeof address);
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
        WSACleanup();
    }

    ZString url() const { return ZString((L"http://127.0.0.1:" + std::to_wstring(port_) + L"/").c_str()); }

private:
    void closeAll()
    {
        std::lock_guard<SlimLock> hold(lock_);
        for (SOCKET* socket : {&listener_, &accepted_, &fillers_[0], &fillers_[1], &fillers_[2], &fillers_[3]})
            if (*socket != INVALID_SOCKET)
                closesocket(std::exchange(*socket, INVALID_SOCKET));
    }

    SlimLock lock_;
    SOCKET listener_ = INVALID_SOCKET;
    SOCKET accepted_ = INVALID_SOCKET;
    SOCKET fillers_[4] = {INVALID_SOCKET, INVALID_SOCKET, INVALID_SOCKET, INVALID_SOCKET};
    unsigned short port_ = 0;
    std::thread helper_;
};

// An address on a port that nobody listens on.
ZString unusedPortUrl()
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    const SOCKET probe = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    closesocket(probe);
    WSACleanup();
    return ZString((L"http://127.0.0.1:" + std::to_wstring(ntohs(address.sin_port)) + L"/").c_str());
}

class HttpClientTest : public testing::Test {
protected:
    HttpRequest request(const std::string& path) const
    {
        HttpRequest request;
        request.url = url(path);
        return request;
    }
    ZString url(const std::string& path) const { return ZString(server.url(path).c_str()); }
    HttpResponse fetch(const HttpRequest& request) const { return client.fetch(request, cancellation); }
    HttpResponse get(const std::string& path) const { return fetch(request(path)); }

    ServerRequest lastEcho() const
    {
        std::lock_guard<SlimLock> hold(lock);
        return echoed;
    }

    void serve(const std::string& path, std::string bytes)
    {
        routes[path] = [bytes](const ServerRequest&, ServerConnection& connection) { connection.send(bytes); };
    }

    void redirect(const std::string& path, int status, const std::string& location)
    {
        serve(path, response(status, "Moved", {{"Location", location}}, ""));
    }

    std::map<std::string, LoopbackServer::Handler> makeRoutes()
    {
        const std::string gz = gzip(text);
        serve("/gzip", response(200, "OK", {{"Content-Encoding", "gzip"}}, gz));
        serve("/deflate-zlib", response(200, "OK", {{"Content-Encoding", "deflate"}}, zlibWrapped(text)));
        serve("/deflate-raw", response(200, "OK", {{"Content-Encoding", "deflate"}}, rawDeflate(text)));
        serve("/chunked", chunkedResponse({}, text, 777));
        serve("/chunked-gzip", chunkedResponse({{"Content-Encoding", "gzip"}}, gz, 1000));
        serve("/corrupt-gzip", response(200, "OK", {{"Content-Encoding", "gzip"}}, damaged(gz)));
        serve("/truncated-gzip", response(200, "OK", {{"Content-Encoding", "gzip"}}, gz.substr(0, gz.size() - 8)));
        serve("/bomb", response(200, "OK", {{"Content-Encoding", "gzip"}}, gzip(std::string(2 << 20, '\0'))));
        serve("/big-chunked", chunkedResponse({}, text, 1000));
        serve("/short", response(200, "OK", {}, text).substr(0, 1000));
        serve("/no-response", "");
        serve("/not-http", "HELLO\r\n\r\n");
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
        redirect("/redirect", 302, "/hop");
        routes["/hop"] = [this](const ServerRequest&, ServerConnection& connection) {
            const std::string echo = "http://127.0.0.1:" + std::to_string(server.port()) + "/echo";
            connection.send(response(301, "Moved", {{"Location", echo}}, ""));
        };
        redirect("/see-other", 303, "echo");
        redirect("/temporary", 307, "/echo");
        redirect("/loop", 302, "/loop");
        redirect("/to-ftp", 302, "ftp://127.0.0.1/file");
        // Wine's WinINet holds a cancelled request until the server speaks or closes (Windows
        // lets go at once): the test releases the stalled server after cancelling.
        routes["/stall"] = [this](const ServerRequest&, ServerConnection&) {
            SetEvent(requestRead.get());
            const HANDLE events[] = {released.get(), server.stopEvent()};
            WaitForMultipleObjects(2, events, FALSE, 20000);
        };
        routes["/endless"] = [](const ServerRequest&, ServerConnection& connection) {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 10000000\r\n\r\n");
            while (connection.send(std::string(10, 'x')) && connection.pause(20)) {
            }
        };
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
    std::map<std::string, LoopbackServer::Handler> routes;
    LoopbackServer server{makeRoutes()};
    HttpClient client;
    Cancellation cancellation;
};

TEST_F(HttpClientTest, DecodesWhatItAsksForAndChunkedBodies)
{
    for (const char* path : {"/gzip", "/deflate-zlib", "/deflate-raw", "/chunked", "/chunked-gzip", "/plain"}) {
        const HttpResponse response = get(path);
        EXPECT_TRUE(response.ok()) << path << ": " << response.error.toUtf8();
        EXPECT_EQ(response.status, 200) << path;
        EXPECT_EQ(response.statusText, ZString(u"OK")) << path;
        EXPECT_TRUE(response.body == text) << path << ": " << response.body.size() << " bytes";
    }
    EXPECT_EQ(get("/plain").text(), ZString::fromUtf8(text));
}

TEST_F(HttpClientTest, BadBodiesAreErrorsNeverShortBodies)
{
    const struct {
        const char* path;
        std::size_t limit;
        const char* error; // the whole message, or its start up to "("
    } cases[] = {
        {"/corrupt-gzip", 1 << 20, "The gzip content is corrupt ("},
        {"/truncated-gzip", 1 << 20, "The gzip content is truncated"},
        {"/short", 1 << 20, "The connection closed before the whole response arrived"},
        {"/bomb", 1 << 20, "The decoded content is larger than the limit of 1048576 bytes"},
        {"/plain", 1000, "The response is larger than the limit of 1000 bytes"}, // by its Content-Length
        {"/big-chunked", 1000, "The response is larger than the limit of 1000 bytes"}, // as it arrives
    };
    for (const auto& c : cases) {
        HttpRequest request = this->request(c.path);
        request.maxBodyBytes = c.limit;
        const HttpResponse response = fetch(request);
        EXPECT_EQ(response.outcome, HttpOutcome::failed) << c.path;
        EXPECT_EQ(response.error.toUtf8().substr(0, std::strlen(c.error)), c.error) << c.path;
        EXPECT_EQ(response.status, 200) << c.path;
        EXPECT_TRUE(response.body.empty()) << c.path;
    }
}

TEST_F(HttpClientTest, NotFoundAndHeadAreResponses)
{
    const HttpResponse missing = get("/missing");
    EXPECT_TRUE(missing.ok()) << missing.error.toUtf8();
    EXPECT_EQ(missing.status, 404);
    EXPECT_EQ(missing.statusText, ZString(u"Not Found"));
    EXPECT_EQ(missing.body, "no such page");

    HttpRequest head = request("/plain");
    head.method = u"HEAD";
    const HttpResponse response = fetch(head);
    EXPECT_TRUE(response.ok()) << response.error.toUtf8();
    EXPECT_EQ(*findHeader(response.headers, u"content-length"), ZString::fromUInt(text.size()));
    EXPECT_TRUE(response.body.empty());
}

TEST_F(HttpClientTest, PostSendsMethodHeadersAndBodyAndGetsHeadersInOrder)
{
    HttpRequest post = request("/echo?q=1#fragment");
    post.method = u"POST";
    post.body = std::string("a\0b \xC3\xA9\r\n", 8);
    post.headers = {{u"Content-Type", u"application/octet-stream"}, {u"X-Token", u"t 1"}, {u"Accept-Encoding", u"br"}};
    const HttpResponse response = fetch(post);
    ASSERT_TRUE(response.ok()) << response.error.toUtf8();

    const ServerRequest seen = lastEcho();
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.path, "/echo?q=1");
    EXPECT_EQ(seen.body, post.body);
    EXPECT_EQ(seen.header("Content-Type"), "application/octet-stream");
    EXPECT_EQ(seen.header("X-Token"), "t 1");
    EXPECT_EQ(seen.header("Accept-Encoding"), "gzip, deflate");
    EXPECT_EQ(seen.header("User-Agent"), "Pryxa Creator/" PRYXA_VERSION_TEXT);
    EXPECT_EQ(response.body, post.body);

    std::vector<std::string> received;
    for (const HttpHeader& header : response.headers)
        if (header.name.startsWith(u"X-"))
            received.push_back(header.name.toUtf8() + "=" + header.value.toUtf8());
    EXPECT_EQ(received, (std::vector<std::string>{"X-A=1", "X-B=b", "X-A=2"}));
}

TEST_F(HttpClientTest, RedirectsAreFollowedWithinBoundsAndOnlyToTheWeb)
{
    const struct {
        const char* path;
        const char16_t* method;
        unsigned maxRedirects;
        const char* echoedMethod; // null: the request fails with `error`
        bool bodyKept;
        const char* error;
    } cases[] = {
        {"/redirect", u"GET", 10, "GET", false, nullptr},
        {"/redirect", u"GET", 2, "GET", false, nullptr},
        {"/see-other", u"POST", 10, "GET", false, nullptr},
        {"/temporary", u"POST", 10, "POST", true, nullptr},
        {"/redirect", u"GET", 1, nullptr, false, "Too many redirects (more than 1)"},
        {"/loop", u"GET", 3, nullptr, false, "Too many redirects (more than 3)"},
        {"/to-ftp", u"GET", 10, nullptr, false, "A redirect led to an address that is not http or https"},
    };
    for (const auto& c : cases) {
        HttpRequest request = this->request(c.path);
        request.method = c.method;
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
        EXPECT_EQ(lastEcho().body, c.bodyKept ? "form=1" : "") << c.path;
    }
    EXPECT_EQ(server.requestsFor("/loop"), 4); // the first request and three redirects
}

TEST_F(HttpClientTest, TimeOutsAndTheDeadlineEndARequest)
{
    const SilentListener notAccepting(false);
    const SilentListener notReading(true);
    HttpRequest connect;
    connect.url = notAccepting.url();
    connect.connectTimeoutMs = 300;
    HttpRequest send;
    send.url = notReading.url();
    send.method = u"POST";
    send.body.assign(64 << 20, 'x'); // more than the socket buffers take
    send.sendTimeoutMs = 300;
    HttpRequest receive = request("/stall");
    receive.receiveTimeoutMs = 300;
    HttpRequest deadline = request("/endless");
    deadline.deadlineMs = 500;

    const struct {
        const HttpRequest& request;
        const char* error;
    } cases[] = {
        {connect, "Could not connect to the server within 300 ms"},
        {send, "Could not send the request within 300 ms"},
        {receive, "The server did not respond within 300 ms"},
        {deadline, "The request did not complete within 500 ms"},
    };
    for (const auto& c : cases) {
        const HttpResponse response = fetch(c.request);
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
    const struct {
        ZString url;
        const char16_t* method;
        const char* error; // null: any description, as WinINets word it differently
    } cases[] = {
        {u"ftp://127.0.0.1/file", u"GET", "Only http and https addresses can be fetched"},
        {u"file:///C:/windows/win.ini", u"GET", "Only http and https addresses can be fetched"},
        {url("/plain"), u"GE T", "The method \"GE T\" is not a valid HTTP method"},
        {unusedPortUrl(), u"GET", "Could not connect to the server"},
        {url("/no-response"), u"GET", nullptr},
    };
    for (const auto& c : cases) {
        HttpRequest request;
        request.url = c.url;
        request.method = c.method;
        const HttpResponse response = fetch(request);
        EXPECT_EQ(response.outcome, HttpOutcome::failed) << c.url.toUtf8();
        EXPECT_EQ(response.status, 0) << c.url.toUtf8();
        EXPECT_FALSE(response.error.isEmpty()) << c.url.toUtf8();
        if (c.error) {
            EXPECT_EQ(response.error.toUtf8(), c.error);
        }
    }
    EXPECT_EQ(server.requests(), 1); // only /no-response was asked
}

} // namespace
