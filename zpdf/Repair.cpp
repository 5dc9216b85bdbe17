#include "zpdf/Repair.h"

#include "zpdf/Names.h"
#include "zpdf/ObjectParser.h"
#include "zpdf/ObjectStream.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"

#include <optional>

namespace zpdf {

namespace {

// The start of the decimal number that ends just before `end` (after blanks), or npos.
std::size_t numberBefore(std::string_view data, std::size_t end, std::uint64_t& value)
{
    std::size_t at = end;
    while (at > 0 && Tokenizer::isWhite(data[at - 1]))
        --at;
    if (at == end)
        return std::string_view::npos; // no blank between the number and what follows
    const std::size_t last = at;
    while (at > 0 && Tokenizer::isDigit(data[at - 1]) && last - at < 10)
        --at;
    if (at == last || (at > 0 && Tokenizer::isRegular(data[at - 1])))
        return std::string_view::npos;
    value = 0;
    for (std::size_t i = at; i < last; ++i)
        value = value * 10 + static_cast<std::uint64_t>(data[i] - '0');
    return at;
}

bool hasType(Dict& dict, const Ptr<Name>& type)
{
    Object* value = dict.get(names::Type());
    return value && value->type() == Type::Name && static_cast<Name*>(value)->bytes() == type->bytes();
}

} // namespace

Repair::Repair(std::string_view data, NameTable& names, std::weak_ptr<const IndirectTable> table, std::uint32_t limit)
    : data_(data), names_(names), table_(std::move(table)), entries_(limit)
{
    scanObjects();
    addObjectStreams();
    findTrailer();
}

void Repair::scanObjects()
{
    // header := integer white+ integer white+ 'obj'
    std::vector<Found> headers;
    for (std::size_t hit, from = 0; (hit = data_.find("obj", from)) != std::string_view::npos;) {
        from = hit + 3;
        if (from < data_.size() && Tokenizer::isRegular(data_[from]))
            continue; // "objects", "obj1"
        std::uint64_t generation = 0;
        std::uint64_t number = 0;
        const std::size_t generationAt = numberBefore(data_, hit, generation);
        const std::size_t numberAt =
            generationAt == std::string_view::npos ? generationAt : numberBefore(data_, generationAt, number);
        if (numberAt != std::string_view::npos && generation <= 65535 && entries_.admits(number))
            headers.push_back(Found{static_cast<std::uint32_t>(number), static_cast<std::uint16_t>(generation), numberAt});
    }
    for (std::size_t i = 0; i < headers.size(); ++i) {
        CrossReference::Entry entry;
        entry.kind = CrossReference::Kind::direct;
        entry.offset = headers[i].offset;
        entry.generation = headers[i].generation;
        entries_.set(headers[i].number, entry);
        // Each object is read up to the next header only, so the scan stays linear.
        inspect(headers[i], i + 1 < headers.size() ? headers[i + 1].offset : data_.size());
    }
}

void Repair::inspect(const Found& found, std::size_t end)
{
    Tokenizer tokens(data_.substr(0, end), found.offset);
    ObjectParser parser(tokens, names_, table_);
    Ptr<Indirect> object;
    try {
        object = parser.parseIndirect();
    } catch (const PdfException&) {
        return; // still an entry: loading it reports the damage
    }
    Object* value = object->value();
    if (value->type() == Type::Dict && hasType(*static_cast<Dict*>(value), names::Catalog()))
        catalogs_.push_back(found);
    if (value->type() != Type::Stream)
        return;
    Dict& dict = *static_cast<Stream*>(value)->dict();
    if (hasType(dict, names::ObjStm())) {
        objectStreams_.push_back(found);
        structure_.push_back(found.number);
    } else if (hasType(dict, names::XRef())) {
        structure_.push_back(found.number);
        if (dict.get(names::Root()))
            xrefStreamTrailer_ = Ptr<Dict>(&dict);
    }
}

void Repair::addObjectStreams()
{
    for (const Found& found : objectStreams_) {
        const CrossReference::Entry& current = entries_.at(found.number);
        if (current.offset != found.offset)
            continue; // replaced by a later object of the same number
        try {
            Tokenizer tokens(data_, found.offset);
            ObjectParser parser(tokens, names_, table_);
            Ptr<Indirect> object = parser.parseIndirect();
            const ObjectStream stream(*static_cast<Stream*>(object->value()), data_.size(), found.offset);
            for (std::size_t i = 0; i < stream.count(); ++i) {
                const std::uint32_t number = stream.number(i);
                if (entries_.at(number).kind != CrossReference::Kind::none)
                    continue; // an object of its own in the file wins
                CrossReference::Entry entry;
                entry.kind = CrossReference::Kind::compressed;
                entry.offset = found.number;
                entry.index = static_cast<std::uint32_t>(i);
                entries_.set(number, entry);
                Ptr<Object> value = stream.parse(i, names_, table_);
                if (value->type() == Type::Dict && hasType(*static_cast<Dict*>(value.get()), names::Catalog()))
                    catalogs_.push_back(Found{number, 0, 0});
            }
        } catch (const PdfException&) {
            // A damaged object stream adds what it could before the damage.
        }
    }
}

Ptr<Dict> Repair::lastTrailerWithRoot() const
{
    std::size_t end = data_.size();
    for (std::size_t at; end > 0 && (at = data_.rfind("trailer", end - 1)) != std::string_view::npos; end = at) {
        // Read up to the next "trailer" only, so the search stays linear.
        Tokenizer tokens(data_.substr(0, end), at + 7);
        ObjectParser parser(tokens, names_, table_);
        try {
            Ptr<Object> trailer = parser.parseObject();
            if (trailer->type() == Type::Dict && static_cast<Dict*>(trailer.get())->get(names::Root()))
                return staticPtrCast<Dict>(trailer);
        } catch (const PdfException&) {
            // an older trailer may still serve
        }
    }
    return nullptr;
}

void Repair::findTrailer()
{
    trailer_ = lastTrailerWithRoot();
    if (!trailer_)
        trailer_ = xrefStreamTrailer_;
    if (trailer_ || catalogs_.empty())
        return;
    const Found& catalog = catalogs_.back();
    trailer_ = make<Dict>();
    trailer_->set(names::Root(), make<Reference>(catalog.number, catalog.generation, table_));
}

} // namespace zpdf
