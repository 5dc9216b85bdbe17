// The GDI canvas: text measured as GDI draws it, gradients in their four directions and
// colours with transparency, read back from a bitmap.

#include "base/win/GdiHandles.h"
#include "tests/support/TestPixels.h"
#include "xhtml/view/ComputedStyle.h"
#include "xhtml/win/GdiCanvas.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

// Paints with a GdiCanvas on a white 40 x 40 bitmap and returns its pixels (0xRRGGBB).
PixelGrid painted(const std::function<void(xhtml::GdiCanvas&)>& paint)
{
    WindowDC screen;
    BitmapHandle bitmap(CreateCompatibleBitmap(screen.get(), 40, 40));
    {
        MemoryDC dc(screen.get());
        SelectedObject selected(dc.get(), bitmap.get());
        const RECT all = {0, 0, 40, 40};
        FillRect(dc.get(), &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        xhtml::FontCache fonts;
        xhtml::ImageCache images;
        xhtml::GdiCanvas canvas(dc.get(), fonts, images);
        paint(canvas);
    }
    return readBitmapPixels(bitmap.get());
}

int red(uint32_t pixel) { return (pixel >> 16) & 0xFF; }
int blue(uint32_t pixel) { return pixel & 0xFF; }

TEST(GdiCanvas, TextIsMeasuredAsGdiDrawsIt)
{
    MemoryDC dc(nullptr);
    xhtml::FontCache fonts;
    xhtml::ImageCache images;
    xhtml::GdiCanvas canvas(dc.get(), fonts, images);
    xhtml::FontDescription font = xhtml::defaultFont();
    for (int pixels : {12, 15}) {
        font.pixelSize = pixels;
        font.weight = pixels == 15 ? 700 : 400;
        SelectedObject selected(dc.get(), fonts.font(font));
        for (const wchar_t* text : {L"Capture", L"Select an area", L"Gr\u00F6\u00DFe \u20AC 10", L"\u0416\u0443\u043A"}) {
            SIZE size = {};
            GetTextExtentPoint32W(dc.get(), text, static_cast<int>(wcslen(text)), &size);
            EXPECT_EQ(canvas.textWidth(font, text), size.cx) << pixels << " px";
        }
        TEXTMETRICW metrics = {};
        GetTextMetricsW(dc.get(), &metrics);
        EXPECT_EQ(canvas.fontMetrics(font).height(), metrics.tmHeight);
    }
}

TEST(GdiCanvas, GradientsRunFromTheFirstColourInTheirDirection)
{
    const struct {
        xhtml::GradientDirection direction;
        POINT first, second; // where the first colour (red) and the second (blue) are
    } cases[] = {
        {xhtml::GradientDirection::vertical, {20, 0}, {20, 39}},
        {xhtml::GradientDirection::horizontal, {0, 20}, {39, 20}},
        {xhtml::GradientDirection::forwardDiagonal, {0, 0}, {39, 39}},
        {xhtml::GradientDirection::backwardDiagonal, {39, 0}, {0, 39}},
    };
    for (const auto& c : cases) {
        const PixelGrid grid = painted([&](xhtml::GdiCanvas& canvas) {
            canvas.fillGradient(xhtml::Rect{0, 0, 40, 40},
                                xhtml::StyleGradient{xhtml::rgb(0xFF0000), xhtml::rgb(0x0000FF), c.direction});
        });
        const uint32_t first = grid.at(c.first.x, c.first.y), second = grid.at(c.second.x, c.second.y);
        EXPECT_TRUE(red(first) > 0xE0 && blue(first) < 0x20) << std::hex << first << " " << int(c.direction);
        EXPECT_TRUE(blue(second) > 0xE0 && red(second) < 0x20) << std::hex << second << " " << int(c.direction);
    }
}

TEST(GdiCanvas, TransparentColoursDrawNothingAndHalfTransparentOnesBlend)
{
    const PixelGrid grid = painted([](xhtml::GdiCanvas& canvas) {
        canvas.fillRect(xhtml::Rect{0, 0, 10, 10}, xhtml::transparentColour);
        canvas.fillRect(xhtml::Rect{10, 0, 10, 10}, xhtml::rgb(0x000000) | 0x80000000);
        canvas.fillRect(xhtml::Rect{20, 0, 10, 10}, xhtml::rgb(0x204060));
        canvas.pushClip(xhtml::Rect{0, 20, 5, 5});
        canvas.fillRect(xhtml::Rect{0, 20, 20, 20}, xhtml::rgb(0x000000));
        canvas.popClip();
    });
    EXPECT_EQ(grid.at(5, 5), 0xFFFFFFu);
    EXPECT_NEAR(red(grid.at(15, 5)), 0x7F, 2);
    EXPECT_EQ(grid.at(25, 5), 0x204060u);
    EXPECT_EQ(grid.at(4, 24), 0x000000u);
    EXPECT_EQ(grid.at(6, 24), 0xFFFFFFu) << "outside the clip";
}

} // namespace
