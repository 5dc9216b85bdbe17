#include "image/ImagePdfRules.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"

#include <gtest/gtest.h>

#include <limits>

namespace imageToPdf {
namespace {

// Sides are truncated after any A4 scaling. A dpi of 0 or below (a configured DWORD above
// 0x7FFFFFFF reads as negative) or a side beyond a 32-bit integer gives no page; a huge dpi
// is valid and gives a page too small to be seen, as the rule says.
TEST(ImagePdfRules, PageSizeContentStreamAndOrientation)
{
    constexpr int none = -1;
    constexpr uint32_t maxPx = 0xFFFFFFFF;
    constexpr int maxDpi = std::numeric_limits<int>::max(), minDpi = std::numeric_limits<int>::min();
    const struct {
        uint32_t width, height;
        int dpi;
        bool a4;
        int pageWidth, pageHeight; // none: no page
    } sizes[] = {
        {2000, 1000, 96, true, 842, 421}, {2000, 1000, 96, false, 1500, 750}, {1200, 1600, 96, true, 631, 842},
        {100, 100, 144, true, 50, 50}, {1, 1, 600, false, 0, 0}, {1920, 1080, maxDpi, true, 0, 0},
        {1920, 1080, 0, true, none, none}, {1920, 1080, 0, false, none, none}, {0, 0, 0, false, none, none},
        {1920, 1080, -1, true, none, none}, {1920, 1080, minDpi, false, none, none},
        // 2^32 - 1 pixels at 144 dpi are 2147483647.5 points: the largest side there is.
        {maxPx, 1, 144, false, maxDpi, 0}, {1, maxPx, 72, false, none, none}, {maxPx, maxPx, 1, false, none, none},
        {0x80000000u, 10, 72, false, none, none}, {maxPx, maxPx / 2, 1, true, 842, 420},
    };
    for (const auto& c : sizes) {
        const std::optional<PageSize> page = pageSize(c.width, c.height, c.dpi, c.a4);
        const std::pair<int, int> got = page ? std::make_pair(page->width, page->height) : std::make_pair(none, none);
        EXPECT_EQ(got, std::make_pair(c.pageWidth, c.pageHeight)) << c.width << "x" << c.height << " at " << c.dpi
                                                                  << (c.a4 ? " A4" : "");
    }
    EXPECT_EQ(contentStream(1.5, 2.25, -3, 10, "img7"), "q\r\n1.500000 0 0 2.250000 -3.000000 10.000000 cm\r\n/img7 Do\r\nQ\r\n");

    const struct {
        int exif, rotateFlip;
        bool passThrough;
    } orientations[] = {{0, 0, true}, {1, 0, true}, {2, 4, false}, {3, 2, true},  {4, 6, false}, {5, 5, false},
                        {6, 1, true}, {7, 7, false}, {8, 3, true}, {9, 0, true}, {-1, 0, true}};
    for (const auto& row : orientations) {
        EXPECT_EQ(orientationRule(row.exif).rotateFlip, row.rotateFlip) << row.exif;
        EXPECT_EQ(orientationRule(row.exif).passThroughAllowed, row.passThrough) << row.exif;
    }
}

TEST(ImagePdfRules, IndexedColourSpaces)
{
    zpdf::Document document;
    auto written = [&](const Palette& palette, uint32_t flags) {
        zpdf::BufferWriter out;
        try {
            out.write(*makeIndexedColorSpace(document, palette, flags));
        } catch (const zpdf::PdfException& e) {
            return std::string(e.what());
        }
        return out.take();
    };
    std::string lookup;
    for (int i = 0; i < 16; ++i)
        lookup += "102030";
    EXPECT_EQ(written(Palette{16, std::vector<uint32_t>(16, 0xFF102030)}, kColorSpaceRgb),
              "[/Indexed /DeviceRGB 15 <" + lookup + ">]");
    EXPECT_EQ(document.highestNumber(), 0u) << "no object for a string lookup";

    EXPECT_EQ(written(Palette{17, std::vector<uint32_t>(17, 0xFFA0B0C0)}, kColorSpaceRgb), "[/Indexed /DeviceRGB 16 1 0 R]");
    ASSERT_TRUE(document.object(1) && document.object(1)->value()->asStream());
    EXPECT_EQ(document.object(1)->value()->asStream()->decode().substr(45), "\xA0\xB0\xC0\xA0\xB0\xC0") << "17 entries";

    // Grey entries, or the GRAY flag, give one byte an entry: the flag wins over colourful
    // entries and the byte taken is the blue one.
    const Palette colourful{2, {0xFF123456, 0xFF654321}};
    EXPECT_EQ(written(Palette{2, {0xFF000000, 0xFFFFFFFF}}, kColorSpaceRgb), "[/Indexed /DeviceGray 1 <00FF>]");
    EXPECT_EQ(written(colourful, kColorSpaceGray), "[/Indexed /DeviceGray 1 <5621>]");
    EXPECT_EQ(written(colourful, kColorSpaceRgb), "[/Indexed /DeviceRGB 1 <123456654321>]");
    EXPECT_EQ(written(Palette{1, {0xFF000000}}, 0x20 /* CMYK */), "Only GRAY or RGB supported");
    EXPECT_EQ(written(Palette{4, {0xFF000000, 0xFFFFFFFF}}, kColorSpaceRgb), "Index not in array range");
}

TEST(ImagePdfRules, JpegQualityStepsDownBy5UntilTheResultFits)
{
    // An encoder that appends 100 bytes per quality point, as GDI+ encoding appends; it
    // fails at `failAt`.
    long failAt = -1;
    std::vector<long> qualities;
    const JpegEncode encode = [&](long quality, std::vector<uint8_t>& bytes) {
        qualities.push_back(quality);
        if (quality == failAt)
            return false;
        bytes.insert(bytes.end(), static_cast<size_t>(quality) * 100, 0xAB);
        return true;
    };
    // 1.1 x 5000 = 5500: quality 55 gives exactly 5500 bytes and is the first to fit.
    EXPECT_EQ(encodeWithinSize(encode, 5000).size(), 5500u);
    EXPECT_EQ(qualities, (std::vector<long>{100, 95, 90, 85, 80, 75, 70, 65, 60, 55}));
    // The product is truncated: 1.1 x 4999 = 5498.9 allows 5498 bytes, so 55 no longer fits.
    EXPECT_EQ(encodeWithinSize(encode, 4999).size(), 5000u);
    // Nothing fits: the steps stop at 30, whose result is used even when it failed.
    failAt = 30;
    EXPECT_TRUE(encodeWithinSize(encode, 10).empty());
}

} // namespace
} // namespace imageToPdf
