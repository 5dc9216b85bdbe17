#include "zpdf/XRef.h"

#include "zpdf/Array.h"
#include "zpdf/PdfException.h"
#include "zpdf/Writer.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace zpdf {

namespace {

// Writes `value` left-padded with '0' to `width` digits; a longer value is written whole.
char* padded(char* at, std::int64_t value, int width)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const int length = static_cast<int>(end - digits);
    for (int i = length; i < width; ++i)
        *at++ = '0';
    std::memcpy(at, digits, length);
    return at + length;
}

} // namespace

void XRef::add(const Entry& entry)
{
    if (entries_.empty() || entries_.back().number < entry.number) {
        entries_.push_back(entry);
        return;
    }
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), entry.number,
                                     [](const Entry& e, std::uint32_t number) { return e.number < number; });
    if (at != entries_.end() && at->number == entry.number)
        *at = entry;
    else
        entries_.insert(at, entry);
}

void XRef::addFreeEntries()
{
    const std::uint64_t highest = entries_.empty() ? 0 : entries_.back().number;
    if (highest >= maxListElements)
        throw PdfException("list too long");
    std::vector<Entry> filled;
    filled.reserve(static_cast<std::size_t>(highest) + 1);
    std::uint32_t previousFree = 0;
    auto next = entries_.begin();
    for (std::uint32_t number = 0; number <= highest; ++number) {
        if (next != entries_.end() && next->number == number) {
            filled.push_back(*next++);
            continue;
        }
        filled.push_back(Entry{number, static_cast<std::uint16_t>(number == 0 ? 65535 : 0), previousFree, false});
        previousFree = number;
    }
    entries_ = std::move(filled);
}

void XRef::write(Writer& out) const
{
    out.write("xref\r\n");
    for (std::size_t first = 0; first < entries_.size();) {
        std::size_t end = first + 1;
        while (end < entries_.size() && entries_[end].number == entries_[end - 1].number + 1)
            ++end;
        out.writeInt(entries_[first].number);
        out.put(' ');
        out.writeInt(static_cast<std::int64_t>(end - first));
        out.write("\r\n");
        for (std::size_t i = first; i < end; ++i) {
            char line[48];
            char* at = padded(line, entries_[i].offset, 10);
            *at++ = ' ';
            at = padded(at, entries_[i].generation, 5);
            *at++ = ' ';
            *at++ = entries_[i].inUse ? 'n' : 'f';
            *at++ = '\r';
            *at++ = '\n';
            out.write(std::string_view(line, at - line));
        }
        first = end;
    }
}

Ptr<Object> XRef::clone() const
{
    Ptr<XRef> copy = make<XRef>();
    copy->entries_ = entries_;
    return copy;
}

} // namespace zpdf
