#include "zpdf/ObjectParser.h"

#include "zpdf/Array.h"
#include "zpdf/Bool.h"
#include "zpdf/Dict.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"
#include "zpdf/String.h"

#include <charconv>
#include <limits>

namespace zpdf {

namespace {

// null, true and false have no state, so every document shares one object of each.
// Never destroyed, like the predefined names.
const Ptr<Object>& constant(int which)
{
    static const Ptr<Object>* const values =
        new Ptr<Object>[3]{make<Null>(), make<Bool>(false), make<Bool>(true)};
    return values[which];
}

Ptr<Object> realOf(const Token& token)
{
    std::string_view text = token.text;
    if (!text.empty() && text[0] == '+')
        text.remove_prefix(1); // from_chars takes no plus sign
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw NumberFormatException("Invalid number \"" + std::string(token.text) + "\"" + atOffset(token.offset));
    return make<Number>(value);
}

bool isGeneration(const Token& token) { return token.kind == TokenKind::integer && token.integer >= 0 && token.integer <= 65535; }

bool isObjectNumber(const Token& token)
{
    return token.kind == TokenKind::integer && token.integer >= 0 && token.integer <= std::numeric_limits<std::uint32_t>::max();
}

} // namespace

ObjectParser::ObjectParser(Tokenizer& tokens, NameTable& names, std::weak_ptr<const IndirectTable> table)
    : tokens_(tokens), names_(names), table_(std::move(table))
{
}

Ptr<Object> ObjectParser::parseObject() { return parseObject(tokens_.next()); }

Ptr<Object> ObjectParser::parseObject(const Token& first)
{
    frames_.clear();
    values_.clear();
    Token token = first;
    for (;; token = tokens_.next()) {
        Ptr<Object> value;
        switch (token.kind) {
        case TokenKind::arrayOpen:
        case TokenKind::dictOpen:
            if (frames_.size() >= maxDepth)
                throw PdfException("Objects nested too deeply" + atOffset(token.offset));
            frames_.push_back(Frame{token.kind, values_.size(), token.offset});
            continue;
        case TokenKind::arrayClose:
            value = closeArray(token);
            break;
        case TokenKind::dictClose:
            value = closeDict(token);
            break;
        default:
            value = scalar(token);
        }
        if (frames_.empty())
            return value;
        values_.push_back(std::move(value));
    }
}

Ptr<Object> ObjectParser::scalar(const Token& token)
{
    switch (token.kind) {
    case TokenKind::integer:
        return integerOrReference(token);
    case TokenKind::real:
        return realOf(token);
    case TokenKind::name:
        return names_.fromToken(token.text, token.offset);
    case TokenKind::literalString:
    case TokenKind::hexString:
        // Kept in its written form, so writing it again gives the same bytes.
        return make<String>(token.text, StringMode::raw);
    case TokenKind::keyword:
        if (token.text == "null")
            return constant(0);
        if (token.text == "false")
            return constant(1);
        if (token.text == "true")
            return constant(2);
        throw PdfException("Unexpected \"" + std::string(token.text.substr(0, 32)) + "\"" + atOffset(token.offset));
    case TokenKind::end:
        throw PdfException("Unexpected end of data" + atOffset(token.offset));
    default:
        throw PdfException("Unexpected token" + atOffset(token.offset));
    }
}

Ptr<Object> ObjectParser::integerOrReference(const Token& first)
{
    const std::size_t after = tokens_.position();
    if (isObjectNumber(first)) {
        const Token generation = tokens_.next();
        if (isGeneration(generation) && tokens_.next().isKeyword("R"))
            return make<Reference>(static_cast<std::uint32_t>(first.integer),
                                   static_cast<std::uint16_t>(generation.integer), table_);
    }
    tokens_.seek(after);
    return make<Number>(first.integer);
}

Ptr<Object> ObjectParser::closeArray(const Token& token)
{
    // array := '[' object* ']'
    if (frames_.empty() || frames_.back().kind != TokenKind::arrayOpen)
        throw PdfException("Unexpected ']'" + atOffset(token.offset));
    const std::size_t base = frames_.back().base;
    frames_.pop_back();
    Ptr<Array> array = make<Array>();
    for (std::size_t i = base; i < values_.size(); ++i)
        array->append(std::move(values_[i]));
    values_.resize(base);
    return array;
}

Ptr<Object> ObjectParser::closeDict(const Token& token)
{
    // dict := '<<' (name object)* '>>'; a last key without a value is dropped (its value
    // counts as null, which means absent)
    if (frames_.empty() || frames_.back().kind != TokenKind::dictOpen)
        throw PdfException("Unexpected '>>'" + atOffset(token.offset));
    const Frame frame = frames_.back();
    frames_.pop_back();
    Ptr<Dict> dict = make<Dict>();
    for (std::size_t i = frame.base; i + 1 < values_.size(); i += 2) {
        if (values_[i]->type() != Type::Name)
            throw PdfException("Dictionary key that is not a name in the dictionary" + atOffset(frame.offset));
        dict->set(staticPtrCast<Name>(values_[i]), std::move(values_[i + 1]));
    }
    values_.resize(frame.base);
    return dict;
}

Ptr<Indirect> ObjectParser::parseIndirect()
{
    const Token number = tokens_.next();
    const Token generation = tokens_.next();
    const Token keyword = tokens_.next();
    if (!isObjectNumber(number) || !isGeneration(generation) || !keyword.isKeyword("obj"))
        throw PdfException("No object header" + atOffset(number.offset));
    Ptr<Object> value = parseObject();
    const std::size_t afterValue = tokens_.position();
    const Token next = tokens_.next();
    if (next.isKeyword("stream"))
        value = streamAfter(std::move(value), next.offset);
    else if (!next.isKeyword("endobj"))
        tokens_.seek(afterValue); // a missing "endobj" is forgiven
    return make<Indirect>(static_cast<std::uint32_t>(number.integer), static_cast<std::uint16_t>(generation.integer),
                          std::move(value));
}

Ptr<Object> ObjectParser::streamAfter(Ptr<Object> value, std::size_t offset)
{
    if (value->type() != Type::Dict)
        throw PdfException("Stream without a dictionary" + atOffset(offset));
    Ptr<Dict> dict = staticPtrCast<Dict>(value);
    tokens_.skipEndOfLine();
    const std::size_t start = tokens_.position();
    const std::string_view data = tokens_.data();
    std::size_t end = endByLength(*dict, start);
    std::size_t resume = end;
    if (end == std::string_view::npos) {
        const std::size_t keyword = data.find("endstream", start);
        if (keyword == std::string_view::npos)
            throw PdfException("Stream without \"endstream\"" + atOffset(offset));
        resume = keyword;
        end = keyword;
        // The end-of-line marker before "endstream" is not data.
        if (end > start && data[end - 1] == '\n')
            --end;
        if (end > start && data[end - 1] == '\r')
            --end;
    }
    tokens_.seek(resume);
    tokens_.next(); // "endstream"
    const std::size_t afterStream = tokens_.position();
    if (!tokens_.next().isKeyword("endobj"))
        tokens_.seek(afterStream);
    return make<Stream>(std::move(dict), make<StreamData>(std::string(data.substr(start, end - start))));
}

std::size_t ObjectParser::endByLength(Dict& dict, std::size_t start)
{
    Object* entry = dict.get(names::Length());
    Number* length = nullptr;
    try {
        length = entry ? entry->asNumber() : nullptr;
    } catch (const PdfException&) {
        length = nullptr; // a Length object that cannot be read: the data is measured instead
    }
    const std::size_t available = tokens_.data().size() - start;
    if (!length || !length->isInteger() || length->value() < 0 || length->value() > static_cast<double>(available))
        return std::string_view::npos;
    const std::size_t end = start + static_cast<std::size_t>(length->value());
    Tokenizer after(tokens_.data(), end);
    return after.next().isKeyword("endstream") ? end : std::string_view::npos;
}

} // namespace zpdf
