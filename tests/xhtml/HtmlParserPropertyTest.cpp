// Properties of the parser over generated markup (seeded, bounded): it always finishes, it is
// deterministic, its text nodes and tags account for every unit of the input, and its tree is
// the one a plain recursive reading of the rules gives.

#include "TreeText.h"

#include "xhtml/HtmlParser.h"
#include "xhtml/MarkupText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

// Fragments that exercise every rule: tags, end tags, raw content, comments, quotes, stray
// "<", entities, white space, non-ASCII letters.
const char* const fragments[] = {
    "<", ">", "/", "/>", "!", "<!--", "-->", "--", "<!", "</", "<b>", "</b>", "<i ", "</i>", "<B", "</B ",
    "<div class=\"x y\">", "</div>", "<img src=a.png>", "<br/>", "<textarea>", "</textarea>", "<style>",
    "</STYLE>", "</style", "=", "\"", "'", " ", "\t", "\r\n", "a", "x", "1", "value", "title", "<p", "</p>",
    "&amp;", "&#65;", "&", ";", "\xC3\xA9", "\xC3\x89", "\xE4\xB8\xAD", "<\xC3\xA9>", "< ", "<1", "</>",
    "<input value=\" a \">", "<a b='c'>", "<a b=\"c>d\">",
};

std::string randomMarkup(std::mt19937& random)
{
    std::uniform_int_distribution<int> length(0, 60);
    std::uniform_int_distribution<size_t> pick(0, sizeof fragments / sizeof fragments[0] - 1);
    std::string text;
    for (int i = length(random); i > 0; --i)
        text += fragments[pick(random)];
    return text;
}

std::vector<std::string> generatedInputs()
{
    std::mt19937 random(20240611);
    std::vector<std::string> inputs;
    for (int i = 0; i < 3000; ++i)
        inputs.push_back(randomMarkup(random));
    return inputs;
}

// A direct, recursive reading of the parser's rules, kept deliberately naive. Only for
// inputs of bounded size: its depth follows the nesting.
class ReferenceParser {
public:
    explicit ReferenceParser(const std::u16string& text) : s_(text) {}

    size_t parse(xhtml::HtmlTagNode& parent, size_t p)
    {
        const std::u16string name = toU16(parent.name());
        if (name == u"textarea" || name == u"style") {
            if (p >= s_.size())
                return p;
            size_t end = p;
            while (end < s_.size() && !(at(end) == '<' && at(end + 1) == '/' && nameFollows(end + 2, name)))
                ++end;
            parent.appendChild(std::make_unique<xhtml::HtmlTextNode>(z(s_.substr(p, end - p))));
            return end;
        }
        while (p < s_.size()) {
            if (s_.compare(p, 4, u"<!--") == 0) {
                const size_t close = s_.find(u"-->", p + 4);
                p = close == std::u16string::npos ? s_.size() : close + 3;
            } else if (at(p) == '<' && xhtml::isLetter(at(p + 1))) {
                p = startTag(parent, p + 1);
            } else if (at(p) == '<' && at(p + 1) == '/') {
                size_t q = p + 2;
                while (q < s_.size() && !xhtml::isSpace(at(q)) && at(q) != '>')
                    ++q;
                const std::u16string endName = lower(s_.substr(p + 2, q - p - 2));
                while (q < s_.size() && at(q) != '>')
                    ++q;
                p = q < s_.size() ? q + 1 : q;
                if (!endName.empty() && endName == name)
                    return p;
            } else {
                size_t q = p + 1;
                while (q < s_.size() && !(at(q) == '<' && (at(q + 1) == '/' || at(q + 1) == '!' || xhtml::isLetter(at(q + 1)))))
                    ++q;
                parent.appendChild(std::make_unique<xhtml::HtmlTextNode>(z(s_.substr(p, q - p))));
                p = q;
            }
        }
        return p;
    }

private:
    char16_t at(size_t i) const { return i < s_.size() ? s_[i] : 0; }
    bool tagEnd(size_t i) const { return at(i) == '>' || (at(i) == '/' && at(i + 1) == '>'); }

    size_t startTag(xhtml::HtmlTagNode& parent, size_t p)
    {
        size_t q = p;
        while (q < s_.size() && !xhtml::isSpace(at(q)) && !tagEnd(q))
            ++q;
        auto node = std::make_unique<xhtml::HtmlTagNode>(z(lower(s_.substr(p, q - p))));
        p = attributes(*node, q);
        auto* element = static_cast<xhtml::HtmlTagNode*>(parent.appendChild(std::move(node)));
        if (at(p) == '>')
            return parse(*element, p + 1);
        if (p < s_.size()) {
            const size_t close = s_.find(u'>', p);
            return close == std::u16string::npos ? s_.size() : close + 1;
        }
        return p;
    }

    size_t attributes(xhtml::HtmlTagNode& node, size_t p)
    {
        for (;;) {
            while (p < s_.size() && !xhtml::isLetter(at(p)) && !tagEnd(p))
                ++p;
            if (p >= s_.size() || tagEnd(p))
                return p;
            size_t q = p;
            while (q < s_.size() && at(q) != '=' && !xhtml::isSpace(at(q)) && !tagEnd(q))
                ++q;
            const std::u16string name = lower(trim(s_.substr(p, q - p)));
            while (xhtml::isSpace(at(q)))
                ++q;
            std::u16string value;
            if (at(q) == '=') {
                ++q;
                while (xhtml::isSpace(at(q)))
                    ++q;
                const char16_t quote = at(q) == '"' || at(q) == '\'' ? at(q) : 0;
                const size_t start = quote ? q + 1 : q;
                q = start;
                while (q < s_.size() && !tagEnd(q) && !(at(q) == '<' && xhtml::isLetter(at(q + 1)))
                       && (quote ? at(q) != quote : !xhtml::isSpace(at(q))))
                    ++q;
                value = s_.substr(start, q - start);
                if (name != u"value")
                    value = trim(value);
            }
            node.addAttribute(z(name), z(value));
            p = q;
        }
    }

    bool nameFollows(size_t i, const std::u16string& name) const
    {
        for (size_t k = 0; k < name.size(); ++k) {
            if (i + k >= s_.size() || ZString::toLower(static_cast<ZChar>(s_[i + k])) != static_cast<ZChar>(name[k]))
                return false;
        }
        return true;
    }

    static std::u16string lower(std::u16string text)
    {
        for (char16_t& unit : text)
            unit = static_cast<char16_t>(ZString::toLower(static_cast<ZChar>(unit)));
        return text;
    }
    static std::u16string trim(const std::u16string& text)
    {
        size_t a = 0, b = text.size();
        while (a < b && xhtml::isSpace(text[a]))
            ++a;
        while (b > a && xhtml::isSpace(text[b - 1]))
            --b;
        return text.substr(a, b - a);
    }
    static ZString z(const std::u16string& text)
    {
        return ZString(reinterpret_cast<const ZChar*>(text.data()), static_cast<int>(text.size()));
    }
    static std::u16string toU16(const ZString& text)
    {
        return std::u16string(reinterpret_cast<const char16_t*>(text.c_str()), static_cast<size_t>(text.length()));
    }

    const std::u16string& s_;
};

std::u16string units(const ZString& text)
{
    return std::u16string(reinterpret_cast<const char16_t*>(text.c_str()), static_cast<size_t>(text.length()));
}

void collect(const xhtml::HtmlTagNode& node, std::vector<std::u16string>& texts, int& tags)
{
    for (const auto& child : node.children()) {
        if (child->isText()) {
            texts.push_back(units(static_cast<const xhtml::HtmlTextNode&>(*child).text()));
        } else {
            ++tags;
            collect(static_cast<const xhtml::HtmlTagNode&>(*child), texts, tags);
        }
    }
}

// A stretch of input that no text node holds: a tag, an end tag or a comment, or several;
// each begins with "<" and, unless it runs to the end, ends with ">".
bool isMarkupGap(const std::u16string& input, size_t from, size_t to)
{
    if (from == to)
        return true;
    return input[from] == '<' && (to == input.size() || input[to - 1] == '>');
}

int tagStartsIn(const std::u16string& input, size_t from, size_t to)
{
    int count = 0;
    for (size_t i = from; i < to && i + 1 < input.size(); ++i)
        count += input[i] == '<' && xhtml::isLetter(input[i + 1]);
    return count;
}

// Places the text nodes from `index` on in the input from `cursor` on, in order, each after
// a gap of markup, trying every placement (a text may also occur inside a tag). Adds the
// "<" + letter starts of the gaps of the first placement that works to `tagStarts`.
bool placeTexts(const std::u16string& input, const std::vector<std::u16string>& texts, size_t index, size_t cursor,
                int& tagStarts, std::vector<std::vector<bool>>& failed)
{
    if (index == texts.size()) {
        if (!isMarkupGap(input, cursor, input.size()))
            return false;
        tagStarts += tagStartsIn(input, cursor, input.size());
        return true;
    }
    if (failed[index][cursor])
        return false;
    const std::u16string& text = texts[index];
    for (size_t at = input.find(text, cursor); at != std::u16string::npos; at = input.find(text, at + 1)) {
        if (!isMarkupGap(input, cursor, at))
            continue;
        if (placeTexts(input, texts, index + 1, at + text.size(), tagStarts, failed)) {
            tagStarts += tagStartsIn(input, cursor, at);
            return true;
        }
    }
    failed[index][cursor] = true;
    return false;
}

bool textsAccountForInput(const std::u16string& input, const std::vector<std::u16string>& texts, int& tagStarts)
{
    std::vector<std::vector<bool>> failed(texts.size(), std::vector<bool>(input.size() + 1, false));
    tagStarts = 0;
    return placeTexts(input, texts, 0, 0, tagStarts, failed);
}

} // namespace

TEST(HtmlParserProperties, DeterministicAndEqualToTheRecursiveReading)
{
    for (const std::string& input : generatedInputs()) {
        const ZString text = ZString::fromUtf8(input);
        const std::string first = xhtmltest::contentText(*xhtmltest::parseDocument(text));
        const std::string second = xhtmltest::contentText(*xhtmltest::parseDocument(text));
        ASSERT_EQ(first, second) << input;

        const std::u16string source = units(text);
        xhtml::HtmlTagNode reference;
        ReferenceParser(source).parse(reference, 0);
        ASSERT_EQ(first, xhtmltest::contentText(reference)) << input;
    }
}

TEST(HtmlParserProperties, TextAndTagsAccountForEveryUnit)
{
    for (const std::string& input : generatedInputs()) {
        const ZString text = ZString::fromUtf8(input);
        auto root = xhtmltest::parseDocument(text);
        std::vector<std::u16string> texts;
        int tags = 0;
        collect(*root, texts, tags);
        int tagStarts = 0;
        ASSERT_TRUE(textsAccountForInput(units(text), texts, tagStarts)) << input;
        ASSERT_LE(tags, tagStarts) << input;
    }
}

TEST(HtmlParserProperties, ReturnValueIsWithinTheText)
{
    for (const std::string& input : generatedInputs()) {
        const ZString text = ZString::fromUtf8(input);
        xhtml::HtmlTagNode element(ZString(u"b"));
        const ZChar* end = xhtml::HtmlParser::parse(&element, text.c_str());
        if (text.isEmpty()) {
            ASSERT_EQ(end, nullptr);
            continue;
        }
        ASSERT_GE(end, text.c_str()) << input;
        ASSERT_LE(end, text.c_str() + text.length()) << input;
        // Either the end, or just after the "</b ...>" that closed the element.
        if (end != text.c_str() + text.length()) {
            ASSERT_EQ(end[-1], '>') << input;
        }
    }
}
