#include "xhtml/PointerState.h"

#include "xhtml/MarkupText.h"

namespace xhtml {

namespace {

struct StateName {
    const char16_t* name;
    PointerState state;
};

constexpr StateName stateNames[] = {
    {u"normal", PointerState::normal},
    {u"hover", PointerState::over},
    {u"hoover", PointerState::over},
    {u"mo", PointerState::over},
    {u"leftbuttondown", PointerState::leftButtonDown},
    {u"lbd", PointerState::leftButtonDown},
    {u"rightbuttondown", PointerState::rightButtonDown},
    {u"rbd", PointerState::rightButtonDown},
};

} // namespace

std::optional<PointerState> pointerStateFromName(const ZString& name)
{
    const ZString key = name.trim().toLower();
    for (const StateName& entry : stateNames) {
        if (equals(key, entry.name))
            return entry.state;
    }
    return std::nullopt;
}

const char16_t* styleAttributeName(PointerState state)
{
    switch (state) {
    case PointerState::over:
        return u"mostyle";
    case PointerState::leftButtonDown:
        return u"lbdstyle";
    case PointerState::rightButtonDown:
        return u"rbdstyle";
    case PointerState::normal:
        break;
    }
    return u"style";
}

} // namespace xhtml
