// The view tree built from markup: which elements get views, text, controls and styles.

#include "tests/xhtml/LaidOutMarkup.h"
#include "xhtml/view/ViewBuilder.h"

#include <gtest/gtest.h>

using xhtml::View;

namespace {

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
        EXPECT_EQ(xhtml::ViewBuilder::collapsedText(ZString(raw)), ZString(text)) << ZString(raw).toUtf8();
    EXPECT_EQ(xhtml::resolveAddress(ZString(u"res:///ui/page.xhtml"), ZString(u"a.png")), ZString(u"res:///ui/a.png"));
    EXPECT_EQ(xhtml::resolveAddress(ZString(u"res:///page.xhtml"), ZString(u"https://x/a.png")), ZString(u"https://x/a.png"));
}

TEST(ViewBuilder, ControlsCarryTheirModel)
{
    LaidOutMarkup page(u"<select id=s><option value=a>Alpha</option><option value='b' selected>  Be  </option>"
                       u"<option selected>Gamma</option></select>"
                       u"<select id=m multiple size=3><option value=1 selected>one</option><option value=2 selected>two</option></select>"
                       u"<input id=k type=checkbox name=keep checked/><input id=t value=' x '/>"
                       u"<input id=h type=hidden name=secret value=v/><textarea id=ta name=notes>a &amp; <b>b</b></textarea>"
                       u"<input id=b type=button name=start value='  Go &amp; on '/>",
                       400);
    const xhtml::ControlModel& single = *page.byId(u"s").control;
    ASSERT_EQ(single.options.size(), 3u);
    EXPECT_EQ(single.options[1].label, ZString(u"Be"));
    EXPECT_EQ(single.options[2].value, ZString(u"Gamma")) << "without a value the label is the value";
    EXPECT_EQ(single.selectedValue(), ZString(u"Gamma")) << "one choice: the last marked option";
    const xhtml::ControlModel& multiple = *page.byId(u"m").control;
    EXPECT_TRUE(multiple.isList() && multiple.options[0].selected && multiple.options[1].selected);
    EXPECT_EQ(page.byId(u"k").control->type, xhtml::ControlType::checkbox);
    EXPECT_TRUE(page.byId(u"k").control->checked);
    EXPECT_EQ(page.byId(u"t").control->value, ZString(u" x "));
    EXPECT_FALSE(page.byId(u"h").isDisplayed());
    EXPECT_EQ(page.byId(u"ta").control->value, ZString(u"a & <b>b</b>"));
    EXPECT_EQ(page.byId(u"b").control->value, ZString(u" Go & on "));
    EXPECT_EQ(page.byId(u"b").control->name, ZString(u"start"));
}

} // namespace
