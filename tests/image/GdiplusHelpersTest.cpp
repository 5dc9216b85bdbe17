// The GDI+ helpers: encoder look-up, encoding into memory and packing indexed rows.

#include "image/GdiplusHelpers.h"

#include "tests/support/TestPixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
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
    for (const wchar_t* mimeType : {L"image/PNG", L"image/png ", L"image/", L""}) {
        CLSID clsid = {};
        EXPECT_EQ(findEncoder(mimeType, &clsid), -1) << mimeType;
    }
}

TEST_F(GdiplusHelpers, EncodeToBufferAppendsAPngThatDecodesToTheSamePixelsOrAJpegWithAQuality)
{
    CLSID png = {};
    ASSERT_GE(findEncoder(L"image/png", &png), 0);
    const auto image = makeRgbBitmap(13, 7);
    std::vector<uint8_t> bytes = {1, 2, 3};
    ASSERT_TRUE(encodeToBuffer(image.get(), png, 0, bytes));
    const std::vector<uint8_t> start = {1, 2, 3, 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    ASSERT_GT(bytes.size(), start.size());
    ASSERT_TRUE(std::equal(start.begin(), start.end(), bytes.begin())) << "appended after what was there";
    bytes.erase(bytes.begin(), bytes.begin() + 3);
    const auto decoded = decode(bytes);
    ASSERT_TRUE(decoded);
    ASSERT_EQ(decoded->GetWidth(), 13u);
    ASSERT_EQ(decoded->GetHeight(), 7u);
    EXPECT_EQ(pixelsOf(*decoded), pixelsOf(*image));

    CLSID jpeg = {};
    ASSERT_GE(findEncoder(L"image/jpeg", &jpeg), 0);
    std::vector<uint8_t> jpegBytes;
    ASSERT_TRUE(encodeToBuffer(image.get(), jpeg, 80, jpegBytes)) << "with a quality";
    EXPECT_TRUE(jpegBytes.size() > 3 && jpegBytes[0] == 0xFF && jpegBytes[1] == 0xD8 && jpegBytes[2] == 0xFF);
    EXPECT_TRUE(decode(jpegBytes));

    const CLSID noEncoder = {0x12345678, 0x1, 0x2, {3, 4, 5, 6, 7, 8, 9, 10}};
    const size_t encodedSize = bytes.size();
    EXPECT_FALSE(encodeToBuffer(image.get(), noEncoder, 0, bytes));
    EXPECT_EQ(bytes.size(), encodedSize);
    EXPECT_NE(image->GetLastStatus(), Gdiplus::Ok) << "the failure is kept as the last status";
}

TEST_F(GdiplusHelpers, PackIndexedRowsKeepsRowBytesTopFirstAt1Or4Or8BitsOnly)
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
        std::vector<uint8_t> expected = {42};
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
        EXPECT_EQ(bytes, expected) << c.bitsPerPixel;
    }
    const auto rgbImage = makeRgbBitmap(9, 3);
    for (int bitsPerPixel : {0, 2, 16, 24, 32}) {
        std::vector<uint8_t> bytes;
        EXPECT_FALSE(packIndexedRows(rgbImage.get(), bitsPerPixel, bytes)) << bitsPerPixel;
        EXPECT_TRUE(bytes.empty());
    }
    // More bits than a row of a 1-bit image holds.
    std::vector<uint8_t> oneBitLines(4 * 2, 0);
    Gdiplus::Bitmap oneBit(9, 2, 4, PixelFormat1bppIndexed, oneBitLines.data());
    std::vector<uint8_t> bytes;
    EXPECT_FALSE(packIndexedRows(&oneBit, 8, bytes));
    EXPECT_TRUE(bytes.empty());
}
