#pragma once
// The image-to-PDF options in the configuration: the PDF path reads them, each with its
// default, and the options dialog stores the user's choice as user values, which win over
// the program values (Settings.dll).

#include "image/ConversionOptions.h"

namespace imageToPdf {

namespace settingKeys {
inline constexpr const wchar_t* dpi = L"Img2PdfDpi";
inline constexpr const wchar_t* jpegQuality = L"Img2PdfJpegQuality";
inline constexpr const wchar_t* passThroughJpg = L"Img2PdfPassThroughJpg";
inline constexpr const wchar_t* optForA4 = L"Img2PdfOptForA4";
} // namespace settingKeys

// The configured options: the resolution as it is, the JPEG quality clamped to 0..100.
ConversionOptions configuredOptions();
// Stores all four as user values; false when a write failed (the ones before it stay written).
bool saveOptions(const ConversionOptions& options);

} // namespace imageToPdf
