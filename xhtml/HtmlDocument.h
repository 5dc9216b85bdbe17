#pragma once
// The document of a markup host: the tree of the markup last set, with its base address.
// The host clears its views before setting markup and builds them from root() afterwards.

#include "base/ZString.h"
#include "xhtml/HtmlNode.h"
#include "xhtml/MarkupTextFilter.h"

#include <memory>

namespace xhtml {

class HtmlDocument {
public:
    HtmlDocument();

    // Keeps `baseAddress` when it is not empty, passes a copy of `text` through `filter`,
    // deletes the old tree and parses the filtered text into a new root with an empty name.
    // References to nodes of the old tree are invalid afterwards.
    void setMarkup(const ZString& text, MarkupTextFilter& filter, const ZString& baseAddress = ZString());

    // The root has an empty name; the document's top-level elements are its children.
    HtmlTagNode& root() { return *root_; }
    const HtmlTagNode& root() const { return *root_; }
    const ZString& baseAddress() const { return baseAddress_; }

private:
    std::unique_ptr<HtmlTagNode> root_;
    ZString baseAddress_;
};

} // namespace xhtml
