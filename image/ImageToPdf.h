#pragma once
// Turns one GDI+ image into a page of a PDF document: the page is sized from the pixels and
// the resolution, and the pixels go in as the source's own JPEG bytes, as packed palette
// indexes, or as a new JPEG. GDI+ must be started by the caller.

#include "image/ConversionOptions.h"
#include "zpdf/Document.h"

#include <windows.h>
#include <objidl.h>
#include <gdiplus.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace imageToPdf {

class ImageToPdf {
public:
    // Encodes `image` as JPEG at `quality` into `bytes`; false on failure.
    using JpegEncoder = std::function<bool(Gdiplus::Image& image, long quality, std::vector<uint8_t>& bytes)>;
    // The image's EXIF orientation, 0 when it has none.
    using OrientationReader = std::function<int(Gdiplus::Image& image)>;

    ImageToPdf();

    // Replace how JPEGs are made and orientations read; the defaults use GDI+.
    void setJpegEncoder(JpegEncoder encoder) { encodeJpeg_ = std::move(encoder); }
    void setOrientationReader(OrientationReader reader) { readOrientation_ = std::move(reader); }

    // Adds a page with `image` to `document`. `sourcePath` names the file the image came
    // from, empty for a picture made in memory. May rotate `image` as its orientation asks.
    // False when no page could be made: a resolution that gives no page size (see
    // pageSize), or no JPEG encoder. PDF errors are thrown as
    // zpdf::PdfException.
    bool convert(const ConversionOptions& options, Gdiplus::Image& image, const std::wstring& sourcePath,
                 zpdf::Document& document) const;

    // GDI+'s own: the JPEG encoder with the quality parameter, and property 0x0112 when it
    // is a SHORT.
    static bool gdiplusJpegEncoder(Gdiplus::Image& image, long quality, std::vector<uint8_t>& bytes);
    static int gdiplusOrientation(Gdiplus::Image& image);

private:
    JpegEncoder encodeJpeg_;
    OrientationReader readOrientation_;
};

} // namespace imageToPdf
