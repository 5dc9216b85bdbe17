#pragma once
// Builds PDF files by hand for the reader's tests: objects at known offsets, classic
// cross-reference tables, cross-reference streams and object streams, incremental updates.

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zpdfTest {

class PdfBuilder {
public:
    explicit PdfBuilder(const std::string& header = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n") : bytes_(header) {}

    // Appends "N G obj" body "endobj" and returns its offset.
    std::size_t object(std::uint32_t number, const std::string& body, std::uint16_t generation = 0);
    // Appends an object stream holding `members` (number, body), Flate-compressed when
    // `compressed`; the members are entered as compressed objects for xrefStream().
    std::size_t objectStream(std::uint32_t number, const std::vector<std::pair<std::uint32_t, std::string>>& members,
                             bool compressed = true);
    void raw(const std::string& bytes) { bytes_ += bytes; }
    // Objects 1 to 3: the catalog, the page tree and its one page, `width` x 792, with
    // `pageEntries` added to the page's dictionary.
    void pageTree(int width = 612, const std::string& pageEntries = "");

    // Appends a classic table of the objects added since the last section, one subsection
    // per run of numbers (object 0 in the first section), then "trailer" with
    // `trailerEntries` ("/Root 1 0 R ...", Size added) and startxref. Returns the offset of "xref".
    std::size_t table(const std::string& trailerEntries);
    // The same as a cross-reference stream numbered `number` (W [1 4 2], Index per run),
    // Flate-compressed with the PNG Up predictor when `predicted`.
    std::size_t xrefStream(std::uint32_t number, const std::string& trailerEntries, bool predicted = true);

    // Sections written so far; the next section's Prev can name the last.
    std::size_t lastSection() const { return lastSection_; }
    std::size_t offsetOf(std::uint32_t number) const { return offsets_.at(number); }
    const std::string& bytes() const { return bytes_; }

private:
    struct Entry {
        int type; // 1 direct, 2 compressed
        std::uint64_t field2;
        std::uint64_t field3;
    };

    void finish(std::size_t section);

    std::string bytes_;
    std::map<std::uint32_t, Entry> pending_;
    std::map<std::uint32_t, std::size_t> offsets_;
    std::uint32_t highest_ = 0;
    bool first_ = true;
    std::size_t lastSection_ = 0;
};

} // namespace zpdfTest
