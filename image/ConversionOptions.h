#pragma once
// The options of the image-to-PDF conversion. The values here are the defaults of the
// configuration (image/ConversionSettings.h).

#include <cstdint>

namespace imageToPdf {

struct ConversionOptions {
    int32_t dpi = 144;
    int32_t jpegQuality = 100;    // for re-encoding a picture that was not a JPEG file
    bool optForA4 = true;         // longer page side at most 842 points
    bool passThroughJpg = true;   // embed a JPEG file's bytes unchanged where allowed
};

} // namespace imageToPdf
