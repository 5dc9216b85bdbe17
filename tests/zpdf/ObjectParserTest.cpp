#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/IndirectTable.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/ObjectParser.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

using namespace zpdf;

namespace {

// Parses objects from one text, as a reader does.
struct Parsing {
    explicit Parsing(std::string text) : bytes(std::move(text)), tokens(bytes), parser(tokens, names, table) {}

    std::string bytes;
    std::shared_ptr<IndirectTable> table = std::make_shared<IndirectTable>();
    NameTable names;
    Tokenizer tokens;
    ObjectParser parser;
};

std::string written(const Object& object)
{
    BufferWriter out;
    object.write(out);
    return out.data();
}

std::string reparsed(const std::string& text)
{
    Parsing parsing(text);
    return written(*parsing.parser.parseObject());
}

TEST(ObjectParser, ReadsEveryKind)
{
    const std::pair<const char*, Type> cases[] = {
        {"null", Type::Null},     {"true", Type::Bool},      {"false", Type::Bool},
        {"-17", Type::Number},    {"2.5", Type::Number},     {"/Name", Type::Name},
        {"(text)", Type::String}, {"<414243>", Type::String}, {"[1 /A]", Type::Array},
        {"<</A 1>>", Type::Dict}, {"12 0 R", Type::Reference},
    };
    for (const auto& [text, type] : cases) {
        Parsing parsing(text);
        EXPECT_EQ(parsing.parser.parseObject()->type(), type) << text;
        EXPECT_EQ(parsing.tokens.next().kind, TokenKind::end) << text << ": the whole object is read";
    }
}

TEST(ObjectParser, ValuesReadBackAsWritten)
{
    const std::pair<const char*, const char*> cases[] = {
        {"[1 2 0 R 3 4 5 R]", "[1 2 0 R 3 4 5 R]"},
        {"<</B [true false null] /A <</C (x)>>>>", "<<\r\n/A <<\r\n/C (x)\r\n>>\r\n/B [true false null]\r\n>>"},
        {"[-0.5 4. +.25 3]", "[-0.5 4.0 0.25 3]"},
        {"(a\\)b)", "(a\\)b)"},
        {"<FEFF0041>", "<FEFF0041>"},
        {"/T#79pe", "/Type"},
        {"/A#20B", "/A#20B"},
        {"[]", "[]"},
        {"<<>>", "<<\r\n>>"},
        {"<</K>>", "<<\r\n>>"} /* a last key without value counts as null: absent */,
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(reparsed(text), expected) << text;
}

TEST(ObjectParser, NamesAreSharedAndPredefinedOnesReused)
{
    Parsing parsing("[/Type /Custom /Custom]");
    Ptr<Object> array = parsing.parser.parseObject();
    Array& elements = *array->asArray();
    EXPECT_EQ(elements.at(0), names::Type().get());
    EXPECT_EQ(elements.at(1), elements.at(2));
}

TEST(ObjectParser, ReferencesResolveThroughTheTable)
{
    Parsing parsing("<</P 3 0 R /Q 3 1 R>>");
    parsing.table->slot(3) = make<Indirect>(3, 0, make<Number>(99));
    Ptr<Object> dict = parsing.parser.parseObject();
    Number* target = dict->asDict()->get("P")->asNumber();
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(target->value(), 99);
    EXPECT_EQ(dict->asDict()->get("Q")->resolve(), nullptr) << "another generation";
}

TEST(ObjectParser, ErrorsNameTheOffset)
{
    const std::pair<const char*, const char*> cases[] = {
        {"[1 2", "Unexpected end of data at offset 4"},
        {"<</A 1 ]", "Unexpected ']' at offset 7"},
        {"[1 >>", "Unexpected '>>' at offset 3"},
        {"<<1 2>>", "Dictionary key that is not a name in the dictionary at offset 0"},
        {"[1 R]", "Unexpected \"R\" at offset 3"},
        {"  endobj", "Unexpected \"endobj\" at offset 2"},
        {"", "Unexpected end of data at offset 0"},
    };
    for (const auto& [text, message] : cases) {
        Parsing parsing(text);
        try {
            parsing.parser.parseObject();
            ADD_FAILURE() << "no exception for " << text;
        } catch (const PdfException& error) {
            EXPECT_STREQ(error.what(), message) << text;
        }
    }
}

TEST(ObjectParser, NestingDepthIsBounded)
{
    const std::size_t limit = ObjectParser::maxDepth;
    const std::string fits = std::string(limit, '[') + std::string(limit, ']');
    EXPECT_EQ(reparsed(fits), fits);
    const std::string deep(1000000, '[');
    Parsing parsing(deep);
    try {
        parsing.parser.parseObject();
        ADD_FAILURE();
    } catch (const PdfException& error) {
        EXPECT_STREQ(error.what(), ("Objects nested too deeply at offset " + std::to_string(limit)).c_str());
    }
    EXPECT_THROW(reparsed(std::string(limit / 2 + 1, '[') + std::string(limit, '<') + "<"), PdfException);
}

TEST(ObjectParser, IndirectObjectsAndStreams)
{
    Parsing parsing("7 1 obj\n<</Length 5>>\nstream\r\nabcde\r\nendstream\nendobj\n8 0 obj 42 endobj");
    Ptr<Indirect> stream = parsing.parser.parseIndirect();
    EXPECT_EQ(stream->number(), 7u);
    EXPECT_EQ(stream->generation(), 1);
    ASSERT_NE(stream->value()->asStream(), nullptr);
    EXPECT_EQ(stream->value()->asStream()->data()->bytes(), "abcde");
    Ptr<Indirect> number = parsing.parser.parseIndirect();
    EXPECT_EQ(number->number(), 8u);
    EXPECT_EQ(number->value()->asNumber()->value(), 42);
}

TEST(ObjectParser, StreamWithWrongLengthEndsAtEndstream)
{
    const std::pair<const char*, const char*> cases[] = {
        {"1 0 obj <</Length 2>> stream\nabcde\nendstream endobj", "abcde"},
        {"1 0 obj <</Length 999>> stream\nabcde\r\nendstream endobj", "abcde"},
        {"1 0 obj <</Length -1>> stream\r\nab\rendstream endobj", "ab"},
        {"1 0 obj <</Length 9 0 R>> stream\nxyz\nendstream endobj", "xyz"},
        {"1 0 obj <<>> stream\nxyz endstream endobj", "xyz "},
    };
    for (const auto& [text, data] : cases) {
        Parsing parsing(text);
        EXPECT_EQ(parsing.parser.parseIndirect()->value()->asStream()->data()->bytes(), data) << text;
    }
    Parsing missing("1 0 obj <</Length 3>> stream\nabcdef");
    EXPECT_THROW(missing.parser.parseIndirect(), PdfException);
    Parsing noDict("1 0 obj [1] stream\nab\nendstream");
    EXPECT_THROW(noDict.parser.parseIndirect(), PdfException);
}

} // namespace
