#pragma once
// The PDF path: the picture becomes a one-page PDF in a temporary file, which is handed
// to the suite's assistant (who deletes it after use).

#include "base/ZString.h"
#include "image/ImageToPdf.h"

namespace screenCapture {

// The conversion options as the program configuration sets them for a capture.
imageToPdf::ConversionOptions pdfOptionsFromConfiguration();

// Tells the user when the conversion fails; everything after it is silent.
void deliverAsPdf(Gdiplus::Bitmap& image, const ZString& defaultName);

// How the picture is converted; tests replace it to make the conversion fail.
using PdfConversion = bool (*)(const imageToPdf::ConversionOptions& options, Gdiplus::Image& image,
                               zpdf::Document& document);
extern PdfConversion pdfConversion;

} // namespace screenCapture
