#include "zpdf/XRefParser.h"

#include "zpdf/Array.h"
#include "zpdf/BoundedDecode.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/ObjectParser.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"
#include "zpdf/Tokenizer.h"

#include <algorithm>
#include <optional>
#include <set>

namespace zpdf {

namespace {

// "startxref" is looked for in this many bytes at the end of the file.
constexpr std::size_t startXRefWindow = 4096;
// The shortest table entry that is still read: "0 0 n" and one blank.
constexpr std::size_t shortestEntry = 6;

std::optional<std::int64_t> integerEntry(const Dict& dict, const Ptr<Name>& key)
{
    Object* value = dict.get(key);
    Number* number = value ? value->asNumber() : nullptr;
    if (!number || !number->isInteger())
        return std::nullopt;
    return static_cast<std::int64_t>(number->value());
}

// The big-endian number in `width` bytes at `at`; `fallback` when the field is absent.
std::uint64_t field(const std::string& data, std::size_t at, int width, std::uint64_t fallback)
{
    if (width == 0)
        return fallback;
    std::uint64_t value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 8 | static_cast<unsigned char>(data[at + i]);
    return value;
}

void completeTrailer(Dict& newest, const Dict& older)
{
    for (const Ptr<Name>* key : {&names::Root(), &names::Info(), &names::ID(), &names::Encrypt()})
        if (!newest.get(*key))
            if (Object* value = older.get(*key))
                newest.set(*key, Ptr<Object>(value));
}

} // namespace

XRefParser::XRefParser(std::string_view data, NameTable& names, std::weak_ptr<const IndirectTable> table)
    : data_(data), names_(names), table_(std::move(table))
{
}

std::uint64_t XRefParser::findStartXRef(std::string_view data)
{
    const std::size_t from = data.size() > startXRefWindow ? data.size() - startXRefWindow : 0;
    const std::size_t at = data.rfind("startxref");
    if (at == std::string_view::npos || at < from)
        throw PdfException("No \"startxref\" at the end of the file");
    Tokenizer tokens(data, at + 9);
    const Token offset = tokens.next();
    if (offset.kind != TokenKind::integer || offset.integer < 0)
        throw PdfException("No offset after \"startxref\"" + atOffset(at));
    return static_cast<std::uint64_t>(offset.integer);
}

Ptr<Dict> XRefParser::readChain(std::uint64_t offset, CrossReference& entries)
{
    std::set<std::uint64_t> visited;
    Ptr<Dict> newest;
    for (std::optional<std::uint64_t> next = offset; next;) {
        if (!visited.insert(*next).second)
            throw PdfException("Loop in the chain of cross-reference sections" + atOffset(*next));
        CrossReference section(entries.limit());
        Ptr<Dict> trailer = readSection(*next, section);
        entries.mergeOlder(section);
        if (!newest)
            newest = trailer;
        else
            completeTrailer(*newest, *trailer);
        const std::optional<std::int64_t> prev = integerEntry(*trailer, names::Prev());
        next.reset();
        if (prev && *prev >= 0)
            next = static_cast<std::uint64_t>(*prev);
    }
    return newest;
}

Ptr<Dict> XRefParser::readSection(std::uint64_t offset, CrossReference& section)
{
    if (offset >= data_.size())
        throw PdfException("Cross-reference section beyond the end of the file" + atOffset(offset));
    Tokenizer tokens(data_, static_cast<std::size_t>(offset));
    const Token first = tokens.next();
    if (first.isKeyword("xref"))
        return readTable(tokens, section);
    return readStream(offset, section, false);
}

Ptr<Dict> XRefParser::readTable(Tokenizer& tokens, CrossReference& section)
{
    // table := 'xref' (integer integer entry*)* 'trailer' dict
    for (;;) {
        const Token first = tokens.next();
        if (first.isKeyword("trailer"))
            break;
        const Token count = tokens.next();
        if (first.kind != TokenKind::integer || count.kind != TokenKind::integer || first.integer < 0 || count.integer < 0)
            throw PdfException("Malformed cross-reference subsection" + atOffset(first.offset));
        readSubsection(tokens, first.integer, count.integer, section);
    }
    ObjectParser parser(tokens, names_, table_);
    const std::size_t at = tokens.position();
    Ptr<Object> trailer = parser.parseObject();
    if (trailer->type() != Type::Dict)
        throw PdfException("Trailer is not a dictionary" + atOffset(at));
    Ptr<Dict> dict = staticPtrCast<Dict>(trailer);
    const std::optional<std::int64_t> stream = integerEntry(*dict, names::XRefStm());
    if (stream && *stream >= 0)
        readStream(static_cast<std::uint64_t>(*stream), section, true);
    return dict;
}

void XRefParser::readSubsection(Tokenizer& tokens, std::int64_t first, std::int64_t count, CrossReference& section)
{
    // entry := offset generation ('n' | 'f'), normally 20 bytes each
    const std::size_t start = tokens.position();
    if (static_cast<std::uint64_t>(count) > (data_.size() - start) / shortestEntry
        || !section.admits(static_cast<std::uint64_t>(first + count) - (count > 0 ? 1 : 0)))
        throw PdfException("Cross-reference subsection larger than the file" + atOffset(start));
    for (std::int64_t i = 0; i < count; ++i) {
        const Token offset = tokens.next();
        const Token generation = tokens.next();
        const Token kind = tokens.next();
        if (offset.kind != TokenKind::integer || generation.kind != TokenKind::integer || offset.integer < 0
            || generation.integer < 0 || generation.integer > 65535 || !(kind.isKeyword("n") || kind.isKeyword("f")))
            throw PdfException("Malformed cross-reference entry" + atOffset(offset.offset));
        // A table that starts at 1 with the free head of the list means 0: a known producer slip.
        if (i == 0 && first == 1 && kind.isKeyword("f") && generation.integer == 65535)
            first = 0;
        CrossReference::Entry entry;
        entry.offset = static_cast<std::uint64_t>(offset.integer);
        entry.generation = static_cast<std::uint16_t>(generation.integer);
        // Offset 0 cannot hold an object; such entries count as free, as readers do.
        entry.kind = kind.isKeyword("n") && offset.integer > 0 ? CrossReference::Kind::direct : CrossReference::Kind::free;
        section.addIfAbsent(static_cast<std::uint32_t>(first + i), entry);
    }
}

Ptr<Dict> XRefParser::readStream(std::uint64_t offset, CrossReference& section, bool hybrid)
{
    // stream := integer integer 'obj' << /Type /XRef /W [a b c] /Size n /Index [...]? >> stream
    if (offset >= data_.size())
        throw PdfException("Cross-reference stream beyond the end of the file" + atOffset(offset));
    Tokenizer tokens(data_, static_cast<std::size_t>(offset));
    ObjectParser parser(tokens, names_, table_);
    Ptr<Indirect> object = parser.parseIndirect();
    Stream* stream = object->value() && object->value()->type() == Type::Stream ? static_cast<Stream*>(object->value()) : nullptr;
    if (!stream)
        throw PdfException("No cross-reference stream" + atOffset(offset));
    Dict& dict = *stream->dict();
    Array* widths = dict.get(names::W()) ? dict.get(names::W())->asArray() : nullptr;
    const std::optional<std::int64_t> size = integerEntry(dict, names::Size());
    if (!widths || widths->size() != 3 || !size || *size < 0)
        throw PdfException("Cross-reference stream without valid W and Size" + atOffset(offset));
    int w[3];
    for (int i = 0; i < 3; ++i) {
        Number* width = widths->at(i) ? widths->at(i)->asNumber() : nullptr;
        w[i] = width ? width->intValue() : -1;
        if (w[i] < 0 || w[i] > 8)
            throw PdfException("Cross-reference stream field width out of range" + atOffset(offset));
    }
    const std::size_t entryWidth = static_cast<std::size_t>(w[0] + w[1] + w[2]);
    if (entryWidth == 0)
        throw PdfException("Cross-reference stream field widths are all 0" + atOffset(offset));
    const std::string data = decodeBounded(*stream, structureLimit(data_.size()));

    std::vector<std::int64_t> ranges{0, *size};
    if (Array* index = dict.get(names::Index()) ? dict.get(names::Index())->asArray() : nullptr) {
        ranges.clear();
        for (const Ptr<Object>& element : *index) {
            Number* number = element ? element->asNumber() : nullptr;
            if (!number || !number->isInteger() || number->value() < 0)
                throw PdfException("Cross-reference stream Index is not a list of numbers" + atOffset(offset));
            ranges.push_back(static_cast<std::int64_t>(number->value()));
        }
        if (ranges.size() % 2 != 0)
            throw PdfException("Cross-reference stream Index has an odd length" + atOffset(offset));
    }
    std::size_t at = 0;
    for (std::size_t r = 0; r < ranges.size(); r += 2) {
        const std::int64_t first = ranges[r];
        const std::int64_t count = ranges[r + 1];
        if (static_cast<std::uint64_t>(count) > (data.size() - at) / entryWidth
            || (count > 0 && !section.admits(static_cast<std::uint64_t>(first + count - 1))))
            throw PdfException("Cross-reference stream declares more entries than it holds" + atOffset(offset));
        for (std::int64_t i = 0; i < count; ++i, at += entryWidth) {
            const std::uint64_t type = field(data, at, w[0], 1);
            CrossReference::Entry entry;
            const std::uint64_t second = field(data, at + w[0], w[1], 0);
            const std::uint64_t third = field(data, at + w[0] + w[1], w[2], 0);
            if (type == 0) {
                entry.kind = CrossReference::Kind::free;
            } else if (type == 1) {
                entry.kind = second > 0 ? CrossReference::Kind::direct : CrossReference::Kind::free;
                entry.offset = second;
                entry.generation = static_cast<std::uint16_t>(std::min<std::uint64_t>(third, 65535));
            } else if (type == 2) {
                entry.kind = second <= UINT32_MAX && third <= UINT32_MAX ? CrossReference::Kind::compressed
                                                                          : CrossReference::Kind::free;
                entry.offset = second;
                entry.index = static_cast<std::uint32_t>(third);
            } else {
                continue; // other types are reserved and stand for null objects
            }
            const auto number = static_cast<std::uint32_t>(first + i);
            if (hybrid)
                section.addUnlessInUse(number, entry);
            else
                section.addIfAbsent(number, entry);
        }
    }
    streamNumbers_.push_back(object->number());
    return Ptr<Dict>(&dict);
}

} // namespace zpdf
