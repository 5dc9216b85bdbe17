#include "xhtml/layout/DocumentLayout.h"

#include "xhtml/layout/LayoutEngine.h"

#include <algorithm>

namespace xhtml {

Size layoutDocument(View& root, Canvas& canvas, double scale, int width, int height)
{
    LayoutEnv env(canvas, scale);
    layoutBlock(root, env, 0, 0, std::max(0, width), height);
    return Size{root.box.width, root.box.height};
}

int preferredDocumentWidth(View& root, Canvas& canvas, double scale)
{
    LayoutEnv env(canvas, scale);
    return maxContentWidth(root, env);
}

} // namespace xhtml
