#include "image/ImagePdfRules.h"

#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"
#include "zpdf/Stream.h"
#include "zpdf/String.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>

namespace imageToPdf {

namespace {

constexpr double kA4LongSide = 842.0;
// 2^31: the first whole number of points that a 32-bit page side cannot hold.
constexpr double kIntLimit = 2147483648.0;

uint8_t red(uint32_t argb) { return static_cast<uint8_t>(argb >> 16); }
uint8_t green(uint32_t argb) { return static_cast<uint8_t>(argb >> 8); }
uint8_t blue(uint32_t argb) { return static_cast<uint8_t>(argb); }

// "%f" in the C locale: six decimals and a point, whatever the host has set.
std::string fixed6(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%f", value);
    const char* point = std::localeconv()->decimal_point;
    std::string result(text);
    if (point && std::strcmp(point, ".") != 0) {
        const size_t at = result.find(point);
        if (at != std::string::npos)
            result.replace(at, std::strlen(point), ".");
    }
    return result;
}

bool allGrey(const Palette& palette)
{
    return std::all_of(palette.entries.begin(), palette.entries.begin() + palette.count, [](uint32_t argb) {
        return red(argb) == green(argb) && green(argb) == blue(argb);
    });
}

std::string lookupBytes(const Palette& palette, bool grey)
{
    std::string bytes;
    for (uint32_t i = 0; i < palette.count; ++i) {
        if (i >= palette.entries.size())
            throw zpdf::PdfException("Index not in array range");
        const uint32_t argb = palette.entries[i];
        if (grey) {
            bytes.push_back(static_cast<char>(blue(argb)));
        } else {
            bytes.push_back(static_cast<char>(red(argb)));
            bytes.push_back(static_cast<char>(green(argb)));
            bytes.push_back(static_cast<char>(blue(argb)));
        }
    }
    return bytes;
}

std::string upperHex(const std::string& bytes)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (unsigned char byte : bytes) {
        hex.push_back(digits[byte >> 4]);
        hex.push_back(digits[byte & 15]);
    }
    return hex;
}

} // namespace

std::optional<PageSize> pageSize(uint32_t widthPx, uint32_t heightPx, int dpi, bool optForA4)
{
    // A configured DWORD above 0x7FFFFFFF arrives here as a negative dpi.
    if (dpi <= 0)
        return std::nullopt;
    double width = widthPx / static_cast<double>(dpi) * 72.0;
    double height = heightPx / static_cast<double>(dpi) * 72.0;
    const double longer = std::max(width, height);
    if (optForA4 && longer > kA4LongSide) {
        width *= kA4LongSide / longer;
        height *= kA4LongSide / longer;
    }
    if (width >= kIntLimit || height >= kIntLimit)
        return std::nullopt;
    return PageSize{static_cast<int>(width), static_cast<int>(height)};
}

std::string contentStream(double width, double height, double x, double y, const std::string& name)
{
    return "q\r\n" + fixed6(width) + " 0 0 " + fixed6(height) + " " + fixed6(x) + " " + fixed6(y) + " cm\r\n/" + name
        + " Do\r\nQ\r\n";
}

Orientation orientationRule(int exifOrientation)
{
    // GDI+ RotateFlipType values.
    switch (exifOrientation) {
    case 2: return {4, false}; // RotateNoneFlipX
    case 3: return {2, true};  // Rotate180FlipNone
    case 4: return {6, false}; // Rotate180FlipX
    case 5: return {5, false}; // Rotate90FlipX
    case 6: return {1, true};  // Rotate90FlipNone
    case 7: return {7, false}; // Rotate270FlipX
    case 8: return {3, true};  // Rotate270FlipNone
    default: return {0, true};
    }
}

zpdf::Ptr<zpdf::Array> makeIndexedColorSpace(zpdf::Document& document, const Palette& palette, uint32_t imageFlags)
{
    if ((imageFlags & (kColorSpaceRgb | kColorSpaceGray)) == 0)
        throw zpdf::PdfException("Only GRAY or RGB supported");
    if (palette.count > palette.entries.size())
        throw zpdf::PdfException("Index not in array range");
    const bool grey = (imageFlags & kColorSpaceGray) != 0 || allGrey(palette);
    const std::string lookup = lookupBytes(palette, grey);

    auto colorSpace = zpdf::make<zpdf::Array>();
    colorSpace->append(zpdf::names::Indexed());
    colorSpace->append(grey ? zpdf::names::DeviceGray() : zpdf::names::DeviceRGB());
    colorSpace->append(zpdf::make<zpdf::Number>(static_cast<int>(palette.count) - 1));
    if (palette.count <= 16)
        colorSpace->append(zpdf::make<zpdf::String>(upperHex(lookup), zpdf::StringMode::hex));
    else
        colorSpace->append(document.add(zpdf::make<zpdf::Stream>(lookup)));
    return colorSpace;
}

std::vector<uint8_t> encodeWithinSize(const JpegEncode& encode, int64_t sourceSize)
{
    const int64_t limit = static_cast<int64_t>(static_cast<double>(sourceSize) * 1.1);
    std::vector<uint8_t> bytes;
    for (long quality = 100; quality >= 30; quality -= 5) {
        bytes.clear();
        if (encode(quality, bytes) && static_cast<int64_t>(bytes.size()) <= limit)
            break;
    }
    return bytes;
}

} // namespace imageToPdf
