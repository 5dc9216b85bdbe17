#pragma once
// A compact text form of a node tree for expectations: an element is name(attributes){...},
// an attribute name=[value], a text node "text". Example: body{"a" b(x=[1]){"c"}}.

#include "base/ZString.h"
#include "xhtml/HtmlParser.h"

#include <memory>
#include <string>

namespace xhtmltest {

// The children of a node in text form, without the node itself; attributes on request.
inline std::string contentText(const xhtml::HtmlTagNode& parent, bool attributes = true)
{
    std::string out;
    for (const auto& child : parent.children()) {
        out += out.empty() ? "" : " ";
        if (child->isText()) {
            out += '"' + static_cast<const xhtml::HtmlTextNode&>(*child).text().toUtf8() + '"';
            continue;
        }
        const auto& tag = static_cast<const xhtml::HtmlTagNode&>(*child);
        std::string list;
        for (const xhtml::HtmlAttribute& attribute : tag.attributes()) {
            if (attributes)
                list += (list.empty() ? "(" : " ") + attribute.name.toUtf8() + "=[" + attribute.value.toUtf8() + "]";
        }
        out += tag.name().toUtf8() + list + (list.empty() ? "" : ")");
        if (!tag.children().empty())
            out += '{' + contentText(tag, attributes) + '}';
    }
    return out;
}

inline std::unique_ptr<xhtml::HtmlTagNode> parseDocument(const ZString& text)
{
    auto root = std::make_unique<xhtml::HtmlTagNode>();
    xhtml::HtmlParser::parse(root.get(), text.c_str());
    return root;
}

} // namespace xhtmltest
