// The HTTP rules that need no network: checking requests, reading response heads, body text
// and what a redirect does to a request.
#include "browser/HttpMessage.h"
#include "browser/HttpRedirect.h"

#include <gtest/gtest.h>

using namespace browser;

namespace {

TEST(HttpMessage, RequestProblems)
{
    // No problem: a request that can be sent.
    const struct { const char16_t *url, *method; HttpHeaders headers; std::string body; const char* problem; }
    cases[] = {
        {u"http://example.com/a?b=c", u"GET", {{u"X-Token", u"a b"}}, "", ""},
        {u"HTTPS://127.0.0.1:8443", u"POST", {}, "form=1", ""},
        {u"https://example.com", u"PATCH", {}, "x", ""},
        {u"ftp://example.com/file", u"GET", {}, "", "Only http and https addresses can be fetched"},
        {u"http:///path", u"GET", {}, "", "Only http and https addresses can be fetched"},
        {u"example.com", u"GET", {}, "", "Only http and https addresses can be fetched"},
        {u"http://example.com", u"GE T", {}, "", "The method \"GE T\" is not a valid HTTP method"},
        {u"http://example.com", u"", {}, "", "The method \"\" is not a valid HTTP method"},
        {u"http://example.com", u"GET", {{u"Bad Name", u"x"}}, "", "The request header \"Bad Name\" is not valid"},
        {u"http://example.com", u"GET", {{u"X-Split", u"a\r\nHost: evil"}}, "",
         "The request header \"X-Split\" is not valid"},
        {u"http://example.com", u"get", {}, "body", "A GET or HEAD request cannot have a body"},
        {u"http://example.com", u"HEAD", {}, "body", "A GET or HEAD request cannot have a body"},
    };
    for (const auto& c : cases) {
        HttpRequest request;
        request.url = c.url;
        request.method = c.method;
        request.headers = c.headers;
        request.body = c.body;
        EXPECT_EQ(requestProblem(request).toUtf8(), c.problem) << ZString(c.url).toUtf8();
    }
}

TEST(HttpMessage, ResponseHeads)
{
    const ResponseHead head = parseResponseHead(
        u"HTTP/1.1 404 Not Found\r\nContent-Type: text/html\r\nX-A:1\r\nno colon here\r\nX-A:  2 \r\n\r\n");
    EXPECT_EQ(head.status, 404);
    EXPECT_EQ(head.statusText, ZString(u"Not Found"));
    ASSERT_EQ(head.headers.size(), 3u);
    EXPECT_EQ(head.headers[2].name, ZString(u"X-A"));
    EXPECT_EQ(head.headers[2].value, ZString(u"2"));
    EXPECT_EQ(*findHeader(head.headers, u"content-TYPE"), ZString(u"text/html"));
    EXPECT_EQ(*findHeader(head.headers, u"x-a"), ZString(u"1"));
    EXPECT_EQ(findHeader(head.headers, u"Location"), nullptr);

    const ResponseHead noReason = parseResponseHead(u"HTTP/1.0 204\r\n");
    EXPECT_EQ(noReason.status, 204);
    EXPECT_TRUE(noReason.statusText.isEmpty());
    EXPECT_EQ(parseResponseHead(u"").status, 0);
    EXPECT_EQ(parseResponseHead(u"Server: x\r\n").status, 0);
}

TEST(HttpMessage, BodyTextByCharset)
{
    // No content type: no Content-Type header.
    const struct { std::string bytes; const char16_t* contentType, *text; } cases[] = {
        {"caf\xC3\xA9", nullptr, u"caf\u00E9"},
        {"\xEF\xBB\xBF" "a", u"text/plain", u"a"},
        {"caf\xE9", u"text/plain; charset=ISO-8859-1", u"caf\u00E9"},
        {"\x80 \x9F \xFF", u"text/html;charset=\"windows-1252\"", u"\u20AC \u0178 \u00FF"},
        {"caf\xE9", u"text/plain; charset=utf-8", u"caf\uFFFD"},
        {"caf\xC3\xA9", u"text/plain; charset=shift_jis", u"caf\u00E9"},
    };
    for (const auto& c : cases) {
        const ZString contentType = c.contentType ? ZString(c.contentType) : ZString();
        EXPECT_EQ(decodeText(c.bytes, c.contentType ? &contentType : nullptr), ZString(c.text)) << c.bytes;
    }
    HttpResponse response;
    response.headers = {{u"Content-Type", u"text/plain; charset=latin1"}};
    response.body = "\xE9";
    EXPECT_EQ(response.text(), ZString(u"\u00E9"));
}

TEST(HttpRedirect, MethodBodyAndHeadersAfterARedirect)
{
    const HttpHeaders sent = {{u"Content-Type", u"text/plain"}, {u"Authorization", u"Bearer t"}, {u"Cookie", u"c=1"}};
    // Headers kept: how many of `sent`, in order.
    const struct { int status; const char16_t *method, *target, *method2; bool bodyKept; std::size_t headersKept; }
    cases[] = {
        {301, u"POST", u"http://a.test/next", u"GET", false, 2}, // Content-Type goes with the body
        {302, u"POST", u"http://a.test/next", u"GET", false, 2},
        {303, u"PUT", u"http://a.test/next", u"GET", false, 2},
        {303, u"HEAD", u"http://a.test/next", u"HEAD", true, 3},
        {301, u"GET", u"http://a.test:80/next", u"GET", true, 3},
        {307, u"POST", u"http://a.test/next", u"POST", true, 3},
        {308, u"POST", u"https://a.test/next", u"POST", true, 1}, // another origin
        {302, u"GET", u"http://b.test/next", u"GET", true, 1},
    };
    for (const auto& c : cases) {
        HttpRequest request;
        request.url = u"http://a.test/form";
        request.method = c.method;
        request.headers = sent;
        request.body = "data";
        const HttpRequest next = redirectedRequest(request, c.status, c.target);
        const std::string label = std::to_string(c.status) + " " + ZString(c.method).toUtf8();
        EXPECT_EQ(next.url, ZString(c.target)) << label;
        EXPECT_EQ(next.method, ZString(c.method2)) << label;
        EXPECT_EQ(next.body, c.bodyKept ? "data" : "") << label;
        ASSERT_EQ(next.headers.size(), c.headersKept) << label;
        EXPECT_EQ(next.headers[0].name, c.headersKept == 2 ? ZString(u"Authorization") : ZString(u"Content-Type"))
            << label;
    }
    for (int status : {300, 304, 200, 404})
        EXPECT_FALSE(isRedirectStatus(status)) << status;
}

TEST(HttpRedirect, Origins)
{
    const struct { const char16_t *url, *origin; } cases[] = {
        {u"HTTP://Example.COM/a", u"http://example.com:80"},
        {u"https://user:pw@host:8443/x?y#z", u"https://host:8443"},
        {u"https://[::1]/", u"https://[::1]:443"},
        {u"http://[::1]:8080", u"http://[::1]:8080"},
        {u"http://h?q=1", u"http://h:80"},
        {u"ftp://host/", u""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(originOf(c.url), ZString(c.origin)) << ZString(c.url).toUtf8();
}

} // namespace
