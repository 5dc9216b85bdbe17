#pragma once
// A small HTTP/1.1 server on 127.0.0.1 and an ephemeral port, for the client's tests and
// benchmark: one thread accepts, and each connection gets a thread that reads one request
// and hands it to the handler of its path (404 for unknown paths); the connection closes
// when the handler returns. Stopping shuts every socket, so that handlers end, and joins
// every thread. Its threads are plain Win32 threads: the C++ library's would keep cached
// kernel objects that leak tests would take for the client's.

#include "base/win/KernelHandle.h"
#include "base/win/SlimLock.h"

#include <winsock2.h>

#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace browserTest {

using Headers = std::vector<std::pair<std::string, std::string>>;

struct ServerRequest {
    std::string method;
    std::string path; // with the query
    Headers headers;
    std::string body; // by Content-Length

    // The first value of that header (names compared without case), or "".
    std::string header(std::string_view name) const;
};

class LoopbackServer;

class ServerConnection {
public:
    ServerConnection(SOCKET socket, const LoopbackServer& server) : socket_(socket), server_(server) {}
    // False once the client is gone or the server stops.
    bool send(std::string_view bytes);
    // Sends `bytes` in pieces of `piece` bytes with `gapMs` between them.
    bool trickle(std::string_view bytes, std::size_t piece, unsigned gapMs);
    // Waits; false, at once, when the server stops.
    bool pause(unsigned ms) const;

private:
    SOCKET socket_;
    const LoopbackServer& server_;
};

class LoopbackServer {
public:
    using Handler = std::function<void(const ServerRequest&, ServerConnection&)>;

    explicit LoopbackServer(std::map<std::string, Handler> routes);
    ~LoopbackServer() { stop(); }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    unsigned short port() const { return port_; }
    // "http://127.0.0.1:<port><path>".
    std::wstring url(const std::string& path) const;
    // Requests read so far, by path.
    int requestsFor(const std::string& path) const;
    int requests() const { return requests_; }
    void stop();
    HANDLE stopEvent() const { return stopped_.get(); }

private:
    struct Connection;
    static DWORD WINAPI acceptMain(void* server);
    static DWORD WINAPI serveMain(void* connection);
    void acceptLoop();
    void serve(SOCKET client);

    std::map<std::string, Handler> routes_;
    SOCKET listener_ = INVALID_SOCKET;
    unsigned short port_ = 0;
    KernelHandle stopped_;
    std::atomic<int> requests_{0};
    mutable SlimLock lock_; // guards what follows
    std::map<std::string, int> counts_;
    std::vector<SOCKET> open_;
    std::vector<KernelHandle> threads_;
    KernelHandle acceptor_;
};

// A whole response with Content-Length and "Connection: close".
std::string response(int status, std::string_view reason, const Headers& headers, std::string_view body);
// The head of a chunked response, then the body in chunks of `chunk` bytes.
std::string chunkedResponse(const Headers& headers, std::string_view body, std::size_t chunk);

} // namespace browserTest
