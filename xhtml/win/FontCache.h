#pragma once
// The GDI fonts of one markup host, made once per FontDescription and freed with the cache, with
// each font's character advance widths so that text is measured without a GDI call per word.

#include "base/win/GdiHandles.h"
#include "xhtml/paint/FontDescription.h"

#include <array>
#include <memory>
#include <vector>

namespace xhtml {

class FontCache {
public:
    FontCache() = default;
    FontCache(const FontCache&) = delete;
    FontCache& operator=(const FontCache&) = delete;

    // The font for `description`, owned by the cache; null if GDI could not make one.
    HFONT font(const FontDescription& description);
    // Measured on `dc` (which the call leaves as it found it).
    FontMetrics metrics(HDC dc, const FontDescription& description);
    // The sum of the characters' advance widths: what TextOutW advances by, as GDI applies
    // no kerning. Complex scripts that GDI shapes are not measured exactly.
    int textWidth(HDC dc, const FontDescription& description, const ZString& text);

private:
    struct Entry {
        FontDescription description;
        FontHandle handle;
        bool measured = false;
        FontMetrics metrics;
        // Advance widths in pages of 256 characters, read from GDI when first needed.
        std::array<std::unique_ptr<int[]>, 256> pages;
    };
    Entry& entry(const FontDescription& description);
    const int* page(HDC dc, Entry& entry, int index);

    std::vector<std::unique_ptr<Entry>> entries_;
};

} // namespace xhtml
