#pragma once
// A compact text form of a node tree for expectations: an element is name(attributes){...},
// an attribute name=[value], a text node "text". Example: body{"a" b(x=[1]){"c"}}.

#include "base/ZString.h"
#include "xhtml/HtmlNode.h"
#include "xhtml/HtmlParser.h"

#include <memory>
#include <string>

namespace xhtmltest {

inline void appendTree(const xhtml::HtmlNode& node, std::string& out)
{
    if (node.isText()) {
        out += '"' + static_cast<const xhtml::HtmlTextNode&>(node).text().toUtf8() + '"';
        return;
    }
    const auto& tag = static_cast<const xhtml::HtmlTagNode&>(node);
    out += tag.name().toUtf8();
    if (!tag.attributes().empty()) {
        out += '(';
        for (size_t i = 0; i < tag.attributes().size(); ++i) {
            const xhtml::HtmlAttribute& attribute = tag.attributes()[i];
            out += (i ? " " : "") + attribute.name.toUtf8() + "=[" + attribute.value.toUtf8() + "]";
        }
        out += ')';
    }
    if (!tag.children().empty()) {
        out += '{';
        for (size_t i = 0; i < tag.children().size(); ++i) {
            if (i)
                out += ' ';
            appendTree(*tag.children()[i], out);
        }
        out += '}';
    }
}

// The children of a root, without the root itself.
inline std::string contentText(const xhtml::HtmlTagNode& root)
{
    std::string out;
    for (size_t i = 0; i < root.children().size(); ++i) {
        if (i)
            out += ' ';
        appendTree(*root.children()[i], out);
    }
    return out;
}

inline std::unique_ptr<xhtml::HtmlTagNode> parseDocument(const ZString& text)
{
    auto root = std::make_unique<xhtml::HtmlTagNode>();
    xhtml::HtmlParser::parse(root.get(), text.c_str());
    return root;
}

// Parses UTF-8 markup into a fresh root and gives the root's content in text form.
inline std::string parsed(const std::string& utf8)
{
    return contentText(*parseDocument(ZString::fromUtf8(utf8)));
}

} // namespace xhtmltest
