#include "zpdf/Tokenizer.h"

#include "zpdf/PdfException.h"

namespace zpdf {

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// More digits than this may not fit in 64 bits; such numbers are read as reals.
constexpr std::size_t maxIntegerDigits = 18;

} // namespace

std::string atOffset(std::size_t offset) { return " at offset " + std::to_string(offset); }

bool Tokenizer::isDelimiter(char c)
{
    switch (c) {
    case '(': case ')': case '<': case '>': case '[': case ']': case '{': case '}': case '/': case '%':
        return true;
    default:
        return false;
    }
}

void Tokenizer::skipWhiteSpace()
{
    // white := (' ' | '\t' | '\r' | '\n' | '\f' | '\0' | '%' comment-to-end-of-line)*
    while (position_ < data_.size()) {
        const char c = data_[position_];
        if (isWhite(c)) {
            ++position_;
        } else if (c == '%') {
            while (position_ < data_.size() && data_[position_] != '\r' && data_[position_] != '\n')
                ++position_;
        } else {
            return;
        }
    }
}

void Tokenizer::skipEndOfLine()
{
    if (position_ < data_.size() && data_[position_] == '\r')
        ++position_;
    if (position_ < data_.size() && data_[position_] == '\n')
        ++position_;
}

Token Tokenizer::next()
{
    skipWhiteSpace();
    const std::size_t start = position_;
    if (position_ >= data_.size())
        return Token{TokenKind::end, {}, start, 0};
    const char c = data_[position_];
    if (isDigit(c) || c == '+' || c == '-' || c == '.')
        return number(start);
    switch (c) {
    case '/':
        return name(start);
    case '(':
        return literalString(start);
    case '<':
        if (position_ + 1 < data_.size() && data_[position_ + 1] == '<') {
            position_ += 2;
            return make(TokenKind::dictOpen, start);
        }
        return hexString(start);
    case '>':
        if (position_ + 1 < data_.size() && data_[position_ + 1] == '>') {
            position_ += 2;
            return make(TokenKind::dictClose, start);
        }
        throw PdfException("Unexpected '>'" + atOffset(start));
    case '[':
        ++position_;
        return make(TokenKind::arrayOpen, start);
    case ']':
        ++position_;
        return make(TokenKind::arrayClose, start);
    case '{':
    case '}':
        ++position_;
        return make(TokenKind::keyword, start);
    case ')':
        throw PdfException("Unexpected ')'" + atOffset(start));
    default:
        return keyword(start);
    }
}

Token Tokenizer::number(std::size_t start)
{
    // number := ('+' | '-')? (digit+ ('.' digit*)? | '.' digit+)
    if (data_[position_] == '+' || data_[position_] == '-')
        ++position_;
    std::size_t digits = 0;
    std::size_t points = 0;
    std::int64_t value = 0;
    for (; position_ < data_.size(); ++position_) {
        const char c = data_[position_];
        if (isDigit(c)) {
            if (++digits <= maxIntegerDigits)
                value = value * 10 + (c - '0');
        } else if (c == '.') {
            ++points;
        } else {
            break;
        }
    }
    if (position_ < data_.size() && isRegular(data_[position_])) {
        while (position_ < data_.size() && isRegular(data_[position_]))
            ++position_;
        digits = 0; // a number run into other characters, such as "12abc" or "1-2"
    }
    if (digits == 0 || points > 1)
        throw NumberFormatException("Invalid number \"" + std::string(data_.substr(start, position_ - start)) + "\""
                                    + atOffset(start));
    if (points == 1 || digits > maxIntegerDigits)
        return make(TokenKind::real, start);
    Token token = make(TokenKind::integer, start);
    token.integer = data_[start] == '-' ? -value : value;
    return token;
}

Token Tokenizer::name(std::size_t start)
{
    // name := '/' regular*
    ++position_;
    while (position_ < data_.size() && isRegular(data_[position_]))
        ++position_;
    Token token = make(TokenKind::name, start);
    token.text.remove_prefix(1);
    return token;
}

Token Tokenizer::literalString(std::size_t start)
{
    // literal := '(' (byte | '\' byte | literal)* ')'; only the nesting matters to find the end
    ++position_;
    int depth = 1;
    while (position_ < data_.size()) {
        const char c = data_[position_++];
        if (c == '\\')
            ++position_;
        else if (c == '(')
            ++depth;
        else if (c == ')' && --depth == 0)
            return make(TokenKind::literalString, start);
    }
    position_ = data_.size();
    throw PdfException("Unterminated string" + atOffset(start));
}

Token Tokenizer::hexString(std::size_t start)
{
    // hex := '<' (hexdigit | white)* '>'
    ++position_;
    for (; position_ < data_.size(); ++position_) {
        const char c = data_[position_];
        if (c == '>') {
            ++position_;
            return make(TokenKind::hexString, start);
        }
        if (hexValue(c) < 0 && !isWhite(c))
            throw PdfException("Invalid character in hexadecimal string" + atOffset(position_));
    }
    throw PdfException("Unterminated hexadecimal string" + atOffset(start));
}

Token Tokenizer::keyword(std::size_t start)
{
    // keyword := regular+
    while (position_ < data_.size() && isRegular(data_[position_]))
        ++position_;
    return make(TokenKind::keyword, start);
}

std::string Tokenizer::decodeName(std::string_view raw, std::size_t offset)
{
    std::string bytes;
    bytes.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const bool escape = raw[i] == '#' && i + 2 < raw.size();
        const int high = escape ? hexValue(raw[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(raw[i + 2]) : -1;
        if (low < 0) {
            bytes.push_back(raw[i]); // a '#' without two digits stands for itself, as in PDF 1.1
            continue;
        }
        if (high == 0 && low == 0)
            throw PdfException("Name contains #00" + atOffset(offset));
        bytes.push_back(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return bytes;
}

std::string Tokenizer::decodeLiteral(std::string_view raw)
{
    // escapes: \n \r \t \b \f \( \) \\ \ddd, '\' + end of line continues the line; any
    // other escaped byte stands for itself. An unescaped end of line reads as LF.
    std::string bytes;
    bytes.reserve(raw.size());
    const std::size_t end = raw.size() - 1;
    for (std::size_t i = 1; i < end; ++i) {
        const char c = raw[i];
        if (c == '\r') {
            bytes.push_back('\n');
            if (i + 1 < end && raw[i + 1] == '\n')
                ++i;
            continue;
        }
        if (c != '\\' || i + 1 >= end) {
            bytes.push_back(c);
            continue;
        }
        const char e = raw[++i];
        switch (e) {
        case 'n': bytes.push_back('\n'); break;
        case 'r': bytes.push_back('\r'); break;
        case 't': bytes.push_back('\t'); break;
        case 'b': bytes.push_back('\b'); break;
        case 'f': bytes.push_back('\f'); break;
        case '\r':
            if (i + 1 < end && raw[i + 1] == '\n')
                ++i;
            break;
        case '\n':
            break;
        default:
            if (e >= '0' && e <= '7') {
                int value = e - '0';
                for (int more = 0; more < 2 && i + 1 < end && raw[i + 1] >= '0' && raw[i + 1] <= '7'; ++more)
                    value = value * 8 + (raw[++i] - '0');
                bytes.push_back(static_cast<char>(value & 0xFF)); // overflow of "\777" is ignored
            } else {
                bytes.push_back(e);
            }
        }
    }
    return bytes;
}

std::string Tokenizer::decodeHex(std::string_view raw, std::size_t offset)
{
    std::string bytes;
    bytes.reserve(raw.size() / 2);
    int high = -1;
    for (std::size_t i = 1; i + 1 < raw.size(); ++i) {
        if (isWhite(raw[i]))
            continue;
        const int digit = hexValue(raw[i]);
        if (digit < 0)
            throw PdfException("Invalid character in hexadecimal string" + atOffset(offset + i));
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<char>(high * 16 + digit));
            high = -1;
        }
    }
    if (high >= 0)
        bytes.push_back(static_cast<char>(high * 16));
    return bytes;
}

} // namespace zpdf
