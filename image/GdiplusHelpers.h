#pragma once
// GDI+ helpers for saving pictures and converting them to PDF: the encoder for a MIME
// type, encoding into memory, and the rows of an indexed image as bytes.
// GDI+ must be started (GdiplusStartup) by the caller.

#include <windows.h>
#include <objidl.h>
#include <gdiplus.h>

#include <cstdint>
#include <vector>

// The index of the first encoder whose MIME type is exactly `mimeType` (case matters:
// "image/png", "image/jpeg") with its CLSID in `clsid`; -1 if there is none.
int findEncoder(const wchar_t* mimeType, CLSID* clsid);

// Appends `image`, encoded by `encoder`, to `bytes`. A quality of 0 passes no encoder
// parameters; any other value is passed as the encoder quality. A failing GDI+ call is
// kept as the image's last status (image->GetLastStatus()) and gives false.
bool encodeToBuffer(Gdiplus::Image* image, const CLSID& encoder, long quality, std::vector<uint8_t>& bytes);

// Appends the pixel rows of an indexed bitmap of 1, 4 or 8 bits a pixel to `bytes`, top
// row first, each packed into (width * bitsPerPixel + 7) / 8 bytes without the stride's
// padding. False for any other depth, or if the bitmap cannot be read at that depth.
bool packIndexedRows(Gdiplus::Bitmap* bitmap, int bitsPerPixel, std::vector<uint8_t>& bytes);
