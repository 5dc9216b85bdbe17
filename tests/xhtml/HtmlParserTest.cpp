// The markup parser's rules, grouped by behaviour.

#include "TreeText.h"

#include "xhtml/HtmlParser.h"

#include <gtest/gtest.h>

using xhtmltest::parsed;

namespace {

struct Case {
    const char* markup;
    const char* tree;
};

void expectTrees(const Case* cases, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        EXPECT_EQ(parsed(cases[i].markup), cases[i].tree) << "markup: " << cases[i].markup;
}

template <size_t N>
void expectTrees(const Case (&cases)[N])
{
    expectTrees(cases, N);
}

} // namespace

TEST(HtmlParserTags, NestAndClose)
{
    const Case cases[] = {
        {"<body>a<b>c</i>d</b>e</body>", R"(body{"a" b{"c" "d"} "e"})"},
        {"<P>x</p>", R"(p{"x"})"},               // names are lowered
        {"<DIV>x</DiV>y", R"(div{"x"} "y")"},  // end tags too
        {"<a><b>x</a>y", R"(a{b{"x" "y"}})"},   // an end tag never closes an outer element
        {"</b>x", R"("x")"},                     // a stray end tag is dropped
        {"<b>x</b junk>y", R"(b{"x"} "y")"},    // the end tag runs to its ">"
        {"<b>x</b", R"(b{"x"})"},                // an end tag cut off by the end
        {"<b", "b"},                             // a start tag cut off by the end
        {"<br>after", R"(br{"after"})"},        // no void elements: br takes what follows
        {"<img src=\"a.png\">text", R"(img(src=[a.png]){"text"})"},
        {"<br/>after", R"(br "after")"},        // "/>" makes an empty element
        {"<br />after", R"(br "after")"},
        {"<a/b>x", R"(a/b{"x"})"},              // "/" not before ">" belongs to the name
        {"<x\ty>z", R"(x(y=[]){"z"})"},
    };
    expectTrees(cases);
}

TEST(HtmlParserTags, RootIsNotClosedByAnEmptyEndTag)
{
    EXPECT_EQ(parsed("a</>b"), R"("a" "b")");
    EXPECT_EQ(parsed("a</ >b"), R"("a" "b")");
}

TEST(HtmlParserTags, ParentsAreSet)
{
    auto root = xhtmltest::parseDocument(ZString(u"<a><b>t</b></a>"));
    const auto& a = static_cast<const xhtml::HtmlTagNode&>(*root->children()[0]);
    const auto& b = static_cast<const xhtml::HtmlTagNode&>(*a.children()[0]);
    EXPECT_EQ(root->parent(), nullptr);
    EXPECT_EQ(a.parent(), root.get());
    EXPECT_EQ(b.parent(), &a);
    EXPECT_EQ(b.children()[0]->parent(), &b);
    EXPECT_EQ(static_cast<int>(a.kind()), 1);
    EXPECT_EQ(static_cast<int>(b.children()[0]->kind()), 2);
}

TEST(HtmlParserText, LessThanThatBeginsNoTagIsText)
{
    const Case cases[] = {
        {"x < y", R"("x < y")"},
        {"1<2 and 3<=4", R"("1<2 and 3<=4")"},
        {"a<", R"("a<")"},
        {"<", R"("<")"},
        {"< b>", R"("< b>")"},
        {"a<!DOCTYPE html>b", R"("a" "<!DOCTYPE html>b")"}, // "<!" ends text but starts no comment
        {"a</b", R"("a")"},                                  // "</" ends text
        {"text  with\r\n white &amp; space", R"("text  with)" "\r\n" R"( white &amp; space")"},
    };
    expectTrees(cases);
}

TEST(HtmlParserText, EmptyTextGivesAnEmptyRoot)
{
    xhtml::HtmlTagNode root;
    EXPECT_EQ(xhtml::HtmlParser::parse(&root, ZString().c_str()), nullptr);
    EXPECT_TRUE(root.children().empty());
}

TEST(HtmlParserText, NullArgumentsDoNothing)
{
    xhtml::HtmlTagNode root;
    const ZString text(u"<b>x</b>");
    EXPECT_EQ(xhtml::HtmlParser::parse(nullptr, text.c_str()), nullptr);
    EXPECT_EQ(xhtml::HtmlParser::parse(&root, nullptr), nullptr);
    EXPECT_TRUE(root.children().empty());
}

TEST(HtmlParserText, ReturnsThePositionAfterTheClosingEndTag)
{
    const ZString text(u"x</p>rest");
    xhtml::HtmlTagNode p(ZString(u"p"));
    EXPECT_EQ(xhtml::HtmlParser::parse(&p, text.c_str()), text.c_str() + 5);
    const ZString unclosed(u"x<b>y");
    xhtml::HtmlTagNode q(ZString(u"p"));
    EXPECT_EQ(xhtml::HtmlParser::parse(&q, unclosed.c_str()), unclosed.c_str() + unclosed.length());
}

TEST(HtmlParserAttributes, NamesAndValues)
{
    const Case cases[] = {
        {"<a HREF=\"x\" Id='y' z=w>", "a(href=[x] id=[y] z=[w])"},
        {"<a b = \"x\">", "a(b=[x])"},
        {"<option value=a selected>", "option(value=[a] selected=[])"},
        {"<a x=1 x=2>", "a(x=[1] x=[2])"},                        // duplicates kept in order
        {"<a ' 12 \"b=c>", "a(b=[c])"},                          // stray quotes and digits skipped
        {"<a \"junk\" b=c>", "a(junk\"=[] b=[c])"},              // a name runs to white space
        {"<b <i>x</i>", R"(b(i=[]){"x"})"},                       // a "<" between attributes is skipped
        {"<a title=\"it's\">", "a(title=[it's])"},               // the other quote is ordinary
        {"<a b=\"x y\" c='p q'>", "a(b=[x y] c=[p q])"},
        {"<a b=x/>t", R"(a(b=[x]) "t")"},
        {"<a b=\"x/>t", R"(a(b=[x]) "t")"},                       // "/>" ends a quoted value too
        {"<a b=c/d>", "a(b=[c/d])"},
        {"<a b=\"x<i>y\">", R"(a(b=[x] i=[]){"y">"})"},           // so does "<" with a letter
        {"<a b=\"x<1\">", "a(b=[x<1])"},                          // but not "<" with a digit
        {"<a b=\"unclosed", "a(b=[unclosed])"},
        {"<a b=", "a(b=[])"},
    };
    expectTrees(cases);
}

TEST(HtmlParserAttributes, ValueEndsAtGreaterThanEvenInsideQuotes)
{
    EXPECT_EQ(parsed("<div title=\"a>b\">"), R"(div(title=[a]){"b">"})");
}

TEST(HtmlParserAttributes, OnlyTheValueOfValueKeepsItsSpaces)
{
    EXPECT_EQ(parsed("<input value=\" a b \">"), "input(value=[ a b ])");
    EXPECT_EQ(parsed("<input VALUE=\" a \">"), "input(value=[ a ])");
    EXPECT_EQ(parsed("<input name=\" a \">"), "input(name=[a])");
    EXPECT_EQ(parsed("<input values=\" a \">"), "input(values=[a])");
}

TEST(HtmlParserRawContent, TextareaAndStyleKeepTheirContent)
{
    const Case cases[] = {
        {"<textarea><b>x</b></textarea>", R"(textarea{"<b>x</b>"})"},
        {"<textarea>a</TEXTAREA>b", R"(textarea{"a"} "b")"},
        {"<style>p{color:red}</style>", R"(style{"p{color:red}"})"},
        {"<style>a<!--b--></style>", R"(style{"a<!--b-->"})"},
        {"<textarea>no end", R"(textarea{"no end"})"},
        {"<textarea></textarea>x", R"(textarea{""} "x")"},
        {"<textarea>", "textarea"},
        {"<textarea/>x", R"(textarea "x")"},
        // The content ends at the name as a prefix; the rest of that end tag is dropped.
        {"<style>a</styles>b", R"(style{"a"} "b")"},
    };
    expectTrees(cases);
}

TEST(HtmlParserComments, AreDropped)
{
    const Case cases[] = {
        {"a<!-- x <b> -->b", R"("a" "b")"},
        {"<b>a<!---->c</b>", R"(b{"a" "c"})"},
        {"<!-->x-->y", R"("y")"}, // the "-->" is looked for after "<!--"
        {"a<!-- never closed <b>x</b>", R"("a")"},
        {"<!--", ""},
    };
    expectTrees(cases);
}

TEST(HtmlParserNesting, MillionNestedElementsParseAndDelete)
{
    const int depth = 1000000;
    std::u16string text;
    text.reserve(depth * 5 + 1);
    for (int i = 0; i < depth; ++i)
        text += u"<div>";
    text += u"x";
    auto root = std::make_unique<xhtml::HtmlTagNode>();
    const ZString markup(reinterpret_cast<const ZChar*>(text.c_str()));
    xhtml::HtmlParser::parse(root.get(), markup.c_str());

    const xhtml::HtmlTagNode* node = root.get();
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(node->children().size(), 1u) << "level " << level;
        ASSERT_TRUE(node->children()[0]->isTag());
        node = static_cast<const xhtml::HtmlTagNode*>(node->children()[0].get());
        ASSERT_EQ(node->name(), ZString(u"div"));
    }
    ASSERT_EQ(node->children().size(), 1u);
    EXPECT_TRUE(node->children()[0]->isText());
    root.reset(); // deleting the chain must not recurse either
}

TEST(HtmlParserNesting, DeepNestingClosesInOrder)
{
    const int depth = 100000;
    std::string markup;
    for (int i = 0; i < depth; ++i)
        markup += "<i>";
    markup += "x";
    for (int i = 0; i < depth; ++i)
        markup += "</i>";
    markup += "tail";
    auto root = xhtmltest::parseDocument(ZString::fromUtf8(markup));
    ASSERT_EQ(root->children().size(), 2u);
    EXPECT_TRUE(root->children()[1]->isText());
}
