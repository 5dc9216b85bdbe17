#pragma once
// CrossReference: where each numbered object of a file is, as its cross-reference
// sections say: at a byte offset, inside an object stream, or free.
//
// Kept as a vector indexed by object number (the numbers of a file are dense); numbers at
// or above the limit given at construction are refused, so a small damaged file cannot
// make the reader allocate for millions of entries.

#include <cstdint>
#include <vector>

namespace zpdf {

class CrossReference {
public:
    enum class Kind : std::uint8_t { none, free, direct, compressed };

    struct Entry {
        // direct: the byte offset of "N G obj"; compressed: the object stream's number.
        std::uint64_t offset = 0;
        // compressed: the object's index within its object stream.
        std::uint32_t index = 0;
        std::uint16_t generation = 0;
        Kind kind = Kind::none;

        // Direct or compressed: the number has an object.
        bool inUse() const { return kind == Kind::direct || kind == Kind::compressed; }
    };

    // The highest object number that can be entered is limit - 1.
    explicit CrossReference(std::uint32_t limit) : limit_(limit) {}

    std::uint32_t limit() const { return limit_; }
    bool admits(std::uint64_t number) const { return number < limit_; }

    // Sections are read newest first, so an entry that is set already wins. Numbers not
    // admitted are ignored.
    void addIfAbsent(std::uint32_t number, const Entry& entry);
    // Sets the entry unless the number has an entry in use (the table's part of a hybrid
    // section wins over its cross-reference stream).
    void addUnlessInUse(std::uint32_t number, const Entry& entry);
    // Overwrites; for the repair scan, where the later object in the file wins.
    void set(std::uint32_t number, const Entry& entry);
    // Every entry of `older` that is set, unless this one has the number already.
    void mergeOlder(const CrossReference& older);

    // Kind none for numbers without an entry.
    const Entry& at(std::uint32_t number) const { return number < entries_.size() ? entries_[number] : none_; }
    // One above the highest number with an entry.
    std::uint32_t size() const { return static_cast<std::uint32_t>(entries_.size()); }
    bool isEmpty() const { return entries_.empty(); }
    // The number of entries in use, direct or compressed.
    std::uint32_t countInUse() const;
    // The offsets of the direct entries, ascending, each once.
    std::vector<std::uint64_t> directOffsets() const;

private:
    Entry* slot(std::uint32_t number);

    std::uint32_t limit_;
    std::vector<Entry> entries_;
    Entry none_;
};

} // namespace zpdf
