#include "FuzzTargets.h"

#include "xhtml/ColourTable.h"
#include "xhtml/HtmlEntities.h"
#include "xhtml/HtmlParser.h"
#include "xhtml/StyleDef.h"
#include "xhtml/StyleRules.h"

namespace xhtmlfuzz {

namespace {

// Input bytes as text: UTF-16LE after a byte order mark (so any code unit, lone surrogates
// and zeros included, can be reached), UTF-8 otherwise.
ZString textOf(const uint8_t* data, size_t size)
{
    if (size >= 2 && data[0] == 0xFF && data[1] == 0xFE) {
        ZString::Storage units;
        for (size_t i = 2; i + 1 < size; i += 2)
            units.push_back(static_cast<ZChar>(data[i] | (data[i + 1] << 8)));
        return ZString(std::move(units));
    }
    return ZString::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
}

// A fingerprint of the tree's shape and content, to compare two parses; false when a child
// does not name its parent. Iterative, as the tree may be very deep.
bool fingerprint(const xhtml::HtmlTagNode& root, ZString::Storage& out)
{
    std::vector<const xhtml::HtmlNode*> pending{&root};
    while (!pending.empty()) {
        const xhtml::HtmlNode* node = pending.back();
        pending.pop_back();
        if (node->isText()) {
            out += static_cast<const xhtml::HtmlTextNode*>(node)->text().units() + ZChar(1);
            continue;
        }
        const auto* tag = static_cast<const xhtml::HtmlTagNode*>(node);
        out += tag->name().units();
        for (const xhtml::HtmlAttribute& attribute : tag->attributes())
            out += attribute.name.units() + ZChar(2) + attribute.value.units();
        out.push_back(static_cast<ZChar>(3 + tag->children().size() % 1000));
        for (auto it = tag->children().rbegin(); it != tag->children().rend(); ++it) {
            if ((*it)->parent() != tag)
                return false;
            pending.push_back(it->get());
        }
    }
    return true;
}

} // namespace

bool parseMarkup(const uint8_t* data, size_t size)
{
    const ZString text = textOf(data, size);
    const ZChar* end = text.c_str() + text.length();
    ZString::Storage prints[2];
    for (ZString::Storage& print : prints) {
        xhtml::HtmlTagNode root;
        const ZChar* stop = xhtml::HtmlParser::parse(&root, text.c_str());
        // Text with an embedded zero ends there, as a zero-terminated text does.
        if ((stop && (stop < text.c_str() || stop > end)) || !fingerprint(root, print))
            return false;
    }
    // Inside a raw-content element the result stops at its end tag, if any.
    xhtml::HtmlTagNode textarea(ZString(u"textarea"));
    const ZChar* stop = xhtml::HtmlParser::parse(&textarea, text.c_str());
    return prints[0] == prints[1] && (!stop || (stop >= text.c_str() && stop <= end && textarea.children().size() <= 1));
}

bool decodeEntityText(const uint8_t* data, size_t size)
{
    const ZString text = textOf(data, size);
    ZString decoded = text;
    xhtml::decodeEntities(decoded);
    // Every reference is at least as long as what replaces it; text without "&" is untouched.
    return decoded.length() <= text.length() && (text.find(ZChar('&')) != ZString::npos || decoded == text);
}

bool parseStyleText(const uint8_t* data, size_t size)
{
    const ZString text = textOf(data, size);
    xhtml::StyleDef first, second;
    first.parse(text);
    second.parse(text);
    xhtml::parseColour(text);
    xhtml::parseLength(text);
    xhtml::parseGradient(text);
    xhtml::StyleRuleList rules;
    rules.addSheet(text);
    xhtml::HtmlTagNode element(ZString(u"div"));
    element.addAttribute(ZString(u"class"), text);
    element.addAttribute(ZString(u"style"), text);
    rules.styleFor(element, xhtml::PointerState::normal);
    return first.size() == second.size() && first.size() <= xhtml::stylePropertyCount;
}

} // namespace xhtmlfuzz
