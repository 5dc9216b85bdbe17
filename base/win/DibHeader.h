#pragma once
// The header of an uncompressed device-independent bitmap stored top row first, as GDI's
// DIB calls (CreateDIBSection, GetDIBits, SetDIBits) take it.

#include <windows.h>

inline BITMAPINFO topDownDibHeader(int width, int height, int bitsPerPixel)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height; // negative: top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bitsPerPixel);
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}
