#pragma once
// Builds the view tree from a document's node tree: one view for each element the toolkit
// knows, text with its white space collapsed and its entities decoded, the controls' models,
// and each view's declared style for every pointer state. Elements it does not know have no
// view; their content is built in their place. The content of "style" elements becomes
// style rules; the content of "head", "title" and "script" is not shown.

#include "xhtml/HtmlNode.h"
#include "xhtml/StyleRules.h"
#include "xhtml/view/View.h"

#include <memory>

namespace xhtml {

class ViewBuilder {
public:
    // `rules` receives the document's own style sheets and is then matched against every
    // element. Image addresses are resolved against `baseAddress`.
    static std::unique_ptr<View> build(const HtmlTagNode& root, StyleRuleList& rules, const ZString& baseAddress);

    // Collapses every run of white space to one space, then decodes the entities (so that
    // "&nbsp;" survives as U+00A0).
    static ZString collapsedText(const ZString& raw);
};

// `address` relative to the markup's address `base`: absolute addresses (with "://") stay,
// others replace the last path segment of the base.
ZString resolveAddress(const ZString& base, const ZString& address);

} // namespace xhtml
