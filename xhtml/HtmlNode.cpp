#include "xhtml/HtmlNode.h"

namespace xhtml {

HtmlTagNode::~HtmlTagNode()
{
    // Every element is emptied into the work list before it is deleted, so no destructor
    // ever has children left to recurse into. Nodes go in document order.
    std::vector<std::unique_ptr<HtmlNode>> pending;
    takeChildrenReversed(pending);
    while (!pending.empty()) {
        std::unique_ptr<HtmlNode> node = std::move(pending.back());
        pending.pop_back();
        if (node->isTag())
            static_cast<HtmlTagNode&>(*node).takeChildrenReversed(pending);
    }
}

void HtmlTagNode::takeChildrenReversed(std::vector<std::unique_ptr<HtmlNode>>& into)
{
    for (auto it = children_.rbegin(); it != children_.rend(); ++it)
        into.push_back(std::move(*it));
    children_.clear();
    children_.shrink_to_fit();
}

HtmlNode* HtmlTagNode::appendChild(std::unique_ptr<HtmlNode> child)
{
    child->parent_ = this;
    if (children_.empty())
        children_.reserve(4); // skips the first regrowths, which most elements would pay
    children_.push_back(std::move(child));
    return children_.back().get();
}

void HtmlTagNode::addAttribute(ZString name, ZString value)
{
    if (attributes_.empty())
        attributes_.reserve(2);
    HtmlAttribute& added = attributes_.emplace_back();
    added.name = std::move(name);
    added.value = std::move(value);
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
