#include "xhtml/HtmlDocument.h"

#include "xhtml/HtmlParser.h"

namespace xhtml {

HtmlDocument::HtmlDocument() : root_(std::make_unique<HtmlTagNode>()) {}

void HtmlDocument::setMarkup(const ZString& text, MarkupTextFilter& filter, const ZString& baseAddress)
{
    if (!baseAddress.isEmpty())
        baseAddress_ = baseAddress;
    ZString filtered = text;
    filter.filterMarkup(filtered);
    root_ = std::make_unique<HtmlTagNode>();
    HtmlParser::parse(root_.get(), filtered.c_str());
}

} // namespace xhtml
