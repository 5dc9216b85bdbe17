#pragma once
// The decisions of the image-to-PDF conversion that need no GDI+: page size, the page's
// content stream, the /Indexed colour space of a palette, what an EXIF orientation asks
// for, and the JPEG quality search. Portable, so that it is tested natively too.

#include "zpdf/Array.h"
#include "zpdf/Document.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace imageToPdf {

// GDI+ image flags that the conversion reads.
constexpr uint32_t kColorSpaceRgb = 0x10;
constexpr uint32_t kColorSpaceGray = 0x40;

struct PageSize {
    int width;  // points
    int height; // points
};

// pixels / dpi * 72; with optForA4 a longer side above 842 points is brought down to 842
// (the other side in proportion). Always truncated to whole points. None for a dpi of 0 or
// below, and when a side would not fit a 32-bit integer: no page can be made then.
std::optional<PageSize> pageSize(uint32_t widthPx, uint32_t heightPx, int dpi, bool optForA4);

// The four lines that draw XObject `name` over width x height points at (x, y):
// "q", "<w> 0 0 <h> <x> <y> cm", "/<name> Do", "Q", each ended by CR LF.
std::string contentStream(double width, double height, double x, double y, const std::string& name);

// What an EXIF orientation (0 when missing) asks of the picture.
struct Orientation {
    int rotateFlip;            // a GDI+ RotateFlipType; 0 (RotateNoneFlipNone) for none
    bool passThroughAllowed;   // whether JPEG bytes may still be embedded unchanged
};
Orientation orientationRule(int exifOrientation);

// A GDI+ palette: `count` as the palette says, `entries` as 0xAARRGGBB.
struct Palette {
    uint32_t count;
    std::vector<uint32_t> entries;
};

// [/Indexed base hival lookup]. Base /DeviceGray when the GRAY flag is set or every entry
// is grey, else /DeviceRGB. Up to 16 entries the lookup is a hexadecimal string, above
// that a stream added to `document`. Throws PdfException "Only GRAY or RGB supported"
// when the flags have neither, "Index not in array range" when the palette has fewer
// entries than its count.
zpdf::Ptr<zpdf::Array> makeIndexedColorSpace(zpdf::Document& document, const Palette& palette, uint32_t imageFlags);

// Encodes at quality 100, 95, ... down to 30 at the latest, stopping at the first result
// of at most 1.1 times `sourceSize` bytes; the last result is returned even when a step
// failed. `encode` fills its bytes for a quality and says whether it succeeded.
using JpegEncode = std::function<bool(long quality, std::vector<uint8_t>& bytes)>;
std::vector<uint8_t> encodeWithinSize(const JpegEncode& encode, int64_t sourceSize);

} // namespace imageToPdf
