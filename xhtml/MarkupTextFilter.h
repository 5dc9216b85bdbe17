#pragma once
// The hook through which a markup host rewrites the markup text before it is parsed.

#include "base/ZString.h"

namespace xhtml {

class MarkupTextFilter {
public:
    virtual ~MarkupTextFilter() = default;

    // Sees the whole markup text before it is parsed and may rewrite it in place (the
    // capture dialog replaces its language keys here). The default leaves it unchanged.
    virtual void filterMarkup(ZString& text) { (void)text; }
};

} // namespace xhtml
