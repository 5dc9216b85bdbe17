#include "xhtml/layout/LayoutEngine.h"

#include <cmath>

namespace xhtml {

int LayoutEnv::scaled(int pixels) const
{
    return static_cast<int>(std::lround(pixels * scale_));
}

LayoutEnv::FontEntry& LayoutEnv::entry(const FontDescription& font)
{
    // A pass uses a handful of fonts; the last one asked for is by far the most likely.
    for (auto it = fonts_.rbegin(); it != fonts_.rend(); ++it) {
        if (it->font == font)
            return *it;
    }
    fonts_.push_back(FontEntry{font, canvas_.fontMetrics(font), {}});
    return fonts_.back();
}

int LayoutEnv::textWidth(const FontDescription& font, const ZString& text)
{
    FontEntry& found = entry(font);
    auto cached = found.widths.find(text);
    if (cached != found.widths.end())
        return cached->second;
    const int width = canvas_.textWidth(font, text);
    found.widths.emplace(text, width);
    return width;
}

FontMetrics LayoutEnv::metrics(const FontDescription& font)
{
    return entry(font).metrics;
}

} // namespace xhtml
