#pragma once
// The node tree of a parsed document: elements (HtmlTagNode) and runs of text
// (HtmlTextNode). An element owns its children; every node knows its enclosing element.

#include "base/ZString.h"
#include "xhtml/NodeMemory.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xhtml {

class HtmlTagNode;

class HtmlNode {
public:
    // The values are part of the toolkit's vocabulary (32-bit): 1 element, 2 text.
    enum class Kind : int32_t { tag = 1, text = 2 };

    virtual ~HtmlNode() = default;
    // Nodes live in NodeMemory, which a parse carves from shared chunks.
    static void* operator new(size_t size) { return NodeMemory::allocate(size); }
    static void operator delete(void* block, size_t size) noexcept { NodeMemory::release(block, size); }
    HtmlNode(const HtmlNode&) = delete;
    HtmlNode& operator=(const HtmlNode&) = delete;

    Kind kind() const { return kind_; }
    bool isTag() const { return kind_ == Kind::tag; }
    bool isText() const { return kind_ == Kind::text; }
    // The enclosing element, not owned; null for a root and for a node not yet appended.
    HtmlTagNode* parent() const { return parent_; }

protected:
    explicit HtmlNode(Kind kind) : kind_(kind) {}

private:
    friend class HtmlTagNode;
    Kind kind_;
    HtmlTagNode* parent_ = nullptr;
};

struct HtmlAttribute {
    ZString name;
    ZString value;
};

class HtmlTagNode : public HtmlNode {
public:
    using NodeList = std::vector<std::unique_ptr<HtmlNode>, NodeAllocator<std::unique_ptr<HtmlNode>>>;
    using AttributeList = std::vector<HtmlAttribute, NodeAllocator<HtmlAttribute>>;

    // The root of a document has an empty name.
    explicit HtmlTagNode(ZString name = ZString()) : HtmlNode(Kind::tag), name_(std::move(name)) {}
    // Deletes the whole subtree without recursion, so a deeply nested tree cannot overflow
    // the stack.
    ~HtmlTagNode() override;

    // Lower case, as parsed.
    const ZString& name() const { return name_; }

    // In document order. Appending invalidates iterators into the sequence.
    const NodeList& children() const { return children_; }
    // Takes the child, makes this its parent and returns it.
    HtmlNode* appendChild(std::unique_ptr<HtmlNode> child);

    // In the order written, duplicates included.
    const AttributeList& attributes() const { return attributes_; }
    void addAttribute(ZString name, ZString value);
    // The value of the first attribute with this (lower-case) name, or null.
    const ZString* attribute(const ZString& name) const;

private:
    void takeChildrenReversed(std::vector<std::unique_ptr<HtmlNode>>& into);

    NodeList children_;
    ZString name_;
    AttributeList attributes_;
};

class HtmlTextNode : public HtmlNode {
public:
    // The characters exactly as written: entities undecoded, white space uncollapsed.
    explicit HtmlTextNode(ZString text) : HtmlNode(Kind::text), text_(std::move(text)) {}

    const ZString& text() const { return text_; }
    ZString& text() { return text_; }

private:
    ZString text_;
};

} // namespace xhtml
