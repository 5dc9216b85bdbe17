#include "zpdf/NameTable.h"

#include "zpdf/Names.h"
#include "zpdf/Tokenizer.h"

namespace zpdf {

namespace {

// Bytes that may stand in a written name as they are.
bool isPlain(char c) { return c > ' ' && c < 0x7F && c != '#' && Tokenizer::isRegular(c); }

bool needsEscapes(std::string_view bytes)
{
    for (const char c : bytes)
        if (!isPlain(c))
            return true;
    return false;
}

std::string escaped(std::string_view bytes)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        if (isPlain(c)) {
            text.push_back(c);
        } else {
            const auto byte = static_cast<unsigned char>(c);
            text.push_back('#');
            text.push_back(digits[byte >> 4]);
            text.push_back(digits[byte & 0xF]);
        }
    }
    return text;
}

} // namespace

const Ptr<Name>& NameTable::fromToken(std::string_view raw, std::size_t offset)
{
    if (raw.find('#') == std::string_view::npos)
        return intern(raw);
    const std::string bytes = Tokenizer::decodeName(raw, offset);
    return intern(needsEscapes(bytes) ? escaped(bytes) : bytes);
}

const Ptr<Name>& NameTable::intern(std::string_view bytes)
{
    const auto at = names_.find(bytes);
    if (at != names_.end())
        return at->second;
    Name* predefined = names::find(bytes);
    Ptr<Name> name = predefined ? Ptr<Name>(predefined) : make<Name>(std::string(bytes));
    // The key views the name's own bytes, which live as long as the entry.
    const std::string_view key = name->bytes();
    return names_.emplace(key, std::move(name)).first->second;
}

} // namespace zpdf
