#pragma once
// A font as the views ask for it; the canvas turns it into a real one.

#include "base/ZString.h"

namespace xhtml {

struct FontDescription {
    ZString family;
    int pixelSize = 12; // character height in device pixels
    int weight = 400;   // 100 .. 900
    bool italic = false;
    bool underline = false;
    bool lineThrough = false;

    friend bool operator==(const FontDescription& a, const FontDescription& b)
    {
        return a.family == b.family && a.pixelSize == b.pixelSize && a.weight == b.weight && a.italic == b.italic
               && a.underline == b.underline && a.lineThrough == b.lineThrough;
    }
};

struct FontMetrics {
    int ascent = 0;
    int descent = 0;
    int height() const { return ascent + descent; }
};

} // namespace xhtml
