#include "xhtml/win/FontCache.h"

namespace xhtml {

FontCache::Entry& FontCache::entry(const FontSpec& spec)
{
    for (auto& existing : entries_) {
        if (existing->spec == spec)
            return *existing;
    }
    auto made = std::make_unique<Entry>();
    made->spec = spec;
    made->handle.reset(CreateFontW(-spec.pixelSize, 0, 0, 0, spec.weight, spec.italic, spec.underline, spec.lineThrough,
                                   DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                   DEFAULT_PITCH | FF_DONTCARE, spec.family.c_str()));
    entries_.push_back(std::move(made));
    return *entries_.back();
}

HFONT FontCache::font(const FontSpec& spec)
{
    return entry(spec).handle.get();
}

FontMetrics FontCache::metrics(HDC dc, const FontSpec& spec)
{
    Entry& found = entry(spec);
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

int FontCache::textWidth(HDC dc, const FontSpec& spec, const ZString& text)
{
    Entry& found = entry(spec);
    int width = 0;
    for (ZChar unit : text.units())
        width += page(dc, found, unit >> 8)[unit & 0xFF];
    return width;
}

} // namespace xhtml
