#include "xhtml/view/View.h"

namespace xhtml {

View* View::appendChild(std::unique_ptr<View> child)
{
    child->parent = this;
    children.push_back(std::move(child));
    return children.back().get();
}

const ZString* View::attribute(const char16_t* name) const
{
    return element ? element->attribute(ZString(name)) : nullptr;
}

bool View::isBlockLevel() const
{
    if (style.display == StyleKeyword::block)
        return true;
    if (style.display == StyleKeyword::inlineValue || style.display == StyleKeyword::inlineBlock)
        return false;
    return kind == ViewKind::block || kind == ViewKind::table || kind == ViewKind::rule;
}

bool View::isAtom() const
{
    if (kind == ViewKind::image || kind == ViewKind::control)
        return true;
    return style.display == StyleKeyword::inlineBlock;
}

void View::translate(int dx, int dy)
{
    box = box.translated(dx, dy);
    for (TextFragment& fragment : fragments)
        fragment.box = fragment.box.translated(dx, dy);
    for (auto& child : children)
        child->translate(dx, dy);
}

Rect View::paddingBox() const
{
    return Rect{box.x + borderRoom(0), box.y + borderRoom(1), box.width - borderRoom(0) - borderRoom(2),
                box.height - borderRoom(1) - borderRoom(3)};
}

Rect View::contentBox() const
{
    const Rect padding = paddingBox();
    return Rect{padding.x + paddingOf(0), padding.y + paddingOf(1), padding.width - paddingOf(0) - paddingOf(2),
                padding.height - paddingOf(1) - paddingOf(3)};
}

} // namespace xhtml
