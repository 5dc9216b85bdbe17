#pragma once
// Markup parsed, built into views and laid out on a canvas with fixed metrics: every
// character is half the font's pixel size wide, the ascent three quarters of it and the
// descent a quarter; images have the sizes given. The canvas records each drawing call.

#include "xhtml/HtmlDocument.h"
#include "xhtml/paint/Canvas.h"
#include "xhtml/view/ViewTree.h"

#include <cstdio>
#include <map>
#include <stdexcept>
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

    void fillRect(const xhtml::Rect& area, xhtml::Colour colour) override { record("fill", area, hex(colour)); }
    void fillGradient(const xhtml::Rect& area, const xhtml::StyleGradient& g) override
    {
        record("gradient", area, hex(g.first) + hex(g.second) + " " + std::to_string(static_cast<int>(g.direction)));
    }
    void drawText(int x, int y, const ZString& text, const xhtml::FontDescription&, xhtml::Colour colour) override
    {
        calls.push_back("text " + std::to_string(x) + "," + std::to_string(y) + " " + text.toUtf8() + hex(colour));
    }
    void drawImage(const ZString& address, const xhtml::Rect& area) override { record("image " + address.toUtf8(), area); }
    void pushClip(const xhtml::Rect& area) override { record("clip", area); }
    void popClip() override { calls.push_back("unclip"); }

private:
    void record(const std::string& what, const xhtml::Rect& r, const std::string& rest = "")
    {
        calls.push_back(what + " " + std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width) + "x"
                        + std::to_string(r.height) + rest);
    }
    static std::string hex(xhtml::Colour colour)
    {
        char text[12];
        snprintf(text, sizeof text, " #%08X", static_cast<unsigned>(colour));
        return text;
    }
};

struct LaidOutMarkup {
    LaidOutMarkup(const char16_t* markup, int width, std::map<std::string, xhtml::Size> images = {}, double scale = 1.0)
    {
        canvas.images = std::move(images);
        xhtml::MarkupTextFilter unchanged;
        document.setMarkup(ZString(markup), unchanged, ZString(u"res:///page.xhtml"));
        tree.build(document.root(), rules, document.baseAddress(), scale);
        size = tree.layout(canvas, width, -1);
    }

    xhtml::View& byId(const char16_t* id)
    {
        if (xhtml::View* view = tree.findById(ZString(id)))
            return *view;
        throw std::runtime_error("no view with that id");
    }

    FixedMetricsCanvas canvas;
    xhtml::HtmlDocument document;
    xhtml::StyleRuleList rules;
    xhtml::ViewTree tree;
    xhtml::Size size;
};

inline int centreY(const xhtml::Rect& r) { return r.y + r.height / 2; }
inline int centreX(const xhtml::Rect& r) { return r.x + r.width / 2; }
