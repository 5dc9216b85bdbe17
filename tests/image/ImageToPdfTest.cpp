// The conversion with real GDI+ images; JPEG encoding and the orientation read go through
// their seams where Wine's GDI+ falls short (quality ignored, no EXIF orientation).

#include "image/GdiplusHelpers.h"
#include "image/ImageToPdf.h"
#include "tests/support/ScratchEnvironment.h"
#include "zpdf/Array.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/Stream.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace imageToPdf {
namespace {

class ImageToPdfTest : public testing::Test {
protected:
    void SetUp() override
    {
        Gdiplus::GdiplusStartupInput input;
        ASSERT_EQ(Gdiplus::GdiplusStartup(&token_, &input, nullptr), Gdiplus::Ok);
    }
    void TearDown() override { Gdiplus::GdiplusShutdown(token_); }

    // Records the qualities asked for; each result is `bytesPerStep` bytes per quality point.
    ImageToPdf::JpegEncoder recordingEncoder(size_t bytesPerStep)
    {
        return [this, bytesPerStep](Gdiplus::Image&, long quality, std::vector<uint8_t>& bytes) {
            qualities.push_back(quality);
            bytes.assign(static_cast<size_t>(quality) * bytesPerStep, 0xD8);
            return true;
        };
    }

    ScratchEnvironment env;
    std::vector<long> qualities;

private:
    ULONG_PTR token_ = 0;
};

std::unique_ptr<Gdiplus::Bitmap> rgbBitmap(int width, int height)
{
    auto bitmap = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat24bppRGB);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            bitmap->SetPixel(x, y, Gdiplus::Color(255, static_cast<BYTE>(x * 3), static_cast<BYTE>(y * 5), 90));
    }
    return bitmap;
}

// An indexed bitmap whose pixel (x, y) is index (x + y) % entries.
std::unique_ptr<Gdiplus::Bitmap> indexedBitmap(int width, int height, Gdiplus::PixelFormat format, int bits,
                                               const std::vector<Gdiplus::ARGB>& entries)
{
    auto bitmap = std::make_unique<Gdiplus::Bitmap>(width, height, format);
    std::vector<uint8_t> buffer(sizeof(Gdiplus::ColorPalette) + entries.size() * sizeof(Gdiplus::ARGB));
    auto* palette = reinterpret_cast<Gdiplus::ColorPalette*>(buffer.data());
    palette->Flags = 0;
    palette->Count = static_cast<UINT>(entries.size());
    std::memcpy(palette->Entries, entries.data(), entries.size() * sizeof(Gdiplus::ARGB));
    bitmap->SetPalette(palette);
    Gdiplus::Rect all(0, 0, width, height);
    Gdiplus::BitmapData data = {};
    bitmap->LockBits(&all, Gdiplus::ImageLockModeWrite, format, &data);
    for (int y = 0; y < height; ++y) {
        auto* row = static_cast<uint8_t*>(data.Scan0) + static_cast<ptrdiff_t>(y) * data.Stride;
        std::memset(row, 0, static_cast<size_t>(data.Stride));
        for (int x = 0; x < width; ++x) {
            const int index = (x + y) % static_cast<int>(entries.size());
            const int bit = x * bits;
            row[bit / 8] |= static_cast<uint8_t>(index << (8 - bits - bit % 8));
        }
    }
    bitmap->UnlockBits(&data);
    return bitmap;
}

zpdf::Dict* firstPage(zpdf::Document& document)
{
    return document.pages()->get(zpdf::names::Kids())->asArray()->elements()[0]->asDict();
}

zpdf::Stream* imageOf(zpdf::Document& document)
{
    zpdf::Dict* resources = firstPage(document)->get(zpdf::names::Resources())->asDict();
    return resources->get(zpdf::names::XObject())->asDict()->get("img0")->asStream();
}

std::vector<double> mediaBox(zpdf::Document& document)
{
    std::vector<double> box;
    for (const auto& n : firstPage(document)->get(zpdf::names::MediaBox())->asArray()->elements())
        box.push_back(n->asNumber()->value());
    return box;
}

std::string nameAt(zpdf::Dict& dict, const zpdf::Ptr<zpdf::Name>& key)
{
    zpdf::Object* value = dict.get(key);
    return value && value->asName() ? value->asName()->bytes() : std::string("(none)");
}

std::string readFile(const ZString& path)
{
    std::ifstream in(std::filesystem::path(path.c_str()), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A JPEG file of the bitmap, made by GDI+.
ZString jpegFile(const ScratchEnvironment& env, Gdiplus::Bitmap& bitmap)
{
    CLSID jpeg = {};
    EXPECT_GE(findEncoder(L"image/jpeg", &jpeg), 0);
    const ZString path = env.folder() + L"\\picture.jpg";
    EXPECT_EQ(bitmap.Save(path.c_str(), &jpeg, nullptr), Gdiplus::Ok);
    return path;
}

TEST_F(ImageToPdfTest, CapturedBitmapIsReencodedOnceAtTheGivenQuality)
{
    auto bitmap = rgbBitmap(2000, 1000);
    ImageToPdf converter;
    converter.setJpegEncoder(recordingEncoder(1));
    ConversionOptions options;
    options.dpi = 96;
    options.jpegQuality = 77;
    zpdf::Document document;
    ASSERT_TRUE(converter.convert(options, *bitmap, L"", document));
    EXPECT_EQ(qualities, std::vector<long>{77});

    EXPECT_EQ(mediaBox(document), (std::vector<double>{0, 0, 842, 421}));
    zpdf::Stream* image = imageOf(document);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(nameAt(*image->dict(), zpdf::names::Subtype()), "Image");
    EXPECT_EQ(nameAt(*image->dict(), zpdf::names::Filter()), "DCTDecode");
    EXPECT_EQ(nameAt(*image->dict(), zpdf::names::ColorSpace()), "DeviceRGB");
    EXPECT_EQ(image->dict()->get(zpdf::names::Width())->asNumber()->value(), 2000);
    EXPECT_EQ(image->dict()->get(zpdf::names::Height())->asNumber()->value(), 1000);
    EXPECT_EQ(image->dict()->get(zpdf::names::BitsPerComponent())->asNumber()->value(), 8);
    EXPECT_EQ(image->dict()->get(zpdf::names::Type()), nullptr) << "an image gets no Type entry";
    EXPECT_EQ(image->data()->size(), 77u);

    zpdf::Stream* contents = firstPage(document)->get(zpdf::names::Contents())->asStream();
    ASSERT_NE(contents, nullptr);
    EXPECT_EQ(contents->decode(), "q\r\n842.000000 0 0 421.000000 0.000000 0.000000 cm\r\n/img0 Do\r\nQ\r\n");
    zpdf::Array* procSet = firstPage(document)->get(zpdf::names::Resources())->asDict()->get(zpdf::names::ProcSet())->asArray();
    ASSERT_EQ(procSet->size(), 2);
    EXPECT_EQ(procSet->elements()[0]->asName()->bytes(), "PDF");
    EXPECT_EQ(procSet->elements()[1]->asName()->bytes(), "ImageC");
}

TEST_F(ImageToPdfTest, JpegWithAnUprightOrientationIsEmbeddedByteForByte)
{
    auto bitmap = rgbBitmap(64, 32);
    const ZString path = jpegFile(env, *bitmap);
    const std::string bytes = readFile(path);
    for (int orientation : {1, 6}) {
        Gdiplus::Bitmap fromFile(path.c_str());
        ImageToPdf converter;
        converter.setOrientationReader([orientation](Gdiplus::Image&) { return orientation; });
        converter.setJpegEncoder(recordingEncoder(1));
        ConversionOptions options;
        options.optForA4 = false;
        options.dpi = 72;
        zpdf::Document document;
        ASSERT_TRUE(converter.convert(options, fromFile, path.c_str(), document));
        EXPECT_TRUE(qualities.empty()) << orientation;
        EXPECT_EQ(imageOf(document)->data()->bytes(), bytes) << orientation;
        // Rotated a quarter turn, the page takes the turned size.
        const double width = orientation == 6 ? 32 : 64;
        EXPECT_EQ(mediaBox(document), (std::vector<double>{0, 0, width, 96 - width})) << orientation;
    }
}

TEST_F(ImageToPdfTest, MirroredOrWithoutPassThroughAJpegIsReencodedStepByStep)
{
    auto bitmap = rgbBitmap(64, 32);
    const ZString path = jpegFile(env, *bitmap);
    const size_t fileSize = readFile(path).size();
    for (bool mirrored : {true, false}) {
        qualities.clear();
        Gdiplus::Bitmap fromFile(path.c_str());
        ImageToPdf converter;
        converter.setOrientationReader([mirrored](Gdiplus::Image&) { return mirrored ? 5 : 0; });
        // 100 bytes a quality point never fits a file this small: every step is tried.
        converter.setJpegEncoder(recordingEncoder(fileSize));
        ConversionOptions options;
        options.passThroughJpg = mirrored;
        zpdf::Document document;
        ASSERT_TRUE(converter.convert(options, fromFile, path.c_str(), document));
        ASSERT_FALSE(qualities.empty());
        EXPECT_EQ(qualities.front(), 100);
        EXPECT_EQ(qualities.back(), 30) << "never below 30";
        EXPECT_EQ(imageOf(document)->data()->size(), 30 * fileSize);
    }
}

TEST_F(ImageToPdfTest, IndexedImagesArePackedRowByRowWithTheirPalette)
{
    // Read back from PNG files, as the decoder marks them RGB. (Wine decodes 8-bit palette
    // PNGs as 32-bit colour, so that depth is covered by the packing and palette tests.)
    CLSID png = {};
    ASSERT_GE(findEncoder(L"image/png", &png), 0);
    const std::vector<Gdiplus::ARGB> twoColours = {0xFF000000, 0xFFFF8000};
    const struct {
        Gdiplus::PixelFormat format;
        int bits;
        size_t rowBytes;
    } cases[] = {{PixelFormat1bppIndexed, 1, 2}, {PixelFormat4bppIndexed, 4, 5}};
    for (const auto& c : cases) {
        const ZString path = env.folder() + L"\\indexed.png";
        ASSERT_EQ(indexedBitmap(9, 3, c.format, c.bits, twoColours)->Save(path.c_str(), &png, nullptr), Gdiplus::Ok);
        Gdiplus::Bitmap bitmap(path.c_str());
        ASSERT_EQ(bitmap.GetPixelFormat(), c.format);
        ImageToPdf converter;
        converter.setJpegEncoder(recordingEncoder(1));
        zpdf::Document document;
        ASSERT_TRUE(converter.convert(ConversionOptions(), bitmap, path.c_str(), document)) << c.bits;
        EXPECT_TRUE(qualities.empty()) << c.bits;
        zpdf::Stream* image = imageOf(document);
        EXPECT_EQ(nameAt(*image->dict(), zpdf::names::Filter()), "FlateDecode") << c.bits;
        EXPECT_EQ(image->dict()->get(zpdf::names::BitsPerComponent())->asNumber()->value(), c.bits);
        const std::string rows = image->decode();
        ASSERT_EQ(rows.size(), c.rowBytes * 3) << c.bits;
        // Row 1 starts with index 1 (x + y), packed from the high bits.
        EXPECT_EQ(static_cast<uint8_t>(rows[c.rowBytes]) >> (8 - c.bits), 1) << c.bits;
        zpdf::Array* colorSpace = image->dict()->get(zpdf::names::ColorSpace())->asArray();
        ASSERT_NE(colorSpace, nullptr);
        EXPECT_EQ(colorSpace->elements()[0]->asName()->bytes(), "Indexed");
        EXPECT_EQ(colorSpace->elements()[1]->asName()->bytes(), "DeviceRGB");
    }
}

TEST_F(ImageToPdfTest, RealJpegEncoderProducesAJpeg)
{
    auto bitmap = rgbBitmap(40, 30);
    zpdf::Document document;
    ASSERT_TRUE(ImageToPdf().convert(ConversionOptions(), *bitmap, L"", document));
    const std::string& data = imageOf(document)->data()->bytes();
    ASSERT_GT(data.size(), 4u);
    EXPECT_EQ(data.substr(0, 2), "\xFF\xD8") << "starts like a JPEG";
}

} // namespace
} // namespace imageToPdf
