// The tokenizer and the object parser on well-formed and malformed text.
#include "TestSupport.h"

#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/Stream.h"

#include <gtest/gtest.h>

using namespace zpdf;
using zpdfTest::errorOf;
using zpdfTest::Parsing;

namespace {

TEST(Tokenizer, StringsAndNamesAreDecoded)
{
    const std::pair<std::string, std::string> literals[] = {
        {"(\\n\\r\\t\\b\\f\\(\\)\\\\)", "\n\r\t\b\f()\\"}, {"(\\101\\60\\0618\\777)", "A0" "18\xFF"},
        {"(\\0)", std::string(1, '\0')}, {"(line\\\r\ncontinued\\\nhere\\\rtoo)", "linecontinuedheretoo"},
        {"(a\r\nb\rc\nd)", "a\nb\nc\nd"}, {"(\\q\\%)", "q%"},
    };
    for (const auto& [raw, bytes] : literals)
        EXPECT_EQ(Tokenizer::decodeLiteral(raw), bytes) << raw;
    EXPECT_EQ(Tokenizer::decodeHex("<48 65\n6c6C6f>"), "Hello");
    EXPECT_EQ(Tokenizer::decodeHex("<414>"), "A@") << "an odd last digit is followed by 0";
    EXPECT_EQ(Tokenizer::decodeName("a#b"), "a#b") << "'#' without two digits stands for itself";
    EXPECT_THROW(Tokenizer::decodeName("a#00"), PdfException);
}

// The object parsed from `text`, written again; the whole text must be read.
std::string reparsed(const std::string& text)
{
    Parsing parsing(text);
    BufferWriter out;
    parsing.parser.parseObject()->write(out);
    EXPECT_EQ(parsing.tokens.next().kind, TokenKind::end) << text;
    return out.data();
}

TEST(ObjectParser, ValuesReadBackAsWrittenAndNamesAreShared)
{
    const std::pair<const char*, const char*> cases[] = {
        {"-17", "-17"}, {"12 0 R", "12 0 R"}, {"[1 2 0 R 3 4 5 R]", "[1 2 0 R 3 4 5 R]"},
        {"<</B [true false null] /A <</C (x)>>>>", "<<\r\n/A <<\r\n/C (x)\r\n>>\r\n/B [true false null]\r\n>>"},
        {"(a\\)b)", "(a\\)b)"}, {"<FEFF0041>", "<FEFF0041>"}, {"/T#79pe", "/Type"}, {"/A#20B", "/A#20B"},
        // Comments, white space and delimiters; an integer too large for 64 bits is a real.
        {"[%comment\r1%another\n2/A/B / 10000000000000000000 -.5 4. +.0 +4\t\f<41 42>< >(a(b)c)]",
         "[1 2 /A /B / 10000000000000000000.0 -0.5 4.0 0.0 4 <41 42> < > (a(b)c)]"},
        {"<</K>>", "<<\r\n>>"} /* a last key without value counts as null: absent */,
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(reparsed(text), expected) << text;

    // Names are shared: predefined ones and those the parse met before.
    const Ptr<Object> array = Parsing("[/Type /Custom /Custom]").parser.parseObject();
    EXPECT_EQ(array->asArray()->at(0), names::Type().get());
    EXPECT_EQ(array->asArray()->at(1), array->asArray()->at(2));
}

TEST(ObjectParser, MalformedInputNamesTheOffsetAndNestingIsBounded)
{
    const std::size_t limit = ObjectParser::maxDepth;
    const std::pair<std::string, std::string> cases[] = {
        {"1 1.2.3", "Invalid number \"1.2.3\" at offset 2"}, {"- 1", "Invalid number \"-\" at offset 0"},
        {"[1 (a(b)", "Unterminated string at offset 3"}, {"<4G>", "Invalid character in hexadecimal string at offset 2"},
        {"<41", "Unterminated hexadecimal string at offset 0"}, {"  > ", "Unexpected '>' at offset 2"},
        {"[1 2", "Unexpected end of data at offset 4"}, {"<</A 1 ]", "Unexpected ']' at offset 7"},
        {"<<1 2>>", "Dictionary key that is not a name in the dictionary at offset 0"}, {"[1 R]", "Unexpected \"R\" at offset 3"},
        {std::string(1000000, '['), "Objects nested too deeply at offset " + std::to_string(limit)},
        // Arrays and dictionaries count alike: the 257th level opens at 129 + 2 * 127.
        {std::string(limit / 2 + 1, '[') + std::string(limit, '<') + "<", "Objects nested too deeply at offset 383"},
    };
    for (const auto& [text, message] : cases) {
        Parsing parsing(text);
        // The error may come with the second object.
        EXPECT_EQ(errorOf([&] { parsing.parser.parseObject(), parsing.parser.parseObject(); }), message) << text.substr(0, 20);
    }
    const std::string fits = std::string(limit, '[') + std::string(limit, ']');
    EXPECT_EQ(reparsed(fits), fits);
}

TEST(ObjectParser, StreamDataEndsAtEndstreamWhateverTheLength)
{
    // The line end after "stream" and the one before "endstream" are not data.
    const std::pair<const char*, const char*> cases[] = {
        {"1 0 obj\n<</Length 5>>\nstream\r\nabcde\r\nendstream\nendobj", "abcde"},
        // A wrong Length: the data ends at "endstream".
        {"1 0 obj <</Length 2>> stream\nabcde\nendstream endobj", "abcde"},
        {"1 0 obj <</Length 999>> stream\nabcde\r\nendstream endobj", "abcde"},
        {"1 0 obj <</Length 9 0 R>> stream\nxyz\nendstream endobj", "xyz"},
        {"1 0 obj <<>> stream\nxyz endstream endobj", "xyz "},
    };
    for (const auto& [text, data] : cases)
        EXPECT_EQ(Parsing(text).parser.parseIndirect()->value()->asStream()->data()->bytes(), data) << text;
    for (const char* text : {"1 0 obj <</Length 3>> stream\nabcdef", "1 0 obj [1] stream\nab\nendstream"})
        EXPECT_THROW(Parsing(text).parser.parseIndirect(), PdfException) << text;
}

} // namespace
