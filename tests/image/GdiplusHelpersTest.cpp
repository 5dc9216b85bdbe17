// The GDI+ helpers: encoder look-up, encoding into memory and packing indexed rows.

#include "image/GdiplusHelpers.h"

#include "tests/support/TestPixels.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

class GdiplusHelpers : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        Gdiplus::GdiplusStartupInput input;
        ASSERT_EQ(Gdiplus::GdiplusStartup(&token, &input, nullptr), Gdiplus::Ok);
    }
    static void TearDownTestSuite() { Gdiplus::GdiplusShutdown(token); }

    static ULONG_PTR token;
};

ULONG_PTR GdiplusHelpers::token = 0;

uint32_t gradient(int x, int y)
{
    return rgb(17 * x, 30 * y, 255 - 9 * x);
}

std::unique_ptr<Gdiplus::Bitmap> makeRgbBitmap(int width, int height)
{
    auto bitmap = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat24bppRGB);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap->SetPixel(x, y, Gdiplus::Color(0xFF000000 | gradient(x, y)));
    return bitmap;
}

// Decodes encoded bytes again through a stream on a copy of them.
std::unique_ptr<Gdiplus::Bitmap> decode(const std::vector<uint8_t>& bytes)
{
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t*>(GlobalLock(memory)));
    GlobalUnlock(memory);
    IStream* stream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(memory, TRUE, &stream)))
        return nullptr;
    std::unique_ptr<Gdiplus::Bitmap> bitmap(Gdiplus::Bitmap::FromStream(stream));
    stream->Release();
    if (bitmap && bitmap->GetLastStatus() != Gdiplus::Ok)
        return nullptr;
    return bitmap;
}

std::vector<uint32_t> pixelsOf(Gdiplus::Bitmap& bitmap)
{
    std::vector<uint32_t> pixels;
    for (UINT y = 0; y < bitmap.GetHeight(); ++y)
        for (UINT x = 0; x < bitmap.GetWidth(); ++x) {
            Gdiplus::Color color;
            bitmap.GetPixel(static_cast<INT>(x), static_cast<INT>(y), &color);
            pixels.push_back(color.GetValue() & 0xFFFFFF);
        }
    return pixels;
}

bool startsWith(const std::vector<uint8_t>& bytes, const std::vector<uint8_t>& start)
{
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

const std::vector<uint8_t> kPngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
const std::vector<uint8_t> kJpegStart = {0xFF, 0xD8, 0xFF};

} // namespace

TEST_F(GdiplusHelpers, FindEncoderMatchesTheMimeTypeExactly)
{
    UINT count = 0;
    UINT size = 0;
    ASSERT_EQ(Gdiplus::GetImageEncodersSize(&count, &size), Gdiplus::Ok);
    std::vector<uint8_t> buffer(size);
    auto* encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
    ASSERT_EQ(Gdiplus::GetImageEncoders(count, size, encoders), Gdiplus::Ok);

    for (const wchar_t* mimeType : {L"image/png", L"image/jpeg"}) {
        CLSID clsid = {};
        const int index = findEncoder(mimeType, &clsid);
        ASSERT_GE(index, 0) << mimeType;
        ASSERT_LT(index, static_cast<int>(count));
        EXPECT_STREQ(encoders[index].MimeType, mimeType);
        EXPECT_TRUE(IsEqualCLSID(encoders[index].Clsid, clsid));
    }
    const CLSID untouched = {0x12345678, 0x1, 0x2, {3, 4, 5, 6, 7, 8, 9, 10}};
    for (const wchar_t* mimeType : {L"image/PNG", L"Image/jpeg", L"image/png ", L"png", L"image/", L""}) {
        CLSID clsid = untouched;
        EXPECT_EQ(findEncoder(mimeType, &clsid), -1) << mimeType;
        EXPECT_TRUE(IsEqualCLSID(clsid, untouched)) << mimeType;
    }
}

TEST_F(GdiplusHelpers, EncodeToBufferGivesAPngThatDecodesToTheSamePixels)
{
    CLSID png = {};
    ASSERT_GE(findEncoder(L"image/png", &png), 0);
    const auto image = makeRgbBitmap(13, 7);
    std::vector<uint8_t> bytes = {1, 2, 3};
    ASSERT_TRUE(encodeToBuffer(image.get(), png, 0, bytes));
    ASSERT_TRUE(startsWith(bytes, {1, 2, 3})) << "the encoding is appended";
    bytes.erase(bytes.begin(), bytes.begin() + 3);
    EXPECT_TRUE(startsWith(bytes, kPngSignature));
    EXPECT_EQ(image->GetLastStatus(), Gdiplus::Ok);

    const auto decoded = decode(bytes);
    ASSERT_TRUE(decoded);
    ASSERT_EQ(decoded->GetWidth(), 13u);
    ASSERT_EQ(decoded->GetHeight(), 7u);
    EXPECT_EQ(pixelsOf(*decoded), pixelsOf(*image));
}

TEST_F(GdiplusHelpers, EncodeToBufferWithAQualityGivesAJpeg)
{
    CLSID jpeg = {};
    ASSERT_GE(findEncoder(L"image/jpeg", &jpeg), 0);
    const auto image = makeRgbBitmap(16, 8);
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(encodeToBuffer(image.get(), jpeg, 80, bytes));
    EXPECT_TRUE(startsWith(bytes, kJpegStart));
    const auto decoded = decode(bytes);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->GetWidth(), 16u);
    EXPECT_EQ(decoded->GetHeight(), 8u);
}

TEST_F(GdiplusHelpers, EncodeToBufferKeepsAFailureAsTheImagesLastStatus)
{
    const CLSID noEncoder = {0x12345678, 0x1, 0x2, {3, 4, 5, 6, 7, 8, 9, 10}};
    const auto image = makeRgbBitmap(4, 4);
    ASSERT_EQ(image->GetLastStatus(), Gdiplus::Ok);
    std::vector<uint8_t> bytes = {7};
    EXPECT_FALSE(encodeToBuffer(image.get(), noEncoder, 0, bytes));
    EXPECT_EQ(bytes, std::vector<uint8_t>{7});
    EXPECT_NE(image->GetLastStatus(), Gdiplus::Ok);
}

TEST_F(GdiplusHelpers, PackIndexedRowsKeepsEachRowsBytesTopFirst)
{
    struct Case {
        int bitsPerPixel;
        Gdiplus::PixelFormat format;
        size_t rowBytes;
        uint8_t lastByteMask; // the bits of the last byte that belong to pixels
    };
    // Width 9: 9 bits, 36 bits and 9 bytes a row.
    const Case cases[] = {
        {1, PixelFormat1bppIndexed, 2, 0x80},
        {4, PixelFormat4bppIndexed, 5, 0xF0},
        {8, PixelFormat8bppIndexed, 9, 0xFF},
    };
    const int width = 9;
    const int height = 3;
    const int stride = 16; // wider than any row, so that the padding would show
    for (const Case& c : cases) {
        std::vector<uint8_t> scanLines(static_cast<size_t>(stride) * height, 0xEE);
        std::vector<uint8_t> expected;
        for (int y = 0; y < height; ++y)
            for (size_t i = 0; i < c.rowBytes; ++i) {
                uint8_t value = static_cast<uint8_t>(0x11 * (y + 1) + 3 * i);
                if (i + 1 == c.rowBytes)
                    value &= c.lastByteMask;
                scanLines[y * stride + i] = value;
                expected.push_back(value);
            }
        Gdiplus::Bitmap bitmap(width, height, stride, c.format, scanLines.data());
        ASSERT_EQ(bitmap.GetLastStatus(), Gdiplus::Ok) << c.bitsPerPixel;
        std::vector<uint8_t> bytes = {42};
        ASSERT_TRUE(packIndexedRows(&bitmap, c.bitsPerPixel, bytes)) << c.bitsPerPixel;
        expected.insert(expected.begin(), 42);
        EXPECT_EQ(bytes, expected) << c.bitsPerPixel;
    }
}

TEST_F(GdiplusHelpers, PackIndexedRowsRefusesOtherDepths)
{
    const auto rgbImage = makeRgbBitmap(9, 3);
    for (int bitsPerPixel : {0, 2, 16, 24, 32}) {
        std::vector<uint8_t> bytes;
        EXPECT_FALSE(packIndexedRows(rgbImage.get(), bitsPerPixel, bytes)) << bitsPerPixel;
        EXPECT_TRUE(bytes.empty());
    }
    // Asked for more bits than a row of a 1-bit image holds.
    std::vector<uint8_t> scanLines(4 * 2, 0);
    Gdiplus::Bitmap narrow(9, 2, 4, PixelFormat1bppIndexed, scanLines.data());
    std::vector<uint8_t> bytes;
    EXPECT_FALSE(packIndexedRows(&narrow, 8, bytes));
    EXPECT_TRUE(bytes.empty());
}
