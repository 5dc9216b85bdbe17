#pragma once
// Tokenizer: splits PDF bytes into tokens by PDF's lexical rules.
//
// It reads a borrowed byte range (the whole file) and never copies it: token texts point
// into that range. White space and comments are skipped between tokens. Failures throw
// PdfException or NumberFormatException with the byte offset in the message.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zpdf {

enum class TokenKind {
    end, // no more bytes
    integer,
    real,
    name,          // text: the bytes after "/", "#xx" escapes not yet undone
    literalString, // text: "(" ... ")" as in the file
    hexString,     // text: "<" ... ">" as in the file
    arrayOpen,
    arrayClose,
    dictOpen,
    dictClose,
    keyword, // a run of regular characters that is no number ("obj", "R", "true"), or "{", "}"
};

struct Token {
    TokenKind kind = TokenKind::end;
    std::string_view text;
    std::size_t offset = 0;
    // The value of an integer token.
    std::int64_t integer = 0;

    bool isKeyword(std::string_view word) const { return kind == TokenKind::keyword && text == word; }
};

class Tokenizer {
public:
    explicit Tokenizer(std::string_view data, std::size_t position = 0) : data_(data), position_(position) {}

    std::string_view data() const { return data_; }
    std::size_t position() const { return position_; }
    // Positions beyond the end are clamped to it.
    void seek(std::size_t position) { position_ = position < data_.size() ? position : data_.size(); }

    // The next token; kind end at the end of the bytes.
    Token next();
    // Skips white space and comments; the position is then at a token or the end.
    void skipWhiteSpace();
    // Skips one end-of-line marker (CR, LF or CR LF) if there is one at the position.
    void skipEndOfLine();

    static bool isWhite(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0'; }
    static bool isDelimiter(char c);
    static bool isRegular(char c) { return !isWhite(c) && !isDelimiter(c); }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    // The name's bytes with "#xx" escapes undone; `raw` is the token text.
    static std::string decodeName(std::string_view raw, std::size_t offset = 0);
    // The bytes of a literal string token ("(" ... ")") with every escape undone.
    static std::string decodeLiteral(std::string_view raw);
    // The bytes of a hexadecimal string token ("<" ... ">"); an odd last digit counts as
    // followed by 0.
    static std::string decodeHex(std::string_view raw, std::size_t offset = 0);

private:
    Token number(std::size_t start);
    Token name(std::size_t start);
    Token literalString(std::size_t start);
    Token hexString(std::size_t start);
    Token keyword(std::size_t start);
    Token make(TokenKind kind, std::size_t start) const
    {
        return Token{kind, data_.substr(start, position_ - start), start, 0};
    }

    std::string_view data_;
    std::size_t position_;
};

// "at offset N", for messages.
std::string atOffset(std::size_t offset);

} // namespace zpdf
