// Setting markup: the text filter sees the whole text before it is parsed.

#include "TreeText.h"

#include "xhtml/HtmlDocument.h"

#include <gtest/gtest.h>

using namespace xhtml;

namespace {

// Replaces "{lang/K}" with K in upper case, as a host replaces its language keys.
class KeyFilter : public MarkupTextFilter {
public:
    void filterMarkup(ZString& text) override
    {
        seen = text;
        const ZString open(u"{lang/");
        for (int at = text.find(open); at != ZString::npos; at = text.find(open)) {
            const int close = text.find(ZChar('}'), at);
            if (close == ZString::npos)
                break;
            ZString key = text.substring(at + open.length(), close - at - open.length());
            ZString upper;
            for (int i = 0; i < key.length(); ++i)
                upper += static_cast<ZChar>(key[i] >= 'a' && key[i] <= 'z' ? key[i] - 32 : key[i]);
            text = text.substring(0, at) + upper + text.substring(close + 1);
        }
    }
    ZString seen;
};

} // namespace

TEST(HtmlDocument, FilterRewritesTheWholeTextBeforeParsing)
{
    HtmlDocument document;
    KeyFilter filter;
    const ZString markup(u"<body><b title=\"{lang/tip}\">{lang/start}</b></body>");
    document.setMarkup(markup, filter, ZString(u"res:///captureUi.xhtml"));
    EXPECT_EQ(filter.seen, markup);
    EXPECT_EQ(xhtmltest::contentText(document.root()), R"(body{b(title=[TIP]){"START"}})");
    EXPECT_EQ(document.baseAddress(), ZString(u"res:///captureUi.xhtml"));
    EXPECT_TRUE(document.root().name().isEmpty());
}

TEST(HtmlDocument, NewMarkupReplacesTheTreeAndKeepsTheBase)
{
    HtmlDocument document;
    MarkupTextFilter unchanged;
    document.setMarkup(ZString(u"<a>{lang/x}</a>"), unchanged, ZString(u"res:///one"));
    EXPECT_EQ(xhtmltest::contentText(document.root()), R"(a{"{lang/x}"})");
    document.setMarkup(ZString(u"<p>"), unchanged);
    EXPECT_EQ(xhtmltest::contentText(document.root()), "p");
    EXPECT_EQ(document.baseAddress(), ZString(u"res:///one")); // no new base given
    document.setMarkup(ZString(), unchanged);
    EXPECT_TRUE(document.root().children().empty());
}
