// The GDI+ helpers, and the conversion with real GDI+ images; JPEG encoding and the
// orientation read go through their seams where Wine's GDI+ falls short (quality ignored,
// no EXIF orientation).

#include "image/GdiplusHelpers.h"
#include "image/ImageToPdf.h"
#include "tests/support/ScratchEnvironment.h"
#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Names.h"

#include <gtest/gtest.h>

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

    // Through the seams: the encoder records the qualities asked for and appends (as
    // encodeToBuffer does) `bytesPerStep` bytes a quality point; the orientation is `orientation`.
    bool convert(Gdiplus::Image& image, const ZString& path, zpdf::Document& document,
                 const ConversionOptions& options = {}, size_t bytesPerStep = 1, int orientation = 0)
    {
        ImageToPdf converter;
        converter.setOrientationReader([orientation](Gdiplus::Image&) { return orientation; });
        converter.setJpegEncoder([this, bytesPerStep](Gdiplus::Image&, long quality, std::vector<uint8_t>& bytes) {
            qualities.push_back(quality);
            bytes.insert(bytes.end(), static_cast<size_t>(quality) * bytesPerStep, 0xD8);
            return true;
        });
        return converter.convert(options, image, path.c_str(), document);
    }

    ScratchEnvironment env;
    std::vector<long> qualities;

private:
    ULONG_PTR token_ = 0;
};
using GdiplusHelpers = ImageToPdfTest;

std::unique_ptr<Gdiplus::Bitmap> rgbBitmap(int width, int height)
{
    auto bitmap = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat24bppRGB);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap->SetPixel(x, y, Gdiplus::Color(255, static_cast<BYTE>(x * 3), static_cast<BYTE>(y * 5), 90));
    return bitmap;
}

// An object as written, with CR LF as spaces.
std::string text(const zpdf::Object* object)
{
    zpdf::BufferWriter out;
    out.write(*object);
    std::string written = out.take();
    for (size_t at; (at = written.find("\r\n")) != std::string::npos;)
        written.replace(at, 2, " ");
    return written;
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

TEST_F(GdiplusHelpers, EncodeToBufferAppendsTheFileOrNothing)
{
    CLSID jpeg = {};
    EXPECT_EQ(findEncoder(L"image/JPEG", &jpeg), -1) << "the type as written";
    ASSERT_GE(findEncoder(L"image/jpeg", &jpeg), 0);
    const auto image = rgbBitmap(13, 7);
    std::vector<uint8_t> bytes = {1, 2, 3};
    ASSERT_TRUE(encodeToBuffer(image.get(), jpeg, 80, bytes));
    ASSERT_GT(bytes.size(), 6u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 6), "\1\2\3\xFF\xD8\xFF") << "appended after what was there";

    const CLSID noEncoder = {0x12345678, 0x1, 0x2, {3, 4, 5, 6, 7, 8, 9, 10}};
    const size_t encodedSize = bytes.size();
    EXPECT_FALSE(encodeToBuffer(image.get(), noEncoder, 0, bytes));
    EXPECT_EQ(bytes.size(), encodedSize);
}

TEST_F(ImageToPdfTest, CapturedBitmapIsReencodedOnceAtTheGivenQuality)
{
    auto bitmap = rgbBitmap(2000, 1000);
    zpdf::Document document;
    ASSERT_TRUE(convert(*bitmap, L"", document, ConversionOptions{96, 77}));
    EXPECT_EQ(qualities, std::vector<long>{77});
    EXPECT_EQ(text(firstPage(document)), "<< /Contents 4 0 R /MediaBox [0 0 842 421] /Parent 3 0 R /Resources << "
                                         "/ProcSet [/PDF /ImageC] /XObject << /img0 1 0 R >> >> /Type /Page >>");
    zpdf::Stream* image = imageOf(document);
    EXPECT_EQ(text(image->dict()), "<< /BitsPerComponent 8 /ColorSpace /DeviceRGB /Filter /DCTDecode /Height 1000 "
                                   "/Subtype /Image /Width 2000 >>");
    EXPECT_EQ(image->data()->size(), 77u);
    EXPECT_EQ(firstPage(document)->get(zpdf::names::Contents())->asStream()->decode(),
              "q\r\n842.000000 0 0 421.000000 0.000000 0.000000 cm\r\n/img0 Do\r\nQ\r\n");
}

TEST_F(ImageToPdfTest, JpegFileIsEmbeddedAsItIsUnlessMirroredOrToldNotTo)
{
    CLSID jpeg = {};
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(findEncoder(L"image/jpeg", &jpeg) >= 0 && encodeToBuffer(rgbBitmap(64, 32).get(), jpeg, 90, bytes));
    const std::string file(bytes.begin(), bytes.end());
    const ZString path = env.writeFile(L"picture.jpg", file);
    // A quarter turn turns the page too; a mirrored picture cannot keep its bytes.
    const struct {
        int orientation;
        bool passThrough;
        const char* mediaBox;
    } cases[] = {{6, true, "[0 0 32 64]"}, {5, true, "[0 0 32 64]"}, {0, false, "[0 0 64 32]"}};
    for (const auto& c : cases) {
        qualities.clear();
        Gdiplus::Bitmap fromFile(path.c_str());
        zpdf::Document document;
        // The file's size a quality point never fits: every step, 100 down to 30, is tried.
        ASSERT_TRUE(convert(fromFile, path, document, ConversionOptions{72, 100, false, c.passThrough}, file.size(),
                            c.orientation));
        EXPECT_EQ(text(firstPage(document)->get(zpdf::names::MediaBox())), c.mediaBox) << c.orientation;
        const bool reencoded = c.orientation == 5 || !c.passThrough;
        EXPECT_EQ(qualities.size(), reencoded ? 15u : 0u) << c.orientation;
        EXPECT_TRUE(imageOf(document)->data()->bytes() == (reencoded ? std::string(30 * file.size(), '\xD8') : file))
            << c.orientation;
    }
}

TEST_F(ImageToPdfTest, IndexedImagesArePackedRowByRowWithTheirPalette)
{
    // Read back from PNG files, as the decoder marks them RGB, with rows padded to 4 bytes.
    // (Wine decodes 8-bit palette PNGs as 32-bit colour.)
    CLSID png = {};
    ASSERT_GE(findEncoder(L"image/png", &png), 0);
    struct {
        UINT flags, count;
        Gdiplus::ARGB entries[2];
    } palette = {0, 2, {0xFF000000, 0xFFFF8000}};
    // 9 x 3 pixels holding index (x + y) % 2: rows of alternating bytes.
    const struct {
        Gdiplus::PixelFormat format;
        int bits;
        size_t rowBytes;
        uint8_t evenRow, oddRow;
    } cases[] = {{PixelFormat1bppIndexed, 1, 2, 0x55, 0xAA}, {PixelFormat4bppIndexed, 4, 5, 0x01, 0x10}};
    for (const auto& c : cases) {
        std::vector<uint8_t> lines(8 * 3, c.evenRow);
        std::fill_n(lines.begin() + 8, 8, c.oddRow);
        Gdiplus::Bitmap drawn(9, 3, 8, c.format, lines.data());
        drawn.SetPalette(reinterpret_cast<Gdiplus::ColorPalette*>(&palette));
        const ZString path = env.folder() + L"\\indexed.png";
        ASSERT_EQ(drawn.Save(path.c_str(), &png, nullptr), Gdiplus::Ok);
        Gdiplus::Bitmap bitmap(path.c_str());
        ASSERT_EQ(bitmap.GetPixelFormat(), c.format);
        zpdf::Document document;
        ASSERT_TRUE(convert(bitmap, path, document)) << c.bits;
        EXPECT_TRUE(qualities.empty()) << c.bits;
        zpdf::Stream* image = imageOf(document);
        EXPECT_EQ(text(image->dict()), "<< /BitsPerComponent " + std::to_string(c.bits)
                                           + " /ColorSpace [/Indexed /DeviceRGB 1 <000000FF8000>] /Filter /FlateDecode"
                                             " /Height 3 /Subtype /Image /Width 9 >>");
        const std::string rows = image->decode();
        ASSERT_EQ(rows.size(), c.rowBytes * 3) << c.bits;
        EXPECT_EQ(rows.substr(0, 1) + rows.substr(c.rowBytes, 1), std::string({char(c.evenRow), char(c.oddRow)}));
    }
}

} // namespace
} // namespace imageToPdf
