#include "zpdf/ObjectStream.h"

#include "zpdf/BoundedDecode.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/ObjectParser.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"

#include <limits>

namespace zpdf {

namespace {

// The shortest pair of the table: "0 0" and a blank.
constexpr std::size_t shortestPair = 4;

std::int64_t integerEntry(const Dict& dict, const Ptr<Name>& key, std::size_t offset)
{
    Object* value = dict.get(key);
    Number* number = value ? value->asNumber() : nullptr;
    if (!number || !number->isInteger() || number->value() < 0)
        throw PdfException("Object stream without a valid " + key->bytes() + atOffset(offset));
    return static_cast<std::int64_t>(number->value());
}

} // namespace

ObjectStream::ObjectStream(const Stream& stream, std::size_t fileSize, std::size_t offset) : offset_(offset)
{
    // objstm := (integer integer){N} object{N}, the objects starting at First
    const std::int64_t count = integerEntry(*stream.dict(), names::N(), offset);
    const std::int64_t first = integerEntry(*stream.dict(), names::First(), offset);
    data_ = decodeBounded(stream, structureLimit(fileSize));
    if (static_cast<std::uint64_t>(first) > data_.size()
        || static_cast<std::uint64_t>(count) > static_cast<std::uint64_t>(first) / shortestPair + 1)
        throw PdfException("Object stream declares more than it holds" + atOffset(offset));
    Tokenizer tokens(std::string_view(data_).substr(0, static_cast<std::size_t>(first)));
    entries_.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
        const Token number = tokens.next();
        const Token at = tokens.next();
        if (number.kind != TokenKind::integer || at.kind != TokenKind::integer || number.integer < 0
            || number.integer > std::numeric_limits<std::uint32_t>::max() || at.integer < 0
            || static_cast<std::uint64_t>(at.integer) > data_.size() - static_cast<std::size_t>(first))
            throw PdfException("Malformed object stream table in the stream" + atOffset(offset));
        entries_.push_back(Entry{static_cast<std::uint32_t>(number.integer),
                                 static_cast<std::size_t>(first + at.integer)});
    }
}

Ptr<Object> ObjectStream::parse(std::size_t index, NameTable& names, std::weak_ptr<const IndirectTable> table) const
{
    const std::size_t start = entries_[index].start;
    std::size_t end = data_.size();
    if (index + 1 < entries_.size() && entries_[index + 1].start >= start)
        end = entries_[index + 1].start;
    Tokenizer tokens(std::string_view(data_).substr(0, end), start);
    ObjectParser parser(tokens, names, std::move(table));
    try {
        return parser.parseObject();
    } catch (const NumberFormatException& error) {
        throw NumberFormatException(std::string(error.what()) + " in the object stream" + atOffset(offset_));
    } catch (const PdfException& error) {
        throw PdfException(std::string(error.what()) + " in the object stream" + atOffset(offset_));
    }
}

} // namespace zpdf
