// Objects: serialisation, comparison, copies, ownership, references; streams and filters.
#include "TestSupport.h"

#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Flate.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/Stream.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <thread>
#include <vector>

using namespace zpdf;
using namespace std::string_literals;
using zpdfTest::arrayOf;
using zpdfTest::errorOf;

namespace {

std::string written(const Object& object)
{
    BufferWriter out;
    object.write(out);
    return out.take();
}

TEST(Object, Serialisation)
{
    const struct { Ptr<Object> object; const char* text; } cases[] = {
        {make<Number>(std::int64_t{-3000000000}), "-3000000000"}, {make<Number>(2.0), "2.0"}, {make<Number>(0.000001), "0.000001"},
        {make<Number>(612.123456789), "612.123457"}, {make<Number>(0.0000001), "0.0"}, {make<Number>(1e15), "1000000000000000.0"},
        {make<Number>(2.5, "%.3f"), "2.500"},
        // U+10FFFF, outside the Basic Multilingual Plane, takes a surrogate pair.
        {make<String>(ZString()), "()"}, {make<String>(ZString(u"\u00e9\U0010FFFF")), "<FEFF00e9dbffdfff>"},
        {arrayOf({make<Number>(1), names::Type(), nullptr, make<Null>(), arrayOf({make<Bool>(true), make<Bool>(false)}),
                  make<Reference>(12, 0)}),
         "[1 /Type null null [true false] 12 0 R]"},
        {make<Reference>(40000, 65535), "40000 65535 R"}, {make<Indirect>(7, 2, nullptr), "7 2 obj\r\nnull\r\nendobj"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(written(*c.object), c.text);
}

// Only literal (0) and hex (2) add brackets; every other mode keeps the bytes as given,
// including values that name no mode. Literal escapes nothing.
TEST(Object, StringModes)
{
    const struct { int mode; const char* bytes; const char* text; } cases[] = {
        {0, "a(b\\", "(a(b\\)"}, {0, "", "()"}, {1, "(kept)", "(kept)"}, {2, "4142", "<4142>"}, {2, "", "<>"},
        {3, "<4142>", "<4142>"}, {1000000, "(x) y", "(x) y"}, {std::numeric_limits<int>::max(), "z", "z"},
        {-1, "(neg)", "(neg)"}, {std::numeric_limits<int>::min(), "", ""},
    };
    for (const auto& c : cases) {
        const Ptr<String> string = make<String>(c.bytes, static_cast<StringMode>(c.mode));
        EXPECT_EQ(written(*string), c.text) << "mode " << c.mode;
        EXPECT_EQ(written(*string->clone()), c.text) << "a clone of mode " << c.mode;
    }
}

// The output must not depend on the process locale.
TEST(Object, NumbersIgnoreACommaLocale)
{
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const char* comma = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252", "German", "de-DE"})
        if ((comma = std::setlocale(LC_NUMERIC, name)) != nullptr)
            break;
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    const std::string texts = written(*make<Number>(1.5)) + " " + written(*make<Number>(0.75, "%.2f"));
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(texts, "1.5 0.75");
}

TEST(Object, DictKeyOrderAndArrayIndexChecks)
{
    Ptr<Dict> dict = make<Dict>();
    // Bytes compare as signed chars: 0xC3 is negative and sorts first; upper case before
    // lower, a name before a longer one it begins.
    for (const char* key : {"a", "Type", "\xC3x", "B", "Ab", "A", "TypeX"})
        dict->set(make<Name>(key), make<Number>(1));
    dict->set(make<Name>("A"), make<Bool>(true));
    dict->set(make<Name>("Ab"), nullptr);
    EXPECT_TRUE(dict->remove("B") && !dict->remove("B"));
    EXPECT_EQ(written(*dict), "<<\r\n/\xC3x 1\r\n/A true\r\n/Type 1\r\n/TypeX 1\r\n/a 1\r\n>>");

    Ptr<Array> array = arrayOf({make<Null>(), names::Type()});
    EXPECT_EQ(errorOf([&] { array->at(-1); }), "Index not in array range");
    EXPECT_EQ(errorOf([] { make<Array>()->set(0, make<Null>()); }), "Index not in array range");
    array->remove(0);
    EXPECT_EQ(written(*array), "[/Type]");
}

TEST(Object, CloneIsDeepAndEqualityComparesContents)
{
    Ptr<Stream> stream = make<Stream>("data");
    stream->dict()->set(names::Filter(), names::DCTDecode());
    Ptr<Dict> original = make<Dict>();
    original->set(names::Kids(), arrayOf({make<Number>(1)}));
    original->set(names::Contents(), stream);
    const Ptr<Object> copy = original->clone();
    ASSERT_TRUE(copy->equals(original.get(), true));
    EXPECT_FALSE(copy->equals(original.get(), false)) << "shallow compares the value objects";
    Dict* copied = copy->asDict();
    EXPECT_EQ(copied->get(names::Contents())->asDict()->get(names::Filter()), names::DCTDecode().get());
    copied->get(names::Contents())->asStream()->append("more");
    EXPECT_EQ(stream->data()->bytes(), "data");
    EXPECT_FALSE(copy->equals(original.get(), true));

    EXPECT_TRUE(make<Number>(3)->equals(make<Number>(3.0).get()));
    EXPECT_FALSE(make<Name>("Type")->equals(names::Type().get())) << "names compare by identity";
}

// A Null that counts its destructions.
struct Probe : Null {
    explicit Probe(int& destroyed) : destroyed(destroyed) {}
    ~Probe() override { ++destroyed; }
    int& destroyed;
};

TEST(RefCount, LastOwnerDestroysAndContainersReleaseTheirElements)
{
    int destroyed = 0;
    Ptr<Probe> shared = make<Probe>(destroyed);
    {
        Ptr<Array> array = arrayOf({make<Probe>(destroyed), shared, shared, arrayOf({make<Probe>(destroyed)})});
        EXPECT_EQ(shared->refCount(), 3);
    }
    EXPECT_EQ(destroyed, 2) << "the unshared element and the nested one";
    EXPECT_EQ(shared->refCount(), 1);

    Ptr<Object> object = std::move(shared);
    Ptr<Object>& alias = object;
    object = alias;
    Ptr<Probe> again(static_cast<Probe*>(object.get())); // a borrowed pointer becomes an owner again
    object = nullptr;
    EXPECT_EQ(destroyed, 2);
    again = nullptr;
    EXPECT_EQ(destroyed, 3);
}

TEST(RefCount, CopiesFromManyThreadsKeepCountsRight)
{
    Ptr<Array> array = arrayOf({make<Number>(1)});
    const Ptr<Name> type = names::Type();
    const std::int32_t typeCount = type->refCount();
    std::vector<std::thread> workers;
    for (int t = 0; t < 8; ++t)
        workers.emplace_back([&array, &type] {
            std::vector<Ptr<Object>> held;
            for (int i = 0; i < 100000; ++i) {
                held.push_back(array);
                held.push_back(type);
                held.push_back(Ptr<Object>(array->at(0)));
                if (held.size() >= 15)
                    held.clear();
            }
        });
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_EQ(array->refCount(), 1);
    EXPECT_EQ(array->at(0)->refCount(), 1);
    EXPECT_EQ(type->refCount(), typeCount);
}

TEST(Document, NumbersAndReferencesThatResolveWhileTheDocumentLives)
{
    Ptr<Reference> outliving;
    Ptr<Number> number = make<Number>(8);
    {
        Document document;
        document.put(3, 0, make<Number>(3));
        document.put(7, 0, make<Number>(7));
        EXPECT_TRUE(document.remove(7) && !document.remove(7));
        outliving = document.add(number);
        EXPECT_EQ(outliving->number(), 4u) << "one above the highest left";
        EXPECT_EQ(outliving->asNumber(), number.get());

        // Any generation is found; a loop resolves to nothing.
        const Ptr<Reference> toSecond = document.referenceTo(3);
        document.put(5, 1, make<Number>(1));
        EXPECT_NE(document.referenceTo(5)->resolve(), nullptr);
        document.object(3)->setValue(document.put(6, 0, toSecond));
        EXPECT_EQ(toSecond->resolve(), nullptr);
        EXPECT_THROW(document.referenceTo(2), PdfException);
    }
    EXPECT_EQ(outliving->resolve(), nullptr) << "the document is gone";
    EXPECT_EQ(number->refCount(), 1) << "the document released its object";
}

// A stream with the dictionary written as `dict`.
Ptr<Stream> streamOf(const std::string& dict, std::string data)
{
    return make<Stream>(staticPtrCast<Dict>(zpdfTest::Parsing(dict).parser.parseObject()), make<StreamData>(std::move(data)));
}

TEST(Stream, CompressionRoundTrip)
{
    std::string original; // compressible, but not trivially
    for (int i = 0; i < 20000; ++i)
        original += std::to_string(i * 7919 % 10007) + ' ';
    Ptr<Stream> stream = streamOf("<</DecodeParms <</Predictor 12 /Columns 4>>>>", original);
    stream->compress();
    EXPECT_EQ(stream->dict()->get(names::DecodeParms()), nullptr);
    const std::string compressed = stream->data()->bytes();
    ASSERT_LT(compressed.size(), original.size());
    EXPECT_EQ(stream->decode(), original);
    EXPECT_EQ(stream->data()->bytes(), compressed) << "decode leaves the stream alone";
    EXPECT_EQ(flate::decompress(flate::compress("")), "");

    // An image already compressed keeps its own filter.
    Ptr<Stream> jpeg = streamOf("<</Filter /DCTDecode>>", "\xFF\xD8\xFF\xE0 jpeg");
    jpeg->compress();
    EXPECT_EQ(jpeg->data()->bytes(), "\xFF\xD8\xFF\xE0 jpeg");
    EXPECT_EQ(jpeg->dict()->get(names::Filter()), names::DCTDecode().get());
}

TEST(Stream, PngPredictorsAreUndone)
{
    const struct { const char* parms; std::string predicted, plain; } cases[] = {
        // One row of each type: sub, up, average, Paeth (with wrap-around), none.
        {"/Predictor 12 /Columns 3", "\1\1\1\1" "\2\1\1\1" "\3\2\2\2" "\4\1\0\xFF" "\0\x09\x08\x07"s,
         "\1\2\3\2\3\4\3\5\6\4\5\5\x09\x08\x07"},
        // Three bytes a pixel: "left" is one pixel back.
        {"/Predictor 15 /Colors 3 /Columns 2", "\1\x0A\x14\x1E\5\5\5" "\4\0\0\0\xFA\1\2"s,
         "\x0A\x14\x1E\x0F\x19\x23\x0A\x14\x1E\x09\x1A\x25"},
        // A short last row is decoded as far as it goes.
        {"/Predictor 10 /Columns 4", "\1\1\1\1\1" "\2\5\5", "\1\2\3\4\6\7"},
    };
    for (const auto& c : cases) {
        Ptr<Stream> stream =
            streamOf("<</Filter /FlateDecode /DecodeParms <<" + std::string(c.parms) + ">>>>", flate::compress(c.predicted));
        EXPECT_EQ(stream->decode(), c.plain) << c.parms;
        stream->removeFilter();
        EXPECT_EQ(stream->data()->bytes(), c.plain);
    }
}

TEST(Stream, FilterArraysAreUndoneOneAtATime)
{
    Ptr<Stream> stream = streamOf("<</Filter [/FlateDecode /FlateDecode] /DecodeParms [null <</Predictor 11>>]>>",
                                  flate::compress(flate::compress("\0a\1b\0c"s)));
    EXPECT_EQ(stream->decode(), "abc");
    stream->removeFilter();
    EXPECT_EQ(stream->dict()->get(names::DecodeParms())->asArray()->size(), 1);
    stream->removeFilter();
    EXPECT_EQ(stream->data()->bytes(), "abc");
    EXPECT_EQ(stream->dict()->get(names::Filter()), nullptr);
    EXPECT_EQ(stream->dict()->get(names::DecodeParms()), nullptr);
}

TEST(Stream, DecodingFailures)
{
    const std::string good = flate::compress("some text to inflate");
    const struct { Ptr<Stream> stream; const char* message; } cases[] = {
        {streamOf("<</Filter /FlateDecode /DecodeParms <</Predictor 2>>>>", good), "Predictor less than 10 not supported"},
        {streamOf("<</Filter /LZWDecode>>", good), "Stream::decode: No suitable decoder available"},
        {streamOf("<</Filter /FlateDecode>>", good.substr(0, good.size() - 6)), "ZLib decompression error"},
        {streamOf("<</Filter /FlateDecode /DecodeParms [/FlateDecode]>>", good), "DecodeParms must be a dictionary"},
        {streamOf("<</Filter [/FlateDecode] /DecodeParms <<>>>>", good), "DecodeParms must be an array"},
        {streamOf("<</Filter 1>>", good), "removeFilter() - Filter value not valid"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(errorOf([&] { c.stream->removeFilter(); }), c.message);
        EXPECT_EQ(errorOf([&] { c.stream->decode(); }), c.message);
    }
}

} // namespace
