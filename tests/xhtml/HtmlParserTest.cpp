// The markup parser's forgiving rules, as anchors and as a flat reading that random markup
// must agree with; entities.

#include "xhtml/HtmlEntities.h"
#include "xhtml/HtmlParser.h"
#include "xhtml/MarkupText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

using namespace xhtml;

namespace {

// The children of a node in a compact text form: an element is name(attributes){...}, an
// attribute name=[value], a text node "text". Example: "a" b(x=[1]){"c"}.
std::string contentText(const HtmlTagNode& parent, bool attributes = true)
{
    std::string out;
    for (const auto& child : parent.children()) {
        out += out.empty() ? "" : " ";
        if (child->isText()) {
            out += '"' + static_cast<const HtmlTextNode&>(*child).text().toUtf8() + '"';
            continue;
        }
        const auto& tag = static_cast<const HtmlTagNode&>(*child);
        std::string list;
        for (const HtmlAttribute& attribute : tag.attributes()) {
            if (attributes)
                list += (list.empty() ? "(" : " ") + attribute.name.toUtf8() + "=[" + attribute.value.toUtf8() + "]";
        }
        out += tag.name().toUtf8() + list + (list.empty() ? "" : ")");
        if (!tag.children().empty())
            out += '{' + contentText(tag, attributes) + '}';
    }
    return out;
}

std::unique_ptr<HtmlTagNode> parseDocument(const ZString& text)
{
    auto root = std::make_unique<HtmlTagNode>();
    HtmlParser::parse(root.get(), text.c_str());
    return root;
}

void expectTrees(std::initializer_list<std::pair<const char*, const char*>> cases)
{
    for (const auto& [markup, tree] : cases)
        EXPECT_EQ(contentText(*parseDocument(ZString::fromUtf8(markup))), tree) << markup;
}

std::u16string decoded(const std::u16string& text)
{
    ZString value(reinterpret_cast<const ZChar*>(text.c_str()), static_cast<int>(text.size()));
    decodeEntities(value);
    return std::u16string(reinterpret_cast<const char16_t*>(value.c_str()), static_cast<size_t>(value.length()));
}

// Fragments that exercise every rule, non-ASCII letters included.
const char* const fragments[] = {
    "<", ">", "/", "/>", "!", "<!--", "-->", "--", "<!", "</", "<b>", "</b>", "<i ", "</i>", "<B", "</B ",
    "<div class=\"x y\">", "</div>", "<img src=a.png>", "<br/>", "<textarea>", "</textarea>", "<style>",
    "</STYLE>", "</style", "=", "\"", "'", " ", "\t", "\r\n", "a", "x", "1", "value", "title", "<p", "</p>",
    "&amp;", "&#65;", "&", ";", "\xC3\xA9", "\xC3\x89", "\xE4\xB8\xAD", "<\xC3\xA9>", "< ", "<1", "</>", "</ p>",
    "<input value=\" a \">", "<a b='c'>", "<a b=\"c>d\">",
};

// The flat reading. A comment runs to "-->", a tag from "<" to the first ">" (attribute
// values stop there even inside quotes), either to the end if unclosed. A start tag ending
// in "/>" is empty; any other opens an element, which an end tag of its name closes (an end
// tag never closes an outer element; an empty name closes the root). textarea and style
// hold all up to "</" and their name.
void readFlat(const ZString& s, HtmlTagNode& root)
{
    const int n = s.length();
    auto at = [&](int i) -> ZChar { return i < n ? s[i] : 0; };
    auto after = [&](const ZString& what, int from) {
        const int found = s.find(what, from);
        return found == ZString::npos ? n : found + what.length();
    };
    auto text = [&](int from, int to) { return std::make_unique<HtmlTextNode>(s.substring(from, to - from)); };
    std::vector<HtmlTagNode*> open{&root};
    for (int p = 0; p < n;) {
        if (s.substring(p, 4) == ZString(u"<!--")) {
            p = after(ZString(u"-->"), p + 4);
        } else if (at(p) == '<' && (at(p + 1) == '/' || isLetter(at(p + 1)))) {
            const bool endTag = at(p + 1) == '/';
            const int nameStart = p + (endTag ? 2 : 1);
            int q = nameStart;
            while (q < n && !isSpace(at(q)) && at(q) != '>' && !(!endTag && at(q) == '/' && at(q + 1) == '>'))
                ++q;
            const ZString name = s.substring(nameStart, q - nameStart).toLower();
            p = after(ZString(u">"), p);
            if (endTag) {
                if (name == open.back()->name())
                    open.pop_back();
                if (open.empty())
                    break; // the root is closed: the rest is not read
                continue;
            }
            auto* element = static_cast<HtmlTagNode*>(open.back()->appendChild(std::make_unique<HtmlTagNode>(name)));
            if (s[p - 1] != '>' || s[p - 2] == '/')
                continue; // cut off by the end, or empty
            if (name != ZString(u"textarea") && name != ZString(u"style")) {
                open.push_back(element);
            } else if (p < n) {
                for (q = p; q < n && !(at(q) == '<' && at(q + 1) == '/' && s.substring(q + 2, name.length()).equalsNoCase(name));)
                    ++q;
                element->appendChild(text(p, q));
                p = q;
            }
        } else {
            int q = p + 1;
            while (q < n && !(at(q) == '<' && (at(q + 1) == '/' || at(q + 1) == '!' || isLetter(at(q + 1)))))
                ++q;
            open.back()->appendChild(text(p, q));
            p = q;
        }
    }
}

} // namespace

// Tags and text as anchors of the flat reading below; attributes, which it leaves out.
TEST(HtmlParser, TagsAndAttributes)
{
    expectTrees({
        {"<body>a<b>c</i>d</b>e</body>", R"(body{"a" b{"c" "d"} "e"})"}, // a stray end tag is dropped
        {"<A><b>x</a>y", R"(a{b{"x" "y"}})"},   // an end tag never closes an outer element
        {"<br>after<br />", R"(br{"after" br})"}, // no void elements; "/>" makes an empty one
        {"1<2 < b>a<!DOCTYPE html>b", R"("1<2 < b>a" "<!DOCTYPE html>b")"}, // "<!" ends text but starts no comment
        {"<style>a</styles>b", R"(style{"a"} "b")"}, // ends at the name as a prefix; the rest is dropped
        {"a<!-- x <b> -->b<!-->x-->y", R"("a" "b" "y")"}, // "-->" is looked for after "<!--"
        {"<a HREF=\"x\" Id='y' z=w>", "a(href=[x] id=[y] z=[w])"},
        {"<option b = \"x\" selected>", "option(b=[x] selected=[])"},
        {"<a ' 12 \"b=c>", "a(b=[c])"},                          // stray quotes and digits skipped
        {"<a \"junk\" b=c>", "a(junk\"=[] b=[c])"},              // a name runs to white space
        {"<b <i>x</i>", R"(b(i=[]){"x"})"},                       // a "<" between attributes is skipped
        {"<a b=\"x 'y\" c='p \"q'>", "a(b=[x 'y] c=[p \"q])"},
        {"<div title=\"a>b\">", R"(div(title=[a]){"b">"})"},      // ">" ends a value even inside quotes
        {"<a b=\"x/>t", R"(a(b=[x]) "t")"},                       // so does "/>"
        {"<a b=c/d>", "a(b=[c/d])"},
        {"<a b=\"x<i>y\">", R"(a(b=[x] i=[]){"y">"})"},           // and "<" with a letter
        {"<a b=\"x<1\">", "a(b=[x<1])"},
        {"<a b=\"unclosed", "a(b=[unclosed])"},
        {"<a b=", "a(b=[])"},
        {"<input VALUE=\" a \" name=\" a \" values=\" a \">", "input(value=[ a ] name=[a] values=[a])"}, // only "value" keeps its spaces
    });
}

// An end tag's name is compared with its parent's as it stands, so an empty one closes the
// root, which has an empty name; what follows is left unread. Anywhere else it is dropped.
TEST(HtmlParser, EndTagWithAnEmptyNameClosesTheRoot)
{
    const struct {
        const char* markup;
        const char* tree;
        const char* rest; // what parse leaves unread
    } cases[] = {
        {"a</>b", R"("a")", "b"},
        {"a</ p>b<i>c</i>", R"("a")", "b<i>c</i>"},
        {"a</\tdiv\r\n>b", R"("a")", "b"},
        {"</>", "", ""},
        {"a</x>b</ >c", R"("a" "b")", "c"},
        {"<b><i>x</></ i></i></b>y</>z", R"(b{i{"x"}} "y")", "z"},
        {"<p>x</>y", R"(p{"x" "y"})", ""},
        {"<textarea>x</>y</textarea>z</>", R"(textarea{"x</>y"} "z")", ""},
        {"<style>x</ style>y</style>z", R"(style{"x</ style>y"} "z")", ""},
        {"a</", R"("a")", ""},
    };
    for (const auto& c : cases) {
        const ZString text = ZString::fromUtf8(c.markup);
        HtmlTagNode root;
        const ZChar* stop = HtmlParser::parse(&root, text.c_str());
        EXPECT_EQ(contentText(root), c.tree) << c.markup;
        ASSERT_NE(stop, nullptr) << c.markup;
        EXPECT_EQ(ZString(stop).toUtf8(), c.rest) << c.markup;
    }
    // An element with a name is never closed by an empty one.
    HtmlTagNode div(ZString(u"div"));
    const ZString inDiv(u"x</>y</ div>z");
    EXPECT_EQ(ZString(HtmlParser::parse(&div, inDiv.c_str())).toUtf8(), "");
    EXPECT_EQ(contentText(div), R"("x" "y" "z")");
}

// The dialog's own markup has no such end tag: the whole text is read, so its tree is as
// it always was.
TEST(HtmlParser, CaptureDialogMarkupIsReadToItsEnd)
{
    std::ifstream file(CAPTURE_UI_MARKUP, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    ASSERT_FALSE(bytes.empty()) << CAPTURE_UI_MARKUP;
    const ZString text = ZString::fromUtf8(bytes);
    HtmlTagNode root;
    EXPECT_EQ(HtmlParser::parse(&root, text.c_str()), text.c_str() + text.length());
    ASSERT_FALSE(root.children().empty());
    const HtmlNode& body = *root.children().front();
    ASSERT_TRUE(body.isTag());
    EXPECT_EQ(static_cast<const HtmlTagNode&>(body).name(), ZString(u"body"));
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
    auto root = parseDocument(ZString(reinterpret_cast<const ZChar*>((text + u"tail").c_str())));
    ASSERT_EQ(root->children().size(), 2u) << "the end tags close every level";
    int levels = 0;
    for (const HtmlNode* node = root->children()[0].get(); node->isTag(); ++levels)
        node = static_cast<const HtmlTagNode*>(node)->children().at(0).get();
    EXPECT_EQ(levels, depth); // deleting the chain at the end must not recurse either
}

TEST(HtmlEntities, NumericNamedAndMalformed)
{
    const std::pair<const char16_t*, std::u16string> cases[] = {
        // Numbers follow the rules of wcstol: decimal, "x" or "0x" hexadecimal, "0" octal.
        {u"&#65;&#X41;&#0x41;&#0101;", u"AAAA"}, {u"&#x1F600;", u"\uF600"}, // the low 16 bits
        {u"&#0x;&#-65;&#65a;&#65", u"&#0x;&#-65;&#65a;&#65"}, {u"&#00;x", std::u16string(u"\0x", 2)},
        // Names are case-sensitive; another "&" before the ";" ends a candidate.
        {u"a&amp;b&Yuml;", u"a&b\u0178"}, {u"&AMP;&foo;", u"&AMP;&foo;"}, {u"&amp&lt;x&", u"&amp<x&"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(decoded(text), expected) << ZString(text).toUtf8();
}

// Random markup (seeded, bounded) against the flat reading: text nodes are exactly its runs
// and elements exactly its start tags, so together they account for every unit outside
// comments and tags.
TEST(HtmlParserProperties, EqualToTheFlatReading)
{
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> length(0, 60);
    std::uniform_int_distribution<size_t> pick(0, std::size(fragments) - 1);
    for (int run = 0; run < 3000; ++run) {
        std::string input;
        for (int i = length(random); i > 0; --i)
            input += fragments[pick(random)];
        const ZString text = ZString::fromUtf8(input);
        const auto root = parseDocument(text);
        HtmlTagNode reference;
        readFlat(text, reference);
        ASSERT_EQ(contentText(*root, false), contentText(reference, false)) << input;
    }
}
