// The parser over generated markup (seeded, bounded) gives the tree of a flat reading of the
// input, which splits it into comments, tags and text runs: text nodes are exactly the runs
// and elements exactly the start tags, so together they account for every unit outside
// comments and tags.

#include "TreeText.h"

#include "xhtml/HtmlParser.h"
#include "xhtml/MarkupText.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

// Fragments that exercise every rule, non-ASCII letters included.
const char* const fragments[] = {
    "<", ">", "/", "/>", "!", "<!--", "-->", "--", "<!", "</", "<b>", "</b>", "<i ", "</i>", "<B", "</B ",
    "<div class=\"x y\">", "</div>", "<img src=a.png>", "<br/>", "<textarea>", "</textarea>", "<style>",
    "</STYLE>", "</style", "=", "\"", "'", " ", "\t", "\r\n", "a", "x", "1", "value", "title", "<p", "</p>",
    "&amp;", "&#65;", "&", ";", "\xC3\xA9", "\xC3\x89", "\xE4\xB8\xAD", "<\xC3\xA9>", "< ", "<1", "</>",
    "<input value=\" a \">", "<a b='c'>", "<a b=\"c>d\">",
};

std::u16string lower(std::u16string text)
{
    for (char16_t& unit : text)
        unit = static_cast<char16_t>(ZString::toLower(static_cast<ZChar>(unit)));
    return text;
}

// The flat reading. A comment runs to "-->", a tag from "<" to the first ">" (attribute
// values stop there even inside quotes), either to the end if unclosed. A start tag ending
// in "/>" is empty; any other opens an element, which an end tag of its name closes (an end
// tag never closes an outer element). textarea and style hold all up to "</" and their name.
void readFlat(const std::u16string& s, xhtml::HtmlTagNode& root)
{
    auto at = [&](size_t i) -> char16_t { return i < s.size() ? s[i] : 0; };
    auto after = [&](const char16_t* what, size_t from) {
        const size_t found = s.find(what, from);
        return found == std::u16string::npos ? s.size() : found + std::char_traits<char16_t>::length(what);
    };
    auto zstring = [](const std::u16string& run) { return ZString(reinterpret_cast<const ZChar*>(run.data()), int(run.size())); };
    auto text = [&](size_t from, size_t to) {
        return std::make_unique<xhtml::HtmlTextNode>(zstring(s.substr(from, to - from)));
    };
    std::vector<xhtml::HtmlTagNode*> open{&root};
    for (size_t p = 0; p < s.size();) {
        if (s.compare(p, 4, u"<!--") == 0) {
            p = after(u"-->", p + 4);
        } else if (at(p) == '<' && (at(p + 1) == '/' || xhtml::isLetter(at(p + 1)))) {
            const bool endTag = at(p + 1) == '/';
            const size_t nameStart = p + (endTag ? 2 : 1);
            size_t q = nameStart;
            while (q < s.size() && !xhtml::isSpace(at(q)) && at(q) != '>' && !(!endTag && at(q) == '/' && at(q + 1) == '>'))
                ++q;
            const std::u16string name = lower(s.substr(nameStart, q - nameStart));
            p = after(u">", p);
            if (endTag) {
                if (!name.empty() && zstring(name) == open.back()->name())
                    open.pop_back();
                continue;
            }
            auto* element = static_cast<xhtml::HtmlTagNode*>(
                open.back()->appendChild(std::make_unique<xhtml::HtmlTagNode>(zstring(name))));
            if (s[p - 1] != '>' || s[p - 2] == '/')
                continue; // cut off by the end, or empty
            if (name != u"textarea" && name != u"style") {
                open.push_back(element);
            } else if (p < s.size()) {
                for (q = p; q < s.size() && !(at(q) == '<' && at(q + 1) == '/' && lower(s.substr(q + 2, name.size())) == name);)
                    ++q;
                element->appendChild(text(p, q));
                p = q;
            }
        } else {
            size_t q = p + 1;
            while (q < s.size() && !(at(q) == '<' && (at(q + 1) == '/' || at(q + 1) == '!' || xhtml::isLetter(at(q + 1)))))
                ++q;
            open.back()->appendChild(text(p, q));
            p = q;
        }
    }
}

} // namespace

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
        const auto root = xhtmltest::parseDocument(text);
        xhtml::HtmlTagNode reference;
        readFlat(std::u16string(reinterpret_cast<const char16_t*>(text.c_str()), size_t(text.length())), reference);
        ASSERT_EQ(xhtmltest::contentText(*root, false), xhtmltest::contentText(reference, false)) << input;

        // Inside an element: the end, or just after the ">" of the end tag that closed it.
        xhtml::HtmlTagNode b(ZString(u"b"));
        const ZChar* end = xhtml::HtmlParser::parse(&b, text.c_str());
        const ZChar* last = text.c_str() + text.length();
        ASSERT_TRUE(text.isEmpty() ? !end : end > text.c_str() && end <= last && (end == last || end[-1] == '>')) << input;
    }
}
