#include "xhtml/win/GdiCanvas.h"

#include "base/win/DibHeader.h"

namespace xhtml {

namespace {

COLORREF colorRef(Colour colour)
{
    return static_cast<COLORREF>(colour & 0xFFFFFF); // the same byte order as COLORREF
}

// The top byte counts transparency: 0 opaque, 0xFF invisible.
BYTE opacity(Colour colour)
{
    return static_cast<BYTE>(0xFF - (colour >> 24));
}

TRIVERTEX vertex(int x, int y, Colour colour)
{
    TRIVERTEX v = {};
    v.x = x;
    v.y = y;
    v.Red = static_cast<COLOR16>((colour & 0xFF) << 8);
    v.Green = static_cast<COLOR16>(((colour >> 8) & 0xFF) << 8);
    v.Blue = static_cast<COLOR16>(((colour >> 16) & 0xFF) << 8);
    return v;
}

Colour midpoint(Colour a, Colour b)
{
    Colour mid = 0;
    for (int shift = 0; shift < 24; shift += 8)
        mid |= ((((a >> shift) & 0xFF) + ((b >> shift) & 0xFF)) / 2) << shift;
    return mid;
}

// A colour with partial transparency, blended with AlphaBlend from a one-pixel bitmap.
void blendRect(HDC dc, const RECT& rect, Colour colour)
{
    const BITMAPINFO info = topDownDibHeader(1, 1, 32);
    void* bits = nullptr;
    BitmapHandle pixel(CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    MemoryDC source(dc);
    if (!pixel || !source)
        return;
    const BYTE alpha = opacity(colour);
    // Premultiplied blue, green, red, alpha.
    const uint32_t value = ((((colour >> 16) & 0xFF) * alpha / 255)) | ((((colour >> 8) & 0xFF) * alpha / 255) << 8)
                           | (((colour & 0xFF) * alpha / 255) << 16) | (static_cast<uint32_t>(alpha) << 24);
    *static_cast<uint32_t*>(bits) = value;
    SelectedObject selected(source.get(), pixel.get());
    const BLENDFUNCTION blend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    AlphaBlend(dc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, source.get(), 0, 0, 1, 1, blend);
}

} // namespace

GdiCanvas::~GdiCanvas()
{
    while (clipDepth_ > 0)
        popClip();
}

FontMetrics GdiCanvas::fontMetrics(const FontDescription& font)
{
    return fonts_.metrics(dc_, font);
}

int GdiCanvas::textWidth(const FontDescription& font, const ZString& text)
{
    return fonts_.textWidth(dc_, font, text);
}

std::optional<Size> GdiCanvas::imageSize(const ZString& address)
{
    Gdiplus::Bitmap* image = images_.image(address);
    if (!image)
        return std::nullopt;
    return Size{static_cast<int>(image->GetWidth()), static_cast<int>(image->GetHeight())};
}

void GdiCanvas::fillRect(const Rect& area, Colour colour)
{
    if (area.isEmpty() || opacity(colour) == 0)
        return;
    const RECT rect = {area.x, area.y, area.right(), area.bottom()};
    if (opacity(colour) != 0xFF) {
        blendRect(dc_, rect, colour);
        return;
    }
    BrushHandle brush(CreateSolidBrush(colorRef(colour)));
    FillRect(dc_, &rect, brush.get());
}

void GdiCanvas::fillGradient(const Rect& area, const StyleGradient& gradient)
{
    if (area.isEmpty())
        return;
    const int left = area.x, top = area.y, right = area.right(), bottom = area.bottom();
    if (gradient.direction == GradientDirection::horizontal || gradient.direction == GradientDirection::vertical) {
        TRIVERTEX vertices[2] = {vertex(left, top, gradient.first), vertex(right, bottom, gradient.second)};
        GRADIENT_RECT rect = {0, 1};
        GradientFill(dc_, vertices, 2, &rect, 1,
                     gradient.direction == GradientDirection::horizontal ? GRADIENT_FILL_RECT_H : GRADIENT_FILL_RECT_V);
        return;
    }
    // Diagonals: the first colour in one corner, the second in the opposite one, and their
    // mean in the other two.
    const Colour mid = midpoint(gradient.first, gradient.second);
    const bool forward = gradient.direction == GradientDirection::forwardDiagonal;
    TRIVERTEX vertices[4] = {
        vertex(left, top, forward ? gradient.first : mid), vertex(right, top, forward ? mid : gradient.first),
        vertex(right, bottom, forward ? gradient.second : mid), vertex(left, bottom, forward ? mid : gradient.second)};
    GRADIENT_TRIANGLE triangles[2] = {{0, 1, 2}, {0, 2, 3}};
    GradientFill(dc_, vertices, 4, triangles, 2, GRADIENT_FILL_TRIANGLE);
}

void GdiCanvas::drawText(int x, int y, const ZString& text, const FontDescription& font, Colour colour)
{
    if (opacity(colour) == 0 || text.isEmpty())
        return;
    SelectedObject selected(dc_, fonts_.font(font));
    SetBkMode(dc_, TRANSPARENT);
    SetTextColor(dc_, colorRef(colour));
    SetTextAlign(dc_, TA_TOP | TA_LEFT);
    TextOutW(dc_, x, y, text.c_str(), text.length());
}

void GdiCanvas::drawImage(const ZString& address, const Rect& area)
{
    Gdiplus::Bitmap* image = images_.image(address);
    if (!image || area.isEmpty())
        return;
    Gdiplus::Graphics graphics(dc_);
    const bool natural = static_cast<int>(image->GetWidth()) == area.width
                         && static_cast<int>(image->GetHeight()) == area.height;
    graphics.SetInterpolationMode(natural ? Gdiplus::InterpolationModeNearestNeighbor
                                          : Gdiplus::InterpolationModeHighQualityBicubic);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
    graphics.DrawImage(image, Gdiplus::Rect(area.x, area.y, area.width, area.height));
}

void GdiCanvas::pushClip(const Rect& area)
{
    SaveDC(dc_);
    IntersectClipRect(dc_, area.x, area.y, area.right(), area.bottom());
    ++clipDepth_;
}

void GdiCanvas::popClip()
{
    if (clipDepth_ == 0)
        return;
    RestoreDC(dc_, -1);
    --clipDepth_;
}

} // namespace xhtml
