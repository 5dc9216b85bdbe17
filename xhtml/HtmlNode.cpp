#include "xhtml/HtmlNode.h"

namespace xhtml {

HtmlTagNode::~HtmlTagNode()
{
    // Every element is emptied into the work list before it is deleted, so no destructor
    // ever has children left to recurse into.
    std::vector<std::unique_ptr<HtmlNode>> pending = std::move(children_);
    while (!pending.empty()) {
        std::unique_ptr<HtmlNode> node = std::move(pending.back());
        pending.pop_back();
        if (node->isTag()) {
            auto& children = static_cast<HtmlTagNode&>(*node).children_;
            for (auto& child : children)
                pending.push_back(std::move(child));
            children.clear();
        }
    }
}

HtmlNode* HtmlTagNode::appendChild(std::unique_ptr<HtmlNode> child)
{
    child->parent_ = this;
    children_.push_back(std::move(child));
    return children_.back().get();
}

void HtmlTagNode::addAttribute(ZString name, ZString value)
{
    attributes_.push_back(HtmlAttribute{std::move(name), std::move(value)});
}

const ZString* HtmlTagNode::attribute(const ZString& name) const
{
    for (const HtmlAttribute& attribute : attributes_) {
        if (attribute.name == name)
            return &attribute.value;
    }
    return nullptr;
}

} // namespace xhtml
