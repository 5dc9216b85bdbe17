// The markup parser's rules, grouped by behaviour.

#include "TreeText.h"

#include "xhtml/HtmlParser.h"

#include <gtest/gtest.h>

#include <initializer_list>

using xhtmltest::parsed;

namespace {

struct Case {
    const char* markup;
    const char* tree;
};

void expectTrees(std::initializer_list<Case> cases)
{
    for (const Case& c : cases)
        EXPECT_EQ(parsed(c.markup), c.tree) << "markup: " << c.markup;
}

} // namespace

TEST(HtmlParser, TagsAndEndTags)
{
    expectTrees({
        {"<body>a<b>c</i>d</b>e</body>", R"(body{"a" b{"c" "d"} "e"})"},
        {"<P>x</p>", R"(p{"x"})"},               // names are lowered
        {"<DIV>x</DiV>y", R"(div{"x"} "y")"},  // end tags too
        {"<a><b>x</a>y", R"(a{b{"x" "y"}})"},   // an end tag never closes an outer element
        {"</b>x", R"("x")"},                     // a stray end tag is dropped
        {"a</>b", R"("a" "b")"},                 // the root is not closed by an empty end tag
        {"a</ >b", R"("a" "b")"},
        {"<b>x</b junk>y", R"(b{"x"} "y")"},    // the end tag runs to its ">"
        {"<b>x</b", R"(b{"x"})"},                // an end tag cut off by the end
        {"<b", "b"},                             // a start tag cut off by the end
        {"<br>after", R"(br{"after"})"},        // no void elements: br takes what follows
        {"<br/>after", R"(br "after")"},        // "/>" makes an empty element
        {"<br />after", R"(br "after")"},
        {"<a/b>x", R"(a/b{"x"})"},              // "/" not before ">" belongs to the name
        {"<x\ty>z", R"(x(y=[]){"z"})"},
    });
}

TEST(HtmlParser, TextAndLessThan)
{
    expectTrees({
        {"x < y", R"("x < y")"},
        {"1<2 and 3<=4", R"("1<2 and 3<=4")"},
        {"a<", R"("a<")"},
        {"< b>", R"("< b>")"},
        {"a<!DOCTYPE html>b", R"("a" "<!DOCTYPE html>b")"}, // "<!" ends text but starts no comment
        {"a</b", R"("a")"},                                  // "</" ends text
        {"text  with\r\n white &amp; space", R"("text  with)" "\r\n" R"( white &amp; space")"},
    });
}

TEST(HtmlParser, Attributes)
{
    expectTrees({
        {"<a HREF=\"x\" Id='y' z=w>", "a(href=[x] id=[y] z=[w])"},
        {"<a b = \"x\">", "a(b=[x])"},
        {"<option value=a selected>", "option(value=[a] selected=[])"},
        {"<a x=1 x=2>", "a(x=[1] x=[2])"},                        // duplicates kept in order
        {"<a ' 12 \"b=c>", "a(b=[c])"},                          // stray quotes and digits skipped
        {"<a \"junk\" b=c>", "a(junk\"=[] b=[c])"},              // a name runs to white space
        {"<b <i>x</i>", R"(b(i=[]){"x"})"},                       // a "<" between attributes is skipped
        {"<a title=\"it's\">", "a(title=[it's])"},               // the other quote is ordinary
        {"<a b=\"x y\" c='p q'>", "a(b=[x y] c=[p q])"},
        {"<div title=\"a>b\">", R"(div(title=[a]){"b">"})"},      // ">" ends a value even inside quotes
        {"<a b=x/>t", R"(a(b=[x]) "t")"},
        {"<a b=\"x/>t", R"(a(b=[x]) "t")"},                       // so does "/>"
        {"<a b=c/d>", "a(b=[c/d])"},
        {"<a b=\"x<i>y\">", R"(a(b=[x] i=[]){"y">"})"},           // and "<" with a letter
        {"<a b=\"x<1\">", "a(b=[x<1])"},                          // but not "<" with a digit
        {"<a b=\"unclosed", "a(b=[unclosed])"},
        {"<a b=", "a(b=[])"},
        {"<input VALUE=\" a b \">", "input(value=[ a b ])"},     // only "value" keeps its spaces
        {"<input name=\" a \" values=\" a \">", "input(name=[a] values=[a])"},
    });
}

TEST(HtmlParser, RawContent)
{
    expectTrees({
        {"<textarea><b>x</b></textarea>", R"(textarea{"<b>x</b>"})"},
        {"<textarea>a</TEXTAREA>b", R"(textarea{"a"} "b")"},
        {"<style>a<!--b--></style>", R"(style{"a<!--b-->"})"},
        {"<textarea>no end", R"(textarea{"no end"})"},
        {"<textarea></textarea>x", R"(textarea{""} "x")"},
        {"<textarea>", "textarea"},
        {"<textarea/>x", R"(textarea "x")"},
        {"<style>a</styles>b", R"(style{"a"} "b")"}, // ends at the name as a prefix; the rest is dropped
    });
}

TEST(HtmlParser, Comments)
{
    expectTrees({
        {"a<!-- x <b> -->b", R"("a" "b")"},
        {"<b>a<!---->c</b>", R"(b{"a" "c"})"},
        {"<!-->x-->y", R"("y")"}, // the "-->" is looked for after "<!--"
        {"a<!-- never closed <b>x</b>", R"("a")"},
        {"<!--", ""},
    });
}

TEST(HtmlParser, ArgumentsResultAndParents)
{
    xhtml::HtmlTagNode root;
    const ZString text(u"x</p>rest<b>y");
    EXPECT_EQ(xhtml::HtmlParser::parse(&root, ZString().c_str()), nullptr);
    EXPECT_EQ(xhtml::HtmlParser::parse(nullptr, text.c_str()), nullptr);
    EXPECT_EQ(xhtml::HtmlParser::parse(&root, nullptr), nullptr);
    EXPECT_TRUE(root.children().empty());
    xhtml::HtmlTagNode p(ZString(u"p"));
    EXPECT_EQ(xhtml::HtmlParser::parse(&p, text.c_str()), text.c_str() + 5); // after the closing end tag
    EXPECT_EQ(xhtml::HtmlParser::parse(&root, text.c_str()), text.c_str() + text.length());
    const auto& b = static_cast<const xhtml::HtmlTagNode&>(*root.children().back());
    EXPECT_EQ(b.parent(), &root);
    EXPECT_EQ(b.children().at(0)->parent(), &b);
}

TEST(HtmlParser, MillionNestedElementsParseAndDeleteWithoutRecursion)
{
    const int depth = 1000000;
    std::u16string text;
    for (int i = 0; i < depth; ++i)
        text += u"<div>";
    text += u"x";
    for (int i = 0; i < depth; ++i)
        text += u"</div>";
    text += u"tail";
    auto root = xhtmltest::parseDocument(ZString(reinterpret_cast<const ZChar*>(text.c_str())));
    ASSERT_EQ(root->children().size(), 2u);
    EXPECT_TRUE(root->children()[1]->isText()) << "the end tags close every level";
    const xhtml::HtmlNode* node = root.get();
    for (int level = 0; level < depth; ++level) {
        node = static_cast<const xhtml::HtmlTagNode*>(node)->children()[0].get();
        ASSERT_TRUE(node->isTag() && static_cast<const xhtml::HtmlTagNode*>(node)->name() == ZString(u"div")) << level;
        ASSERT_EQ(static_cast<const xhtml::HtmlTagNode*>(node)->children().size(), 1u) << level;
    }
    EXPECT_TRUE(static_cast<const xhtml::HtmlTagNode*>(node)->children()[0]->isText());
    root.reset(); // deleting the chain must not recurse either
}
