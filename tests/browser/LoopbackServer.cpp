#include "LoopbackServer.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace browserTest {

namespace {

bool equalNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size()
        && std::equal(a.begin(), a.end(), b.begin(), [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// request-line CRLF *( field-line CRLF ) CRLF, then Content-Length bytes of body.
bool readRequest(SOCKET socket, ServerRequest& request)
{
    std::string data;
    char buffer[16384];
    std::size_t headEnd;
    while ((headEnd = data.find("\r\n\r\n")) == std::string::npos) {
        const int got = recv(socket, buffer, sizeof buffer, 0);
        if (got <= 0)
            return false;
        data.append(buffer, got);
    }
    std::size_t lineEnd = data.find("\r\n");
    const std::string line = data.substr(0, lineEnd);
    request.method = line.substr(0, line.find(' '));
    request.path = line.substr(line.find(' ') + 1, line.rfind(' ') - line.find(' ') - 1);
    while (lineEnd < headEnd) {
        const std::size_t next = data.find("\r\n", lineEnd + 2);
        const std::string field = data.substr(lineEnd + 2, next - lineEnd - 2);
        const std::size_t colon = field.find(':');
        if (colon != std::string::npos)
            request.headers.emplace_back(field.substr(0, colon), trimmed(field.substr(colon + 1)));
        lineEnd = next;
    }
    const std::size_t length = std::strtoull(request.header("Content-Length").c_str(), nullptr, 10);
    request.body = data.substr(headEnd + 4);
    while (request.body.size() < length) {
        const int got = recv(socket, buffer, sizeof buffer, 0);
        if (got <= 0)
            return false;
        request.body.append(buffer, got);
    }
    return true;
}

} // namespace

std::string ServerRequest::header(std::string_view name) const
{
    for (const auto& [key, value] : headers)
        if (equalNoCase(key, name))
            return value;
    return std::string();
}

bool ServerConnection::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const int sent = ::send(socket_, bytes.data(), static_cast<int>(std::min<std::size_t>(bytes.size(), 1 << 20)), 0);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(sent);
    }
    return true;
}

bool ServerConnection::trickle(std::string_view bytes, std::size_t piece, unsigned gapMs)
{
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        if (!send(bytes.substr(at, piece)) || !pause(gapMs))
            return false;
    return true;
}

bool ServerConnection::pause(unsigned ms) const
{
    return WaitForSingleObject(server_.stopEvent(), ms) == WAIT_TIMEOUT;
}

LoopbackServer::LoopbackServer(std::map<std::string, Handler> routes)
    : routes_(std::move(routes)), stopped_(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    if (listener_ == INVALID_SOCKET || bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0
        || listen(listener_, SOMAXCONN) != 0
        || getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("the loopback server cannot listen");
    port_ = ntohs(address.sin_port);
    acceptor_ = KernelHandle(CreateThread(nullptr, 0, acceptMain, this, 0, nullptr));
}

std::wstring LoopbackServer::url(const std::string& path) const
{
    return L"http://127.0.0.1:" + std::to_wstring(port_) + std::wstring(path.begin(), path.end());
}

int LoopbackServer::requestsFor(const std::string& path) const
{
    std::lock_guard<SlimLock> hold(lock_);
    const auto found = counts_.find(path);
    return found == counts_.end() ? 0 : found->second;
}

void LoopbackServer::stop()
{
    if (listener_ == INVALID_SOCKET)
        return;
    SetEvent(stopped_.get());
    closesocket(std::exchange(listener_, INVALID_SOCKET));
    WaitForSingleObject(acceptor_.get(), INFINITE);
    {
        std::lock_guard<SlimLock> hold(lock_);
        for (SOCKET client : open_)
            shutdown(client, SD_BOTH);
    }
    for (const KernelHandle& thread : threads_)
        WaitForSingleObject(thread.get(), INFINITE);
    threads_.clear();
    WSACleanup();
}

DWORD WINAPI LoopbackServer::acceptMain(void* server)
{
    static_cast<LoopbackServer*>(server)->acceptLoop();
    return 0;
}

// What a connection's thread serves.
struct LoopbackServer::Connection {
    LoopbackServer* server;
    SOCKET client;
};

DWORD WINAPI LoopbackServer::serveMain(void* start)
{
    const std::unique_ptr<Connection> connection(static_cast<Connection*>(start));
    connection->server->serve(connection->client);
    return 0;
}

void LoopbackServer::acceptLoop()
{
    for (;;) {
        const SOCKET client = accept(listener_, nullptr, nullptr);
        if (client == INVALID_SOCKET)
            return;
        std::lock_guard<SlimLock> hold(lock_);
        auto connection = std::make_unique<Connection>(Connection{this, client});
        KernelHandle thread(CreateThread(nullptr, 0, serveMain, connection.get(), 0, nullptr));
        if (!thread) {
            closesocket(client);
            continue;
        }
        static_cast<void>(connection.release()); // the thread's now
        open_.push_back(client);
        threads_.push_back(std::move(thread));
    }
}

void LoopbackServer::serve(SOCKET client)
{
    ServerRequest request;
    if (readRequest(client, request)) {
        ++requests_;
        const std::string route = request.path.substr(0, request.path.find('?'));
        {
            std::lock_guard<SlimLock> hold(lock_);
            ++counts_[route];
        }
        ServerConnection connection(client, *this);
        const auto handler = routes_.find(route);
        if (handler != routes_.end())
            handler->second(request, connection);
        else
            connection.send(response(404, "Not Found", {}, "no such page"));
    }
    shutdown(client, SD_SEND);
    {
        std::lock_guard<SlimLock> hold(lock_);
        open_.erase(std::find(open_.begin(), open_.end(), client));
    }
    closesocket(client);
}

std::string response(int status, std::string_view reason, const Headers& headers, std::string_view body)
{
    std::string text = "HTTP/1.1 " + std::to_string(status) + " " + std::string(reason) + "\r\n";
    for (const auto& [name, value] : headers)
        text += name + ": " + value + "\r\n";
    text += "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n";
    return text.append(body);
}

std::string chunkedResponse(const Headers& headers, std::string_view body, std::size_t chunk)
{
    std::string text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n";
    for (const auto& [name, value] : headers)
        text += name + ": " + value + "\r\n";
    text += "\r\n";
    for (std::size_t at = 0; at < body.size(); at += chunk) {
        const std::string_view piece = body.substr(at, chunk);
        char size[32];
        std::snprintf(size, sizeof size, "%zx\r\n", piece.size());
        text.append(size).append(piece).append("\r\n");
    }
    return text + "0\r\n\r\n";
}

} // namespace browserTest
