#include "xhtml/view/StyleResolver.h"

#include "xhtml/MarkupText.h"

namespace xhtml {

StyleDef effectiveDeclared(const View& view)
{
    const int state = static_cast<int>(view.state);
    if (state == 0 || !view.hasStateStyle[state])
        return view.declared[0];
    StyleDef merged = view.declared[0];
    // Shorthands come before their components in property order, so the state's own
    // components win over a shorthand set for the normal state.
    for (int property = 0; property < stylePropertyCount; ++property) {
        if (const StyleValue* value = view.declared[state].get(static_cast<StyleProperty>(property)))
            merged.set(static_cast<StyleProperty>(property), *value);
    }
    return merged;
}

void restyle(View& view, const ComputedStyle* parent, double scale)
{
    const int parentPixels = parent ? parent->font.pixelSize : 0;
    view.style = computeStyle(effectiveDeclared(view), parent, view.defaultDisplay, scale);
    view.baselineShift = 0;
    if (view.element && equals(view.element->name(), u"sup"))
        view.baselineShift = -parentPixels / 3;
    else if (view.element && equals(view.element->name(), u"sub"))
        view.baselineShift = parentPixels / 4;
    if (view.kind == ViewKind::control && view.control && view.control->type == ControlType::hidden)
        view.style.display = StyleKeyword::none;
    for (auto& child : view.children)
        restyle(*child, &view.style, scale);
}

} // namespace xhtml
