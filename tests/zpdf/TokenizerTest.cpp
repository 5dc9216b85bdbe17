#include "WrittenDocument.h"

#include "zpdf/Tokenizer.h"

#include <gtest/gtest.h>

#include <vector>

using namespace zpdf;

namespace {

struct Lexed {
    TokenKind kind;
    std::string text;
};

bool operator==(const Lexed& a, const Lexed& b) { return a.kind == b.kind && a.text == b.text; }

void PrintTo(const Lexed& token, std::ostream* out) { *out << int(token.kind) << ":" << token.text; }

std::vector<Lexed> lex(std::string_view input)
{
    Tokenizer tokens(input);
    std::vector<Lexed> result;
    for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next())
        result.push_back({token.kind, std::string(token.text)});
    return result;
}

using K = TokenKind;

TEST(Tokenizer, SplitsInputByTheLexicalRules)
{
    const struct {
        const char* input;
        std::vector<Lexed> expected;
    } cases[] = {
        {"  \t\r\n\f", {}},
        {"%comment\r1%another\n2", {{K::integer, "1"}, {K::integer, "2"}}},
        {"/Name/Other / /A#20B", {{K::name, "Name"}, {K::name, "Other"}, {K::name, ""}, {K::name, "A#20B"}}},
        {"[1]<</K/V>>", {{K::arrayOpen, "["}, {K::integer, "1"}, {K::arrayClose, "]"}, {K::dictOpen, "<<"},
                         {K::name, "K"}, {K::name, "V"}, {K::dictClose, ">>"}}},
        {"(a(b)c)(\\))<41 42>< >", {{K::literalString, "(a(b)c)"}, {K::literalString, "(\\))"},
                                    {K::hexString, "<41 42>"}, {K::hexString, "< >"}}},
        {"12 -3 +4 0.5 -.5 4. +.0", {{K::integer, "12"}, {K::integer, "-3"}, {K::integer, "+4"}, {K::real, "0.5"},
                                     {K::real, "-.5"}, {K::real, "4."}, {K::real, "+.0"}}},
        {"1234567890123456789012", {{K::real, "1234567890123456789012"}}},
        {"obj R true null{}endobj", {{K::keyword, "obj"}, {K::keyword, "R"}, {K::keyword, "true"},
                                     {K::keyword, "null"}, {K::keyword, "{"}, {K::keyword, "}"}, {K::keyword, "endobj"}}},
        {"1 0 R/X", {{K::integer, "1"}, {K::integer, "0"}, {K::keyword, "R"}, {K::name, "X"}}},
        {"a\0b", {{K::keyword, "a"}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(lex(c.input), c.expected) << c.input;

    Tokenizer tokens("  -42 7");
    const Token first = tokens.next();
    EXPECT_EQ(first.integer, -42);
    EXPECT_EQ(first.offset, 2u);
    EXPECT_EQ(tokens.next().integer, 7);
}

TEST(Tokenizer, MalformedInputNamesTheOffset)
{
    const std::pair<const char*, const char*> cases[] = {
        {"1 1.2.3", "Invalid number \"1.2.3\" at offset 2"},
        {"  12abc", "Invalid number \"12abc\" at offset 2"},
        {"- 1", "Invalid number \"-\" at offset 0"},
        {"xy (abc", "Unterminated string at offset 3"},
        {"(a(b)", "Unterminated string at offset 0"},
        {"<4G>", "Invalid character in hexadecimal string at offset 2"},
        {"<41", "Unterminated hexadecimal string at offset 0"},
        {" )", "Unexpected ')' at offset 1"},
        {"  > ", "Unexpected '>' at offset 2"},
    };
    for (const auto& [input, message] : cases)
        EXPECT_EQ(zpdfTest::errorOf([input = input] { lex(input); }), message);
    EXPECT_THROW(lex("1.2.3"), NumberFormatException);
}

TEST(Tokenizer, StringsAndNamesAreDecoded)
{
    const std::pair<std::string, std::string> literals[] = {
        {"(\\n\\r\\t\\b\\f)", "\n\r\t\b\f"},
        {"(\\(\\)\\\\)", "()\\"},
        {"(a(b)c)", "a(b)c"},
        {"(\\101\\60\\0618)", "A0" "18"},
        {"(\\7\\77\\777)", std::string("\x07\x3F\xFF", 3)},
        {"(\\0)", std::string(1, '\0')},
        {"(line\\\r\ncontinued\\\nhere\\\rtoo)", "linecontinuedheretoo"},
        {"(a\r\nb\rc\nd)", "a\nb\nc\nd"},
        {"(\\q\\%)", "q%"},
        {"()", ""},
    };
    for (const auto& [raw, bytes] : literals)
        EXPECT_EQ(Tokenizer::decodeLiteral(raw), bytes) << raw;
    EXPECT_EQ(Tokenizer::decodeHex("<48 65\n6c6C6f>"), "Hello");
    EXPECT_EQ(Tokenizer::decodeHex("<414>"), "A@") << "an odd last digit is followed by 0";
    EXPECT_EQ(Tokenizer::decodeName("A#20B#2f"), "A B/");
    EXPECT_EQ(Tokenizer::decodeName("a#b"), "a#b") << "'#' without two digits stands for itself";
    EXPECT_EQ(Tokenizer::decodeName("end#4"), "end#4");
    EXPECT_THROW(Tokenizer::decodeName("a#00"), PdfException);
}

} // namespace
