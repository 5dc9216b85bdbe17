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
    std::map<std::string, xhtml::Size> images; // by UTF-8 address
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
        auto found = images.find(address.toUtf8());
        return found == images.end() ? std::nullopt : std::optional<xhtml::Size>(found->second);
    }

    void fillRect(const xhtml::Rect& area, xhtml::Colour colour) override { record("fill", area, {colour}); }
    void fillGradient(const xhtml::Rect& area, const xhtml::StyleGradient& g) override
    {
        record("gradient", area, {g.first, g.second}, " " + std::to_string(static_cast<int>(g.direction)));
    }
    void drawText(int x, int y, const ZString& text, const xhtml::FontDescription&, xhtml::Colour colour) override
    {
        calls.push_back("text " + std::to_string(x) + "," + std::to_string(y) + " " + text.toUtf8() + hex({colour}));
    }
    void drawImage(const ZString& address, const xhtml::Rect& area) override { record("image " + address.toUtf8(), area); }
    void pushClip(const xhtml::Rect& area) override { record("clip", area); }
    void popClip() override { calls.push_back("unclip"); }

private:
    void record(const std::string& what, const xhtml::Rect& r, std::vector<xhtml::Colour> colours = {},
                const std::string& rest = "")
    {
        calls.push_back(what + " " + std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width)
                        + "x" + std::to_string(r.height) + hex(colours) + rest);
    }
    static std::string hex(std::vector<xhtml::Colour> colours)
    {
        std::string out;
        for (xhtml::Colour colour : colours) {
            char text[12];
            snprintf(text, sizeof text, " #%08X", static_cast<unsigned>(colour));
            out += text;
        }
        return out;
    }
};
