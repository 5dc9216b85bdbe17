// What painting asks of the canvas for laid-out markup.

#include "tests/xhtml/LaidOutMarkup.h"
#include "xhtml/paint/Painter.h"

#include <gtest/gtest.h>

using xhtml::Rect;
using xhtml::StyleKeyword;

namespace {

std::vector<std::string> paint(LaidOutMarkup& page)
{
    page.canvas.calls.clear();
    xhtml::paintView(*page.tree.root(), page.canvas, Rect{0, 0, 10000, 10000});
    return page.canvas.calls;
}

TEST(Painter, BackgroundsInEveryDirectionCoverThePaddingBox)
{
    LaidOutMarkup page(u"<div style='height:10px; border:1px solid #000000; background-gradient:#FFFFFF #E8E8E8 vertical'></div>"
                       u"<div style='height:10px; background-gradient:#E8E8E8 #FFFFFF horizontal'></div>"
                       u"<div style='height:10px; background-gradient:red blue diagonal'></div>"
                       u"<div style='height:10px; background-gradient:red blue backward-diagonal; background-color:#102030'></div>",
                       50);
    const std::vector<std::string> expected = {
        "gradient 1,1 48x10 #00FFFFFF #00E8E8E8 1",
        "fill 0,0 1x12 #00000000", "fill 0,0 50x1 #00000000", "fill 49,0 1x12 #00000000", "fill 0,11 50x1 #00000000",
        "gradient 0,12 50x10 #00E8E8E8 #00FFFFFF 0",
        "gradient 0,22 50x10 #000000FF #00FF0000 2",
        "fill 0,32 50x10 #00302010", "gradient 0,32 50x10 #000000FF #00FF0000 3",
    };
    EXPECT_EQ(paint(page), expected);
}

TEST(Painter, BackgroundImagesRepeatAsToldWithinTheirBox)
{
    LaidOutMarkup page(u"<div style='width:5px; height:4px; background-image:url(bg.png); background-repeat:repeat-x'></div>"
                       u"<div style='width:2px; height:5px; background-image:bg.png; background-repeat:no-repeat'></div>",
                       50, {{"bg.png", {2, 3}}});
    const std::vector<std::string> expected = {
        "clip 0,0 5x4", "image bg.png 0,0 2x3", "image bg.png 2,0 2x3", "image bg.png 4,0 2x3", "unclip",
        "clip 0,4 2x5", "image bg.png 0,4 2x3", "unclip",
    };
    EXPECT_EQ(paint(page), expected);
}

TEST(Painter, HiddenAndUndisplayedViewsDrawNothing)
{
    LaidOutMarkup page(u"<div style='visibility:hidden'>a<span style='visibility:visible'>b</span></div>"
                       u"<div style='display:none'>c</div><font color=red>d</font>",
                       50);
    EXPECT_EQ(paint(page), (std::vector<std::string>{"text 6,0 b #00000000", "text 0,12 d #000000FF"}));
}

TEST(Painter, BorderStylesBecomePieces)
{
    const struct {
        StyleKeyword style;
        Rect side;
        bool horizontal;
        std::vector<Rect> pieces;
    } cases[] = {
        {StyleKeyword::solid, {0, 0, 10, 2}, true, {{0, 0, 10, 2}}},
        {StyleKeyword::none, {0, 0, 10, 2}, true, {}},
        {StyleKeyword::hidden, {0, 0, 10, 2}, true, {}},
        {StyleKeyword::dotted, {0, 0, 7, 1}, true, {{0, 0, 1, 1}, {2, 0, 1, 1}, {4, 0, 1, 1}, {6, 0, 1, 1}}},
        {StyleKeyword::dashed, {5, 0, 1, 8}, false, {{5, 0, 1, 3}, {5, 6, 1, 2}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(xhtml::borderPieces(c.side, c.style, c.horizontal), c.pieces) << xhtml::keywordName(c.style);
}

} // namespace
