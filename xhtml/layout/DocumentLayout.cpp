#include "xhtml/layout/DocumentLayout.h"

#include "xhtml/layout/LayoutEngine.h"

#include <algorithm>

namespace xhtml {

Size layoutDocument(View& root, Canvas& canvas, double scale, int width, int height)
{
    LayoutEnv env(canvas, scale);
    // The root is the viewport: a fixed viewport height is the base of its children's
    // percentage heights.
    root.style.height = height >= 0 ? Length::pixels(height) : Length();
    layoutBlock(root, env, 0, 0, std::max(0, width), height);
    if (height < 0)
        return Size{root.box.width, root.box.height};
    // In a fixed viewport the content's own height is where its last piece ends.
    int bottom = 0;
    for (const auto& child : root.children) {
        if (child->isDisplayed())
            bottom = std::max(bottom, child->box.bottom() + marginOf(*child, 3, width));
    }
    return Size{root.box.width, bottom};
}

int preferredDocumentWidth(View& root, Canvas& canvas, double scale)
{
    LayoutEnv env(canvas, scale);
    return maxContentWidth(root, env);
}

} // namespace xhtml
