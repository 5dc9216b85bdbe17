#pragma once
// FormatOptions.dll: the options of the suite's image-to-PDF conversion, in a dialog.
//
// formatOptions_show shows the resolution ("Img2PdfDpi"), the JPEG quality
// ("Img2PdfJpegQuality"), the JPEG pass-through ("Img2PdfPassThroughJpg") and the fit to A4
// ("Img2PdfOptForA4") as the PDF path reads them, with its defaults, modal to `owner` (null:
// none; the owner is disabled while the dialog is open). OK accepts a resolution above 0 and
// a quality from 0 to 100, both whole numbers; anything else is refused with a message and
// the dialog stays. Accepted values are stored as user values (Settings.dll), which win over
// the program values; Cancel, Escape and the close box store nothing. Returns true when the
// user's values were stored. The calling thread must be one that can own windows; it pumps
// messages meanwhile. No function throws.

#include <windows.h>

#ifdef PRYXA_FORMATOPTIONS_BUILD
#define FORMATOPTIONS_API __declspec(dllexport)
#else
#define FORMATOPTIONS_API __declspec(dllimport)
#endif

extern "C" {

FORMATOPTIONS_API bool formatOptions_show(HWND owner);

} // extern "C"
