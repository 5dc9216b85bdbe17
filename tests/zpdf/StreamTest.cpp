#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Flate.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/Stream.h"

#include <gtest/gtest.h>

using namespace zpdf;

namespace {

std::string bytesOf(std::initializer_list<int> values)
{
    std::string bytes;
    for (int value : values)
        bytes.push_back(static_cast<char>(value));
    return bytes;
}

Ptr<Dict> predictorParms(int predictor, int colors, int columns)
{
    Ptr<Dict> parms = make<Dict>();
    parms->set(names::Predictor(), make<Number>(predictor));
    parms->set(names::Colors(), make<Number>(colors));
    parms->set(names::Columns(), make<Number>(columns));
    return parms;
}

Ptr<Stream> streamWith(Ptr<Object> filter, Ptr<Object> parms, std::string data)
{
    Ptr<Stream> stream = make<Stream>(std::move(data));
    stream->dict()->set(names::Filter(), std::move(filter));
    stream->dict()->set(names::DecodeParms(), std::move(parms));
    return stream;
}

TEST(Stream, CompressionRoundTrip)
{
    std::string original; // compressible, but not trivially
    for (int i = 0; i < 20000; ++i)
        original += std::to_string(i * 7919 % 10007) + ' ';
    Ptr<Stream> stream = make<Stream>(original);
    stream->dict()->set(names::DecodeParms(), predictorParms(12, 1, 4));
    stream->compress();
    EXPECT_EQ(stream->dict()->get(names::DecodeParms()), nullptr);
    const std::string compressed = stream->data()->bytes();
    ASSERT_LT(compressed.size(), original.size());
    EXPECT_EQ(stream->decode(), original);
    EXPECT_EQ(stream->data()->bytes(), compressed) << "decode leaves the stream alone";

    // Writing brings Length up to the compressed size.
    BufferWriter out;
    stream->write(out);
    const std::string head = "<<\r\n/Filter /FlateDecode\r\n/Length " + std::to_string(compressed.size()) + "\r\n>>\r\n";
    EXPECT_EQ(out.data().substr(0, head.size()), head);
    stream->removeFilter();
    EXPECT_EQ(stream->data()->bytes(), original);
    EXPECT_EQ(stream->dict()->get(names::Filter()), nullptr);
    EXPECT_EQ(flate::decompress(flate::compress("")), "");

    // An image already compressed keeps its own filter.
    Ptr<Stream> jpeg = streamWith(names::DCTDecode(), nullptr, "\xFF\xD8\xFF\xE0 jpeg");
    jpeg->compress();
    EXPECT_EQ(jpeg->data()->bytes(), "\xFF\xD8\xFF\xE0 jpeg");
    EXPECT_EQ(jpeg->dict()->get(names::Filter()), names::DCTDecode().get());
}

TEST(Stream, PngPredictorsAreUndone)
{
    const struct {
        int predictor, colors, columns;
        std::string predicted;
        std::string plain;
    } cases[] = {
        // One row of each type: sub, up, average, Paeth (with wrap-around), none.
        {12, 1, 3, bytesOf({1, 1, 1, 1, 2, 1, 1, 1, 3, 2, 2, 2, 4, 1, 0, 255, 0, 9, 8, 7}),
         bytesOf({1, 2, 3, 2, 3, 4, 3, 5, 6, 4, 5, 5, 9, 8, 7})},
        // Three bytes a pixel: "left" is one pixel back.
        {15, 3, 2, bytesOf({1, 10, 20, 30, 5, 5, 5, 4, 0, 0, 0, 250, 1, 2}),
         bytesOf({10, 20, 30, 15, 25, 35, 10, 20, 30, 9, 26, 37})},
        // A short last row is decoded as far as it goes.
        {10, 1, 4, bytesOf({1, 1, 1, 1, 1, 2, 5, 5}), bytesOf({1, 2, 3, 4, 6, 7})},
    };
    for (const auto& c : cases) {
        Ptr<Stream> stream = streamWith(names::FlateDecode(), predictorParms(c.predictor, c.colors, c.columns),
                                        flate::compress(c.predicted));
        EXPECT_EQ(stream->decode(), c.plain) << "Predictor " << c.predictor;
        stream->removeFilter();
        EXPECT_EQ(stream->data()->bytes(), c.plain);
        EXPECT_EQ(stream->dict()->get(names::DecodeParms()), nullptr);
    }
}

TEST(Stream, FilterArraysAreUndoneOneAtATime)
{
    Ptr<Array> filters = make<Array>();
    filters->append(names::FlateDecode());
    filters->append(names::FlateDecode());
    Ptr<Array> parms = make<Array>();
    parms->append(make<Null>());
    parms->append(predictorParms(11, 1, 1));
    const std::string predicted = bytesOf({0, 'a', 1, 'b', 0, 'c'});
    Ptr<Stream> stream = streamWith(filters, parms, flate::compress(flate::compress(predicted)));

    EXPECT_EQ(stream->decode(), "abc");
    stream->removeFilter();
    EXPECT_EQ(stream->data()->bytes(), flate::compress(predicted));
    EXPECT_EQ(stream->dict()->get(names::Filter())->asArray()->size(), 1);
    EXPECT_EQ(stream->dict()->get(names::DecodeParms())->asArray()->size(), 1);
    stream->removeFilter();
    EXPECT_EQ(stream->data()->bytes(), "abc");
    EXPECT_EQ(stream->dict()->get(names::Filter()), nullptr);
    EXPECT_EQ(stream->dict()->get(names::DecodeParms()), nullptr);
}

TEST(Stream, DecodingFailures)
{
    const std::string good = flate::compress("some text to inflate");
    Ptr<Array> flateList = make<Array>();
    flateList->append(names::FlateDecode());
    const struct {
        Ptr<Stream> stream;
        const char* message;
    } cases[] = {
        {streamWith(names::FlateDecode(), predictorParms(2, 1, 1), good), "Predictor less than 10 not supported"},
        {streamWith(make<Name>("LZWDecode"), nullptr, good), "Stream::decode: No suitable decoder available"},
        {streamWith(names::FlateDecode(), nullptr, "not zlib at all"), "ZLib decompression error"},
        {streamWith(names::FlateDecode(), nullptr, good.substr(0, good.size() - 6)), "ZLib decompression error"},
        {streamWith(names::FlateDecode(), flateList, good), "DecodeParms must be a dictionary"},
        {streamWith(flateList, make<Dict>(), good), "DecodeParms must be an array"},
        {streamWith(make<Number>(1), nullptr, good), "removeFilter() - Filter value not valid"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(zpdfTest::errorOf([&] { c.stream->removeFilter(); }), c.message);
        EXPECT_EQ(zpdfTest::errorOf([&] { c.stream->decode(); }), c.message);
    }
}

} // namespace
