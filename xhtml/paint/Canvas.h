#pragma once
// The one door between the views and the platform: measuring text and images for layout,
// and drawing for painting. Layout uses only the measuring half, so it can be tested with
// fixed metrics and no window; the Windows host implements it with GDI (GdiCanvas).

#include "base/ZString.h"
#include "xhtml/ColourTable.h"
#include "xhtml/StyleValue.h"
#include "xhtml/paint/FontDescription.h"
#include "xhtml/view/Geometry.h"

#include <optional>

namespace xhtml {

class Canvas {
public:
    virtual ~Canvas() = default;

    // Measuring.
    virtual FontMetrics fontMetrics(const FontDescription& font) = 0;
    virtual int textWidth(const FontDescription& font, const ZString& text) = 0;
    // The natural size of the image at this (resolved) address; none when it cannot be had.
    virtual std::optional<Size> imageSize(const ZString& address) = 0;

    // Drawing. Colours with the top byte 0xFF (transparent) draw nothing.
    virtual void fillRect(const Rect& area, Colour colour) = 0;
    // The first colour at the top (vertical), the left (horizontal), the top-left (forward
    // diagonal) or the top-right (backward diagonal).
    virtual void fillGradient(const Rect& area, const StyleGradient& gradient) = 0;
    // `x`, `y` is the top-left of the text's line box of the font's height.
    virtual void drawText(int x, int y, const ZString& text, const FontDescription& font, Colour colour) = 0;
    // Scales the image to `area`, with its alpha.
    virtual void drawImage(const ZString& address, const Rect& area) = 0;
    // Clipping nests: each push intersects with the current clip until its pop.
    virtual void pushClip(const Rect& area) = 0;
    virtual void popClip() = 0;
};

} // namespace xhtml
