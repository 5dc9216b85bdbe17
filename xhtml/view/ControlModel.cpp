#include "xhtml/view/ControlModel.h"

namespace xhtml {

bool ControlModel::selectValue(const ZString& optionValue)
{
    for (size_t i = 0; i < options.size(); ++i) {
        if (options[i].value != optionValue)
            continue;
        if (multiple)
            options[i].selected = true;
        else
            selectOnly(static_cast<int>(i));
        return true;
    }
    return false;
}

ZString ControlModel::selectedValue() const
{
    for (const SelectOption& option : options) {
        if (option.selected)
            return option.value;
    }
    if (!multiple && !options.empty())
        return options.front().value;
    return ZString();
}

int ControlModel::shownIndex() const
{
    for (size_t i = 0; i < options.size(); ++i) {
        if (options[i].selected)
            return static_cast<int>(i);
    }
    return options.empty() ? -1 : 0;
}

void ControlModel::selectOnly(int index)
{
    for (size_t i = 0; i < options.size(); ++i)
        options[i].selected = static_cast<int>(i) == index;
}

} // namespace xhtml
