// Setting markup: the text filter sees the whole text before it is parsed.

#include "TreeText.h"

#include "xhtml/HtmlDocument.h"

#include <gtest/gtest.h>

using namespace xhtml;

namespace {

// Replaces the text as a host replaces its language keys, and keeps what it saw.
struct KeyFilter : MarkupTextFilter {
    void filterMarkup(ZString& text) override
    {
        seen = text;
        text = ZString(u"<body><b title=\"TIP\">START</b></body>");
    }
    ZString seen;
};

} // namespace

TEST(HtmlDocument, FilterRewritesTheWholeTextBeforeParsingAndNewMarkupReplacesTheTree)
{
    HtmlDocument document;
    KeyFilter filter;
    const ZString markup(u"<body><b title=\"{lang/tip}\">{lang/start}</b></body>");
    document.setMarkup(markup, filter, ZString(u"res:///captureUi.xhtml"));
    EXPECT_EQ(filter.seen, markup);
    EXPECT_EQ(xhtmltest::contentText(document.root()), R"(body{b(title=[TIP]){"START"}})");
    EXPECT_TRUE(document.root().name().isEmpty());

    MarkupTextFilter unchanged;
    document.setMarkup(ZString(u"<a>{lang/x}</a>"), unchanged);
    EXPECT_EQ(xhtmltest::contentText(document.root()), R"(a{"{lang/x}"})");
    EXPECT_EQ(document.baseAddress(), ZString(u"res:///captureUi.xhtml")); // no new base given
    document.setMarkup(ZString(), unchanged);
    EXPECT_TRUE(document.root().children().empty());
}
