#pragma once
// What the PDF tests share: writing a document and checking the file with outside tools,
// and building files by hand for the reader.

#include "zpdf/Array.h"
#include "zpdf/Document.h"
#include "zpdf/ObjectParser.h"
#include "zpdf/PdfException.h"

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace zpdfTest {

// The document as a BufferWriter writes it. Expects a FileWriter to write the same bytes,
// startxref to name the offset of "xref", and natively qpdf --check and pdfinfo to accept
// the file; `info` receives pdfinfo's output (UTF-8).
std::string writeChecked(zpdf::Document& document, std::string* info = nullptr);
std::string temporaryPath(const char* suffix);
std::string readFile(const std::string& path);
// Runs a shell command natively with stderr; returns its exit code.
int run(const std::string& command, std::string& output);

// Parses objects from one text, as a reader does (references resolve to nothing).
struct Parsing {
    explicit Parsing(std::string text) : bytes(std::move(text)), tokens(bytes), parser(tokens, names, table) {}

    std::string bytes;
    std::shared_ptr<zpdf::IndirectTable> table = std::make_shared<zpdf::IndirectTable>();
    zpdf::NameTable names;
    zpdf::Tokenizer tokens;
    zpdf::ObjectParser parser;
};

zpdf::Ptr<zpdf::Array> arrayOf(std::initializer_list<zpdf::Ptr<zpdf::Object>> elements);

// The message of the PdfException that `action` throws, or "(no exception)".
template <class Action>
std::string errorOf(Action&& action)
{
    try {
        action();
    } catch (const zpdf::PdfException& error) {
        return error.what();
    }
    return "(no exception)";
}

extern const char* const catalog; // pages in object 2
extern const char* const pages;   // one kid, object 3
std::string page(int width, const std::string& entries = "");

// Builds a file: objects at known offsets, classic cross-reference tables and streams,
// object streams, incremental updates. Each call returns the offset of what it appended.
class PdfBuilder {
public:
    std::size_t object(std::uint32_t number, const std::string& body);
    // A compressed object stream of (number, body) members, entered as compressed objects.
    std::size_t objectStream(std::uint32_t number, const std::vector<std::pair<std::uint32_t, std::string>>& members);
    // Objects 1 to 3: catalog, page tree and a page 612 x 792 with `pageEntries`.
    void pageTree(const std::string& pageEntries = "");
    // A section of the objects added since the last one, a subsection each, with Size added
    // to `trailerEntries`, and startxref.
    std::size_t table(const std::string& trailerEntries);
    // Flate-compressed with the PNG Up predictor.
    std::size_t xrefStream(std::uint32_t number, const std::string& trailerEntries);

    std::string bytes = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
    std::size_t lastSection = 0; // for the next section's Prev

private:
    struct Entry { int type; std::uint64_t field2; unsigned field3; }; // type 0 free, 1 direct, 2 compressed
    std::size_t finish(std::size_t section);

    std::map<std::uint32_t, Entry> pending_ = {{0, Entry{0, 0, 65535}}}; // the first section's free head
    std::uint32_t highest_ = 0;
};

} // namespace zpdfTest
