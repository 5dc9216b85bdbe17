// The conversion with real GDI+ images; JPEG encoding and the orientation read go
// through their seams where Wine's GDI+ falls short (quality ignored,
// no EXIF orientation).

#include "image/GdiplusHelpers.h"
#include "image/ImageToPdf.h"
#include "tests/support/ScratchEnvironment.h"
#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Names.h"

#include <gtest/gtest.h>

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

TEST_F(ImageToPdfTest, CapturedBitmapIsReencodedOnceAtTheGivenQuality)
{
    Gdiplus::Bitmap bitmap(2000, 1000, PixelFormat24bppRGB);
    zpdf::Document document;
    ASSERT_TRUE(convert(bitmap, L"", document, ConversionOptions{96, 77}));
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
    Gdiplus::Bitmap picture(64, 32, PixelFormat24bppRGB);
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(findEncoder(L"image/jpeg", &jpeg) >= 0 && encodeToBuffer(&picture, jpeg, 90, bytes));
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

TEST_F(ImageToPdfTest, IndexedImageIsPackedRowByRowWithItsPalette)
{
    // Read back from a PNG file, as the decoder marks it RGB, with rows padded to 4 bytes.
    CLSID png = {};
    ASSERT_GE(findEncoder(L"image/png", &png), 0);
    struct {
        UINT flags, count;
        Gdiplus::ARGB entries[2];
    } palette = {0, 2, {0xFF000000, 0xFFFF8000}};
    // 9 x 3 pixels of 4 bits holding index (x + y) % 2: rows of 5 alternating bytes.
    std::vector<uint8_t> lines(8 * 3, 0x01);
    std::fill_n(lines.begin() + 8, 8, 0x10);
    Gdiplus::Bitmap drawn(9, 3, 8, PixelFormat4bppIndexed, lines.data());
    drawn.SetPalette(reinterpret_cast<Gdiplus::ColorPalette*>(&palette));
    const ZString path = env.folder() + L"\\indexed.png";
    ASSERT_EQ(drawn.Save(path.c_str(), &png, nullptr), Gdiplus::Ok);
    Gdiplus::Bitmap bitmap(path.c_str());
    ASSERT_EQ(bitmap.GetPixelFormat(), PixelFormat4bppIndexed);
    zpdf::Document document;
    ASSERT_TRUE(convert(bitmap, path, document));
    zpdf::Stream* image = imageOf(document);
    EXPECT_EQ(text(image->dict()), "<< /BitsPerComponent 4 /ColorSpace [/Indexed /DeviceRGB 1 <000000FF8000>] "
                                   "/Filter /FlateDecode /Height 3 /Subtype /Image /Width 9 >>");
    const std::string rows = image->decode();
    ASSERT_EQ(rows.size(), 15u);
    EXPECT_EQ(rows.substr(0, 1) + rows.substr(5, 1), "\x01\x10");
}

} // namespace
} // namespace imageToPdf
