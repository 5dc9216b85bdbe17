#pragma once
// A canvas with fixed metrics for layout tests: every character is half the font's pixel
// size wide, the ascent three quarters of it and the descent a quarter; images have the
// sizes given to it. It records what is drawn, one line per call.

#include "xhtml/paint/Canvas.h"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

class FixedMetricsCanvas : public xhtml::Canvas {
public:
    std::map<std::u16string, xhtml::Size> images;
    std::vector<std::string> calls;

    xhtml::FontMetrics fontMetrics(const xhtml::FontDescription& font) override
    {
        return xhtml::FontMetrics{font.pixelSize * 3 / 4, font.pixelSize - font.pixelSize * 3 / 4};
    }
    int textWidth(const xhtml::FontDescription& font, const ZString& text) override
    {
        return text.length() * (font.pixelSize / 2);
    }
    std::optional<xhtml::Size> imageSize(const ZString& address) override
    {
        auto found = images.find(key(address));
        if (found == images.end())
            return std::nullopt;
        return found->second;
    }

    void fillRect(const xhtml::Rect& area, xhtml::Colour colour) override
    {
        calls.push_back("fill " + rect(area) + " " + hex(colour));
    }
    void fillGradient(const xhtml::Rect& area, const xhtml::StyleGradient& gradient) override
    {
        calls.push_back("gradient " + rect(area) + " " + hex(gradient.first) + " " + hex(gradient.second) + " "
                        + std::to_string(static_cast<int>(gradient.direction)));
    }
    void drawText(int x, int y, const ZString& text, const xhtml::FontDescription&, xhtml::Colour colour) override
    {
        calls.push_back("text " + std::to_string(x) + "," + std::to_string(y) + " " + text.toUtf8() + " " + hex(colour));
    }
    void drawImage(const ZString& address, const xhtml::Rect& area) override
    {
        calls.push_back("image " + address.toUtf8() + " " + rect(area));
    }
    void pushClip(const xhtml::Rect& area) override { calls.push_back("clip " + rect(area)); }
    void popClip() override { calls.push_back("unclip"); }

    static std::string rect(const xhtml::Rect& r)
    {
        return std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width) + "x"
               + std::to_string(r.height);
    }

private:
    static std::u16string key(const ZString& address)
    {
        std::u16string units;
        for (ZChar unit : address.units())
            units.push_back(static_cast<char16_t>(unit));
        return units;
    }
    static std::string hex(xhtml::Colour colour)
    {
        char text[12];
        snprintf(text, sizeof text, "#%08X", static_cast<unsigned>(colour));
        return text;
    }
};
