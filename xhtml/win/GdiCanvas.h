#pragma once
// The Canvas on a GDI device context: fonts from a FontCache, images from an ImageCache
// drawn with GDI+, gradients with GradientFill. The DC, the caches and GDI+ must outlive it.

#include "xhtml/paint/Canvas.h"
#include "xhtml/win/FontCache.h"
#include "xhtml/win/ImageCache.h"

namespace xhtml {

class GdiCanvas : public Canvas {
public:
    GdiCanvas(HDC dc, FontCache& fonts, ImageCache& images) : dc_(dc), fonts_(fonts), images_(images) {}
    ~GdiCanvas() override;

    FontMetrics fontMetrics(const FontDescription& font) override;
    int textWidth(const FontDescription& font, const ZString& text) override;
    std::optional<Size> imageSize(const ZString& address) override;

    void fillRect(const Rect& area, Colour colour) override;
    void fillGradient(const Rect& area, const StyleGradient& gradient) override;
    void drawText(int x, int y, const ZString& text, const FontDescription& font, Colour colour) override;
    void drawImage(const ZString& address, const Rect& area) override;
    void pushClip(const Rect& area) override;
    void popClip() override;

private:
    HDC dc_;
    FontCache& fonts_;
    ImageCache& images_;
    int clipDepth_ = 0;
};

} // namespace xhtml
