// Parses a generated 2 MB markup text with the xhtml parser and, as a yardstick, with
// libxml2's forgiving HTML parser. Prints throughput (MB/s of markup, best of 30 runs each,
// building the tree but not freeing it) and the bytes the tree asks of the allocator, per
// node (elements and text runs; libxml2's attribute nodes count in its bytes, not its nodes).

#include "xhtml/HtmlParser.h"

#ifdef XHTML_BENCH_LIBXML2
#include <libxml/HTMLparser.h>
#include <libxml/xmlmemory.h>
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

// Bytes asked of the allocator, counted in a header before each block.
size_t liveBytes = 0;
size_t allocations = 0;
constexpr size_t headerSize = alignof(std::max_align_t);

void* countedAlloc(size_t size)
{
    auto* block = static_cast<unsigned char*>(std::malloc(size + headerSize));
    if (!block)
        return nullptr;
    std::memcpy(block, &size, sizeof size);
    liveBytes += size;
    ++allocations;
    return block + headerSize;
}

void countedFree(void* pointer)
{
    if (!pointer)
        return;
    unsigned char* block = static_cast<unsigned char*>(pointer) - headerSize;
    size_t size;
    std::memcpy(&size, block, sizeof size);
    liveBytes -= size;
    std::free(block);
}

} // namespace

void* operator new(size_t size)
{
    if (void* pointer = countedAlloc(size ? size : 1))
        return pointer;
    throw std::bad_alloc();
}
void operator delete(void* pointer) noexcept
{
    countedFree(pointer);
}
void operator delete(void* pointer, size_t) noexcept
{
    countedFree(pointer);
}

namespace {

constexpr size_t targetSize = 2 * 1024 * 1024;

// One section of the document: nested blocks with inline styles, a table, entities, and
// elements left unclosed the way hand-written markup leaves them.
void appendSection(std::string& out, int n)
{
    const int depth = 1 + n % 6;
    for (int i = 0; i < depth; ++i)
        out += "<div class=\"level" + std::to_string(i) + "\" style=\"padding:" + std::to_string(i * 2) +
               "px; border: 1px solid #E8E8E8\">\r\n";
    out += "<h2 id=\"s" + std::to_string(n) + "\">Section " + std::to_string(n) + " &amp; notes &ndash; part</h2>\r\n";
    out += "<p style=\"color:#333333; font-size:12px\">Plain text with &nbsp;entities&nbsp;&copy; &#169; &#x20AC; "
           "and <b>bold <i>italic</b> left open,<br> a line break <span title='tip'>span</span> x < y.\r\n";
    out += "<table border=0 width=\"100%\" cellpadding=2><tr><td valign=middle style=\"padding-left:15px; "
           "width:35px;\"><img src=\"info.png\" width=20 height=20/></td><td>cell &euro; "
           + std::to_string(n * 7) + "</td><td align=center>three</td></tr><tr><td>a<td>b<td>c</tr></table>\r\n";
    out += "<ul><li>first item<li>second item<li>third <a href=\"#s" + std::to_string(n) + "\">link</a></ul>\r\n";
    out += "<select id=sel" + std::to_string(n) +
           "><option value=\"a\" selected>Alpha<option value=\"b\">Beta</select><!-- a comment -->\r\n";
    for (int i = 0; i < depth; ++i)
        out += "</div>\r\n";
}

std::string generateMarkup()
{
    std::string out = "<body style=\"background-gradient: #FFFFFF #E8E8E8 vertical\">\r\n";
    for (int n = 0; out.size() < targetSize - 64; ++n)
        appendSection(out, n);
    out.resize(targetSize - 11, ' ');
    out += "\r\n</body>\r\n";
    return out;
}

double seconds(std::chrono::steady_clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

// The time of one run of `parse`, which returns what `release` frees afterwards, outside the
// measured time.
template <typename Parse, typename Release>
double timeOnce(Parse parse, Release release)
{
    const auto start = std::chrono::steady_clock::now();
    auto result = parse();
    const double elapsed = seconds(std::chrono::steady_clock::now() - start);
    release(result);
    // A large request makes glibc merge the freed small blocks now, not inside the next
    // measured run.
    std::free(std::malloc(64 * 1024));
    return elapsed;
}

struct Figures {
    size_t nodes;
    double bytesPerNode;
    double allocationsPerNode;
};

// What the tree that one run of `parse` leaves asks of the allocator.
template <typename Parse, typename Count, typename Release>
Figures measureTree(Parse parse, Count count, Release release)
{
    const size_t bytesBefore = liveBytes;
    const size_t allocationsBefore = allocations;
    auto result = parse();
    const double bytes = double(liveBytes - bytesBefore);
    const double blocks = double(allocations - allocationsBefore);
    const size_t nodes = count(result);
    release(result);
    return Figures{nodes, bytes / double(nodes), blocks / double(nodes)};
}

// A parser under test: one timed parse of the whole markup, and the figures of its tree.
struct Contender {
    const char* name;
    std::function<double()> timeOneParse;
    std::function<Figures()> measure;
    double bestSeconds = 1e30;
};

size_t countNodes(const xhtml::HtmlTagNode& root)
{
    size_t count = 0;
    std::vector<const xhtml::HtmlTagNode*> pending{&root};
    while (!pending.empty()) {
        const xhtml::HtmlTagNode* tag = pending.back();
        pending.pop_back();
        for (const auto& child : tag->children()) {
            ++count;
            if (child->isTag())
                pending.push_back(static_cast<const xhtml::HtmlTagNode*>(child.get()));
        }
    }
    return count;
}

Contender xhtmlContender(const ZString& text)
{
    auto parse = [&text] {
        auto root = std::make_unique<xhtml::HtmlTagNode>();
        xhtml::HtmlParser::parse(root.get(), text.c_str());
        return root;
    };
    auto release = [](std::unique_ptr<xhtml::HtmlTagNode>& root) { root.reset(); };
    auto count = [](const std::unique_ptr<xhtml::HtmlTagNode>& root) { return countNodes(*root); };
    return Contender{"xhtml::HtmlParser", [=] { return timeOnce(parse, release); },
                     [=] { return measureTree(parse, count, release); }};
}

double utf8ConversionSeconds(const std::string& markup)
{
    double best = 1e30;
    for (int i = 0; i < 10; ++i)
        best = std::min(best, timeOnce([&] { return ZString::fromUtf8(markup); }, [](ZString&) {}));
    return best;
}

#ifdef XHTML_BENCH_LIBXML2
char* countedStrdup(const char* text)
{
    const size_t size = std::strlen(text) + 1;
    char* copy = static_cast<char*>(countedAlloc(size));
    if (copy)
        std::memcpy(copy, text, size);
    return copy;
}

void* countedRealloc(void* pointer, size_t size)
{
    void* grown = countedAlloc(size);
    if (grown && pointer) {
        size_t old;
        std::memcpy(&old, static_cast<unsigned char*>(pointer) - headerSize, sizeof old);
        std::memcpy(grown, pointer, std::min(old, size));
        countedFree(pointer);
    }
    return grown;
}

size_t countLibxmlNodes(xmlNode* node)
{
    size_t count = 0;
    std::vector<xmlNode*> pending{node};
    while (!pending.empty()) {
        xmlNode* current = pending.back();
        pending.pop_back();
        for (xmlNode* child = current->children; child; child = child->next) {
            if (child->type == XML_ELEMENT_NODE || child->type == XML_TEXT_NODE)
                ++count;
            pending.push_back(child);
        }
    }
    return count;
}

const int libxmlOptions = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;

Contender libxml2Contender(const std::string& markup)
{
    auto parse = [&markup] {
        return htmlReadMemory(markup.data(), int(markup.size()), nullptr, "UTF-8", libxmlOptions);
    };
    auto release = [](htmlDocPtr document) { xmlFreeDoc(document); };
    auto count = [](htmlDocPtr document) { return countLibxmlNodes(reinterpret_cast<xmlNode*>(document)); };
    return Contender{"libxml2 htmlReadMemory", [=] { return timeOnce(parse, release); },
                     [=] { return measureTree(parse, count, release); }};
}
#endif

double megabytesPerSecond(size_t bytes, double seconds)
{
    return double(bytes) / 1e6 / seconds;
}

void print(const Contender& contender, size_t markupBytes)
{
    const Figures figures = contender.measure();
    std::printf("%-22s %9.1f MB/s   %8zu nodes   %6.1f bytes/node   %4.2f allocations/node\n", contender.name,
                megabytesPerSecond(markupBytes, contender.bestSeconds), figures.nodes, figures.bytesPerNode,
                figures.allocationsPerNode);
}

} // namespace

int main()
{
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
    std::printf("note: built with AddressSanitizer; the figures are not representative\n");
#endif
#endif
#ifdef XHTML_BENCH_LIBXML2
    // Before libxml2 allocates anything, so every block it frees is one it counted.
    xmlMemSetup(countedFree, countedAlloc, countedRealloc, countedStrdup);
    xmlInitParser();
#endif
    const std::string markup = generateMarkup();
    std::printf("markup: %zu bytes of UTF-8 (the xhtml parser reads it as UTF-16, converted beforehand)\n",
                markup.size());
    const ZString text = ZString::fromUtf8(markup);
    std::vector<Contender> contenders{xhtmlContender(text)};
#ifdef XHTML_BENCH_LIBXML2
    contenders.push_back(libxml2Contender(markup));
#endif
    // Rounds alternate between the parsers, so a slow spell of the machine falls on both.
    for (int round = 0; round < 30; ++round) {
        for (Contender& contender : contenders)
            contender.bestSeconds = std::min(contender.bestSeconds, contender.timeOneParse());
    }
    for (const Contender& contender : contenders)
        print(contender, markup.size());
    std::printf("%-22s %9.1f MB/s   (UTF-8 to UTF-16, not included above)\n", "ZString::fromUtf8",
                megabytesPerSecond(markup.size(), utf8ConversionSeconds(markup)));
#ifdef XHTML_BENCH_LIBXML2
    std::printf("throughput ratio: %.1f x libxml2\n", contenders[1].bestSeconds / contenders[0].bestSeconds);
    xmlCleanupParser();
#else
    std::printf("libxml2 not found at configure time: no yardstick\n");
#endif
    return 0;
}
