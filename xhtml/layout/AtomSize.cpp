#include "xhtml/layout/LayoutEngine.h"

#include <algorithm>
#include <cmath>

namespace xhtml {

namespace {

// Native control metrics at 96 DPI.
constexpr int kButtonPadding = 12;
constexpr int kButtonMinimumWidth = 60;
constexpr int kFieldPadding = 8;
constexpr int kDropDownArrow = 20;
constexpr int kScrollBar = 17;
constexpr int kCheckBox = 13;
constexpr int kListRowGap = 2;

Size controlSize(View& view, LayoutEnv& env)
{
    const ControlModel& control = *view.control;
    const FontDescription& font = view.style.font;
    const int lineHeight = env.metrics(font).height();
    const int average = std::max(1, env.textWidth(font, ZString(u"x")));
    switch (control.type) {
    case ControlType::button:
        return Size{std::max(env.textWidth(font, control.value) + 2 * env.scaled(kButtonPadding), env.scaled(kButtonMinimumWidth)),
                    lineHeight + env.scaled(10)};
    case ControlType::checkbox:
    case ControlType::radio:
        return Size{env.scaled(kCheckBox), env.scaled(kCheckBox)};
    case ControlType::hidden:
        return Size{};
    case ControlType::textarea: {
        const int columns = control.columns > 0 ? control.columns : 20;
        const int rows = control.visibleRows > 0 ? control.visibleRows : 2;
        return Size{columns * average + env.scaled(kFieldPadding + kScrollBar), rows * lineHeight + env.scaled(kFieldPadding)};
    }
    case ControlType::select: {
        int widest = 0;
        for (const SelectOption& option : control.options)
            widest = std::max(widest, env.textWidth(font, option.label));
        if (control.isList()) {
            const int rows = control.visibleRows > 1 ? control.visibleRows : 4;
            return Size{widest + env.scaled(kFieldPadding + kScrollBar),
                        rows * (lineHeight + env.scaled(kListRowGap)) + env.scaled(4)};
        }
        return Size{widest + env.scaled(kFieldPadding + kDropDownArrow), lineHeight + env.scaled(kFieldPadding)};
    }
    default: {
        const int columns = control.columns > 0 ? control.columns : 20;
        return Size{columns * average + env.scaled(kFieldPadding), lineHeight + env.scaled(kFieldPadding)};
    }
    }
}

// An image's natural size, scaled; one given side keeps the proportions.
Size imageSize(View& view, LayoutEnv& env, int available)
{
    const std::optional<Size> natural = env.canvas().imageSize(view.source);
    const int naturalWidth = natural ? env.scaled(natural->width) : 0;
    const int naturalHeight = natural ? env.scaled(natural->height) : 0;
    int width = view.style.width.resolve(available, -1);
    int height = view.style.height.resolve(-1, -1);
    if (width < 0 && height < 0)
        return Size{naturalWidth, naturalHeight};
    if (width < 0)
        width = naturalHeight > 0 ? static_cast<int>(std::lround(double(height) * naturalWidth / naturalHeight)) : 0;
    if (height < 0)
        height = naturalWidth > 0 ? static_cast<int>(std::lround(double(width) * naturalHeight / naturalWidth)) : 0;
    return Size{width, height};
}

} // namespace

Size atomSize(View& view, LayoutEnv& env, int available)
{
    resolvePadding(view, available);
    if (view.kind == ViewKind::image) {
        const Size content = imageSize(view, env, available);
        return Size{content.width + frameWidth(view), content.height + frameHeight(view)};
    }
    Size size = controlSize(view, env);
    if (view.style.width.set)
        size.width = view.style.width.resolve(available, size.width);
    if (view.style.height.set && !view.style.height.percent)
        size.height = view.style.height.resolve(-1, size.height);
    return size;
}

} // namespace xhtml
