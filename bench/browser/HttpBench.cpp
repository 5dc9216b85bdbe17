// Times the HTTP client downloading a 10 MB body sent gzip-compressed by a loopback server,
// and takes it apart: WinINet's transfer of the compressed bytes alone (a plain synchronous
// read loop), the client fetching the same bytes without a Content-Encoding (its transfer
// with its own plumbing), and decoding them in memory. Then it keeps serving until told to
// stop, so that run-http-bench can time curl --compressed on the same server.
//
//   http_bench [SECONDS]   (how long to wait for curl; 120 unless told)
//
// Prints PORT=<port> first and READY when curl may start; the figures are NAME_MS=<ms>.

#include "Compression.h"
#include "LoopbackServer.h"

#include "browser/Cancellation.h"
#include "browser/ContentDecoding.h"
#include "browser/HttpClient.h"
#include "browser/net/InternetHandle.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

constexpr int kRuns = 7;
constexpr std::size_t kBodySize = 10 * 1024 * 1024;

using Clock = std::chrono::steady_clock;

double medianMs(const std::function<void()>& run)
{
    std::vector<double> times;
    for (int i = 0; i < kRuns; ++i) {
        const Clock::time_point start = Clock::now();
        run();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void print(const char* name, double ms, const char* what)
{
    std::printf("  %-34s %8.1f ms\n%s_MS=%.1f\n", what, ms, name, ms);
    std::fflush(stdout);
}

// WinINet alone: a synchronous read loop, no decoding, the bytes counted and dropped.
std::size_t plainWinInetRead(const std::wstring& url)
{
    const browser::InternetHandle session(InternetOpenW(L"http_bench", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0));
    const browser::InternetHandle request(InternetOpenUrlW(session.get(), url.c_str(), nullptr, 0,
                                                           INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE, 0));
    std::vector<char> buffer(64 * 1024);
    std::size_t total = 0;
    DWORD read = 0;
    while (request && InternetReadFile(request.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &read) && read)
        total += read;
    return total;
}

bool fetchWhole(const browser::HttpClient& client, const std::wstring& url, std::size_t expected)
{
    browser::HttpRequest request;
    request.url = url.c_str();
    const browser::Cancellation never;
    const browser::HttpResponse response = client.fetch(request, never);
    if (!response.ok() || response.body.size() != expected) {
        std::fprintf(stderr, "fetch of %ls failed: %s\n", url.c_str(), response.error.toUtf8().c_str());
        std::exit(1);
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const unsigned waitSeconds = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 120;
    const std::string text = browserTest::sampleText(kBodySize);
    const std::string compressed = browserTest::gzip(text);
    const KernelHandle quit(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto serve = [](std::string bytes) {
        return [bytes = std::move(bytes)](const browserTest::ServerRequest&, browserTest::ServerConnection& connection) {
            connection.send(bytes);
        };
    };
    browserTest::LoopbackServer server({
        {"/body", serve(browserTest::response(200, "OK", {{"Content-Encoding", "gzip"}}, compressed))},
        {"/compressed", serve(browserTest::response(200, "OK", {}, compressed))},
        {"/quit", [&](const browserTest::ServerRequest&, browserTest::ServerConnection& connection) {
             connection.send(browserTest::response(200, "OK", {}, "bye"));
             SetEvent(quit.get());
         }},
    });
    std::printf("PORT=%u\n", server.port());
    std::printf("HTTP client: %zu bytes of text sent as %zu bytes of gzip, median of %d runs\n", text.size(),
                compressed.size(), kRuns);
    std::fflush(stdout);

    const browser::HttpClient client;
    fetchWhole(client, server.url("/body"), text.size()); // WinINet and Winsock set themselves up
    print("CLIENT_GZIP", medianMs([&] { fetchWhole(client, server.url("/body"), text.size()); }),
          "client, gzip body decoded");
    print("WININET_TRANSFER", medianMs([&] {
              if (plainWinInetRead(server.url("/compressed")) != compressed.size())
                  std::exit(1);
          }),
          "plain WinINet read of the gzip bytes");
    print("CLIENT_TRANSFER", medianMs([&] { fetchWhole(client, server.url("/compressed"), compressed.size()); }),
          "client, same bytes, no decoding");
    print("DECODE", medianMs([&] { browser::decodeContent("gzip", compressed, kBodySize); }),
          "decoding alone, in memory");

    std::printf("READY\n");
    std::fflush(stdout);
    WaitForSingleObject(quit.get(), waitSeconds * 1000);
    return 0;
}
