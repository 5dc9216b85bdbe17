#include "xhtml/win/FontCache.h"

namespace xhtml {

FontCache::Entry& FontCache::entry(const FontDescription& description)
{
    for (auto& existing : entries_) {
        if (existing->description == description)
            return *existing;
    }
    auto made = std::make_unique<Entry>();
    made->description = description;
    made->handle.reset(CreateFontW(-description.pixelSize, 0, 0, 0, description.weight, description.italic, description.underline, description.lineThrough,
                                   DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                   DEFAULT_PITCH | FF_DONTCARE, description.family.c_str()));
    entries_.push_back(std::move(made));
    return *entries_.back();
}

HFONT FontCache::font(const FontDescription& description)
{
    return entry(description).handle.get();
}

FontMetrics FontCache::metrics(HDC dc, const FontDescription& description)
{
    Entry& found = entry(description);
    if (!found.measured) {
        SelectedObject selected(dc, found.handle.get());
        TEXTMETRICW metrics = {};
        if (GetTextMetricsW(dc, &metrics))
            found.metrics = FontMetrics{metrics.tmAscent, metrics.tmDescent};
        found.measured = true;
    }
    return found.metrics;
}

const int* FontCache::page(HDC dc, Entry& entry, int index)
{
    if (!entry.pages[index]) {
        auto widths = std::make_unique<int[]>(256);
        SelectedObject selected(dc, entry.handle.get());
        const UINT first = static_cast<UINT>(index) << 8;
        if (!GetCharWidth32W(dc, first, first + 255, widths.get())) {
            for (int i = 0; i < 256; ++i) {
                const wchar_t unit = static_cast<wchar_t>(first + i);
                SIZE size = {};
                GetTextExtentPoint32W(dc, &unit, 1, &size);
                widths[i] = size.cx;
            }
        }
        entry.pages[index] = std::move(widths);
    }
    return entry.pages[index].get();
}

int FontCache::textWidth(HDC dc, const FontDescription& description, const ZString& text)
{
    Entry& found = entry(description);
    int width = 0;
    for (ZChar unit : text.units())
        width += page(dc, found, unit >> 8)[unit & 0xFF];
    return width;
}

} // namespace xhtml
