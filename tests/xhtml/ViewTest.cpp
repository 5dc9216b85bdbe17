// The view tree: what markup builds, its layout with fixed metrics and what painting asks
// of the canvas.

#include "xhtml/HtmlDocument.h"
#include "xhtml/paint/Canvas.h"
#include "xhtml/paint/Painter.h"
#include "xhtml/view/ViewBuilder.h"
#include "xhtml/view/ViewTree.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <stdexcept>

using namespace xhtml;

namespace {

// Every character is half the font's pixel size wide (12 px text: 6 px a character and a
// 12 px line, 9 above the baseline); an image named "WxH.png" is W by H pixels, others are
// missing. Records each drawing call.
class FixedMetricsCanvas : public Canvas {
public:
    std::vector<std::string> calls;

    FontMetrics fontMetrics(const FontDescription& font) override
    {
        return FontMetrics{font.pixelSize * 3 / 4, font.pixelSize - font.pixelSize * 3 / 4};
    }
    int textWidth(const FontDescription& font, const ZString& text) override
    {
        return text.length() * (font.pixelSize / 2);
    }
    std::optional<Size> imageSize(const ZString& address) override
    {
        const std::string text = address.toUtf8();
        Size size;
        const bool named = sscanf(text.c_str() + (text.find_last_of('/') + 1), "%dx%d.png", &size.width, &size.height) == 2;
        return named ? std::optional<Size>(size) : std::nullopt;
    }

    void fillRect(const Rect& area, Colour colour) override { record("fill", area, hex(colour)); }
    void fillGradient(const Rect& area, const StyleGradient& g) override
    {
        record("gradient", area, hex(g.first) + hex(g.second) + " " + std::to_string(static_cast<int>(g.direction)));
    }
    void drawText(int x, int y, const ZString& text, const FontDescription&, Colour colour) override
    {
        calls.push_back("text " + std::to_string(x) + "," + std::to_string(y) + " " + text.toUtf8() + hex(colour));
    }
    void drawImage(const ZString& address, const Rect& area) override { record("image " + address.toUtf8(), area); }
    void pushClip(const Rect& area) override { record("clip", area); }
    void popClip() override { calls.push_back("unclip"); }

private:
    void record(const std::string& what, const Rect& r, const std::string& rest = "")
    {
        calls.push_back(what + " " + std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width) + "x"
                        + std::to_string(r.height) + rest);
    }
    static std::string hex(Colour colour)
    {
        char text[12];
        snprintf(text, sizeof text, " #%08X", static_cast<unsigned>(colour));
        return text;
    }
};

struct LaidOutMarkup {
    LaidOutMarkup(const char16_t* markup, int width, double scale = 1.0)
    {
        MarkupTextFilter unchanged;
        document.setMarkup(ZString(markup), unchanged, ZString(u"res:///page.xhtml"));
        tree.build(document.root(), rules, document.baseAddress(), scale);
        size = tree.layout(canvas, width, -1);
    }

    View& byId(const char16_t* id)
    {
        if (View* view = tree.findById(ZString(id)))
            return *view;
        throw std::runtime_error("no view with that id");
    }

    FixedMetricsCanvas canvas;
    HtmlDocument document;
    StyleRuleList rules;
    ViewTree tree;
    Size size;
};

int centreY(const Rect& r) { return r.y + r.height / 2; }
int centreX(const Rect& r) { return r.x + r.width / 2; }

std::vector<std::string> paint(LaidOutMarkup& page)
{
    paintView(*page.tree.root(), page.canvas, Rect{0, 0, 10000, 10000});
    return page.canvas.calls;
}

std::string kinds(const View& view)
{
    static const char* const names[] = {"block", "inline", "text", "image", "br", "hr", "table", "tr", "td", "control"};
    std::string out;
    for (const auto& child : view.children) {
        out += (out.empty() ? "" : " ") + std::string(names[static_cast<int>(child->kind)]);
        if (!child->children.empty())
            out += "(" + kinds(*child) + ")";
    }
    return out;
}

TEST(ViewBuilder, KnownElementsGetViewsTextIsCollapsedThenDecodedImagesResolve)
{
    LaidOutMarkup page(u"<html><head><title>T</title><style>p{}</style></head><body><p>a<blink>b</blink></p>"
                       u"<table><tbody> <tr> <td>c</td> </tr></tbody></table><img src=x.png>after"
                       u"<select><option>o</option></select><textarea>t</textarea></body></html>",
                       200);
    EXPECT_EQ(kinds(*page.tree.root()), "block(block(text text) table(tr(td(text))) image text control control)");
    const std::pair<const char16_t*, const char16_t*> texts[] = {
        {u"a \t\r\n b", u"a b"}, {u"\n\t\t&nbsp;&nbsp;\n", u" \u00A0\u00A0 "}, {u"&lt;b&gt; &amp;amp; x&#32;&#32;y", u"<b> &amp; x  y"}};
    for (const auto& [raw, text] : texts)
        EXPECT_EQ(ViewBuilder::collapsedText(ZString(raw)), ZString(text)) << ZString(raw).toUtf8();
    EXPECT_EQ(resolveAddress(ZString(u"res:///ui/page.xhtml"), ZString(u"a.png")), ZString(u"res:///ui/a.png"));
    EXPECT_EQ(resolveAddress(ZString(u"res:///page.xhtml"), ZString(u"https://x/a.png")), ZString(u"https://x/a.png"));
}

TEST(ViewBuilder, ControlsCarryTheirModel)
{
    LaidOutMarkup page(u"<select id=s><option value=a>Alpha</option><option value='b' selected>  Be  </option>"
                       u"<option selected>Gamma</option></select>"
                       u"<input id=k type=checkbox name=keep checked/>"
                       u"<input id=h type=hidden name=secret value=v/><textarea id=ta name=notes>a &amp; <b>b</b></textarea>"
                       u"<input id=b type=button name=start value='  Go &amp; on '/>",
                       400);
    const ControlModel& single = *page.byId(u"s").control;
    ASSERT_EQ(single.options.size(), 3u);
    EXPECT_EQ(single.options[1].label, ZString(u"Be"));
    EXPECT_EQ(single.options[2].value, ZString(u"Gamma")) << "without a value the label is the value";
    EXPECT_EQ(single.selectedValue(), ZString(u"Gamma")) << "one choice: the last marked option";
    EXPECT_TRUE(page.byId(u"k").control->checked);
    EXPECT_FALSE(page.byId(u"h").isDisplayed());
    EXPECT_EQ(page.byId(u"ta").control->value, ZString(u"a & <b>b</b>"));
    EXPECT_EQ(page.byId(u"b").control->value, ZString(u" Go & on "));
}

TEST(BlockLayout, PaddingMarginsBordersAndMinimumsAroundStackedBlocks)
{
    LaidOutMarkup page(u"<body><div id=band style='background-gradient: #FFFFFF #E8E8E8 vertical; padding:10px'>"
                       u"<img id=logo src='32x32.png'/></div><div style='height:1px; background-color:#FFFFFF'></div>"
                       u"<div id=bottom style='height:50px'></div>"
                       u"<div id=outer style='margin:5px; border:2px solid red; padding-left:3px'>"
                       u"<div id=inner style='min-height:40px; min-width:500px'></div></div></body>",
                       300);
    EXPECT_EQ(page.byId(u"band").box, (Rect{0, 0, 300, 52}));
    EXPECT_EQ(page.byId(u"logo").box, (Rect{10, 10, 32, 32}));
    EXPECT_EQ(page.byId(u"bottom").box, (Rect{0, 53, 300, 50}));
    EXPECT_EQ(page.byId(u"outer").box, (Rect{5, 108, 290, 44}));
    EXPECT_EQ(page.byId(u"inner").box, (Rect{10, 110, 500, 40})) << "a minimum width may overflow";
    EXPECT_EQ(page.size.height, 157);
}

TEST(BlockLayout, PercentagesDisplayNoneAndStyleRulesAgainstOwnStyles)
{
    LaidOutMarkup page(u"<style>.tall { height:60px }</style>"
                       u"<div style='width:200px; height:80px'><div id=half style='width:50%; height:25%'></div></div>"
                       u"<div style='width:200px'><div id=unknown style='height:50%'>x</div></div>"
                       u"<div style='display:none; height:30px'>gone</div><div id=a style='height:10px'></div>"
                       u"<div style='visibility:hidden; height:20px'></div><div id=b style='height:10px'></div>"
                       u"<p id=x class='tall' style='height:40px'></p><p id=own class=tall height=5></p>",
                       400);
    EXPECT_EQ(page.byId(u"half").box, (Rect{0, 0, 100, 20})) << "a percentage of the containing box";
    EXPECT_EQ(page.byId(u"unknown").box.height, 12) << "without a fixed height around it, the content decides";
    EXPECT_EQ(page.byId(u"a").box.y, 92) << "display:none takes no room";
    EXPECT_EQ(page.byId(u"b").box.y, 122) << "hidden does";
    EXPECT_EQ(page.byId(u"x").box.height, 40) << "the style attribute wins over the document's rules";
    EXPECT_EQ(page.byId(u"own").box.height, 60) << "a rule wins over a presentational attribute";
}

TEST(BlockLayout, EverythingScalesWithTheScreenDpi)
{
    LaidOutMarkup page(u"<div id=band style='padding:10px'><img id=logo src='32x32.png'/> ab</div>", 600, 2.0);
    EXPECT_EQ(page.byId(u"logo").box, (Rect{20, 20, 64, 64}));
    EXPECT_EQ(page.byId(u"band").children.back()->fragments.at(0).box.width, 24) << "24 px font, two characters";
}

TEST(LineLayout, TextWrapsAtSpacesBreaksAtBrAndAligns)
{
    LaidOutMarkup page(u"<div id=d style='width:60px'>aaa   bbb\n ccc ddd<br/>e</div>"
                       u"<div id=r style='text-align:right'>ab</div><center><div id=c style='width:40px'>x</div></center>",
                       100);
    const View& text = *page.byId(u"d").children[0];
    ASSERT_EQ(text.fragments.size(), 2u);
    EXPECT_EQ(text.fragments[0].text + ZString(u"|") + text.fragments[1].text, ZString(u"aaa bbb|ccc ddd"));
    EXPECT_EQ(text.fragments[1].box, (Rect{0, 12, 42, 12}));
    EXPECT_EQ(page.byId(u"d").children[2]->fragments[0].box.y, 24);
    EXPECT_EQ(page.byId(u"r").children[0]->fragments[0].box.x, 88);
    EXPECT_EQ(page.byId(u"c").box.x, 30);
}

TEST(LineLayout, NowrapKeepsARowOnOneLineWithItsItemsCentred)
{
    LaidOutMarkup page(u"<nowrap id=row style='vertical-align:middle'>\n\t<img id=logo src='32x32.png'/>\n"
                       u"\t&nbsp;&nbsp;&nbsp;&nbsp;\n\t<img id=one src='24x23.png'/>\n"
                       u"\t<select id=mode><option value=a>Alpha</option><option value=b>Be</option></select>\n"
                       u"\t<input id=go type=button name=start value='Go' style='font-size:15px;'/>\n</nowrap>",
                       100);
    const Rect logo = page.byId(u"logo").box;
    for (const char16_t* id : {u"one", u"mode", u"go"}) {
        EXPECT_NEAR(centreY(page.byId(id).box), centreY(logo), 1) << ZString(id).toUtf8();
        EXPECT_GT(page.byId(id).box.x, logo.x) << ZString(id).toUtf8();
    }
    EXPECT_GT(page.byId(u"go").box.right(), 100) << "nothing wraps although the row is wider than 100";
    EXPECT_EQ(page.byId(u"row").children[2]->fragments.at(0).box.x, 38) << "logo, one collapsed space, then the four non-breaking spaces";
}

TEST(LineLayout, InlineElementsChangeTheFontAndLinksCoverTheirText)
{
    LaidOutMarkup page(u"<div>ab <b><font size=5 id=big>cd</font></b> <a id=link href='x'>ef</a></div>", 300);
    const View& big = page.byId(u"big");
    EXPECT_EQ(big.style.font.weight, 700);
    EXPECT_EQ(big.style.font.pixelSize, 24);
    const View& link = page.byId(u"link");
    EXPECT_TRUE(link.style.font.underline);
    EXPECT_EQ(link.style.colour, rgb(0x0000FF));
    EXPECT_EQ(page.tree.linkAncestor(page.tree.viewAt(link.box.x + 1, link.box.y + 1)), &link);
    EXPECT_EQ(link.box.y + 9, big.box.y + 18) << "one baseline: 9 px above it at 12 px, 18 px at 24 px";
}

TEST(TableLayout, FullSizeTableWithFixedAndCentredCells)
{
    LaidOutMarkup page(u"<div id=bottom style='height:50px'><table id=t border='0' width='100%' height='100%'><tr>"
                       u"<td id=c1 valign='middle' style='padding-left:15px; width:35px;'><img id=info src='20x20.png'/></td>"
                       u"<td id=c2 valign='middle' style='padding-left:10px'>some words here</td>"
                       u"<td id=c3 width='150' align='center' valign='middle'><img id=brand src='119x17.png'/></td>"
                       u"</tr></table></div>",
                       600);
    EXPECT_EQ(page.byId(u"t").box, (Rect{0, 0, 600, 50}));
    const Rect c1 = page.byId(u"c1").box, c2 = page.byId(u"c2").box, c3 = page.byId(u"c3").box;
    EXPECT_EQ(c1.width, 15 + 35 + 1) << "padding, width and the default cell padding";
    EXPECT_EQ(c3.width, 150 + 2);
    EXPECT_EQ(c2.width, 600 - 4 * 2 - c1.width - c3.width) << "the free column takes the rest";
    EXPECT_EQ(c1.height, 50 - 2 * 2);
    EXPECT_EQ(page.byId(u"info").box, (Rect{c1.x + 15, 15, 20, 20}));
    EXPECT_NEAR(centreX(page.byId(u"brand").box), centreX(c3), 1);
    EXPECT_NEAR(centreY(page.byId(u"brand").box), 25, 1);
}

TEST(TableLayout, SpansPercentageColumnsSpacingPaddingAndBorder)
{
    LaidOutMarkup page(u"<table id=t cellspacing=0 cellpadding=0 border=1><tr>"
                       u"<td id=a rowspan=2 style='width:10px'>x</td><td id=b colspan=2 style='width:40px'></td></tr>"
                       u"<tr><td id=c style='width:20px; height:30px'></td><td id=d style='width:20px'></td></tr></table>"
                       u"<table width=400 cellspacing=0 cellpadding=0><tr><td id=q width='25%'>x</td><td id=r>y</td></tr></table>",
                       1000);
    const Rect a = page.byId(u"a").box, b = page.byId(u"b").box, c = page.byId(u"c").box, d = page.byId(u"d").box;
    EXPECT_TRUE(a.x == 1 && c.x == a.right() && d.x == c.right() && b.x == c.x && b.right() == d.right() && c.y == b.bottom());
    EXPECT_EQ(a.height, b.height + c.height) << "the row span covers both rows";
    EXPECT_EQ(c.height, 32) << "30 px and a 1 px border above and below";
    EXPECT_EQ(page.byId(u"q").box.width, 100);
    EXPECT_EQ(page.byId(u"r").box.width, 300);
}

TEST(PreferredWidth, APercentageTableAsksOnlyForItsMinimum)
{
    LaidOutMarkup page(u"<body><div><nowrap>aaaaaaaaaa bbbbbbbbbb</nowrap></div>"
                       u"<table width='100%' cellspacing=0 cellpadding=0><tr><td>a long sentence that would be wider</td></tr></table>"
                       u"</body>",
                       1000);
    EXPECT_EQ(page.tree.preferredWidth(page.canvas), 21 * 6);
}

TEST(PointerStates, StateStylesApplyOverTheNormalOneAndGoAgain)
{
    LaidOutMarkup page(u"<div id=d style='color:red; padding:2px' moStyle='color:blue' lbdStyle='padding:6px'>x</div>", 100);
    View& d = page.byId(u"d");
    EXPECT_TRUE(page.tree.setState(d, PointerState::over));
    EXPECT_EQ(d.children[0]->style.colour, rgb(0x0000FF)) << "text takes the state's colour";
    EXPECT_TRUE(page.tree.setState(d, PointerState::leftButtonDown));
    EXPECT_EQ(d.style.padding[0].value, 6);
    EXPECT_EQ(d.style.colour, rgb(0xFF0000));
    EXPECT_TRUE(page.tree.setState(d, PointerState::normal));
    EXPECT_EQ(d.style.padding[0].value, 2) << "the normal style again";
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
    LaidOutMarkup page(u"<div style='width:5px; height:4px; background-image:url(2x3.png); background-repeat:repeat-x'></div>"
                       u"<div style='width:2px; height:5px; background-image:2x3.png; background-repeat:no-repeat'></div>",
                       50);
    const std::vector<std::string> expected = {
        "clip 0,0 5x4", "image 2x3.png 0,0 2x3", "image 2x3.png 2,0 2x3", "image 2x3.png 4,0 2x3", "unclip",
        "clip 0,4 2x5", "image 2x3.png 0,4 2x3", "unclip",
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
        {StyleKeyword::dotted, {0, 0, 7, 1}, true, {{0, 0, 1, 1}, {2, 0, 1, 1}, {4, 0, 1, 1}, {6, 0, 1, 1}}},
        {StyleKeyword::dashed, {5, 0, 1, 8}, false, {{5, 0, 1, 3}, {5, 6, 1, 2}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(borderPieces(c.side, c.style, c.horizontal), c.pieces) << keywordName(c.style);
}

} // namespace
