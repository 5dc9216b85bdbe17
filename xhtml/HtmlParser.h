#pragma once
// The forgiving markup parser: any text gives a tree. Nothing is rejected; what cannot be
// placed is dropped or kept as text.

#include "base/ZString.h"
#include "xhtml/HtmlNode.h"

namespace xhtml {

class HtmlParser {
public:
    // content := { comment | start-tag | end-tag | text } up to the parent's end tag or the end
    // Parses the zero-terminated `text` as the content of `parent` and appends the nodes it
    // makes to parent's children. Returns the position just after the end tag that closed
    // `parent` (for a raw-content parent, "textarea" or "style", the position of that end
    // tag), or the end of the text. An end tag with an empty name ("</>", "</ p>") closes a
    // parent whose name is empty, such as a document's root. A null parent, a null text or
    // an empty text does nothing and returns null.
    //
    // Elements nest without recursion, so any depth of nesting fits on any stack; the tree is
    // the one the recursive reading of the rules gives.
    static const ZChar* parse(HtmlTagNode* parent, const ZChar* text);
};

} // namespace xhtml
