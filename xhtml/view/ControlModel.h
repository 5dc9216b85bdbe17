#pragma once
// The state of one form control, independent of the native window that shows it: its
// kind, name and value, the checked mark, and a select's options.

#include "base/ZString.h"

#include <vector>

namespace xhtml {

enum class ControlType { button, checkbox, radio, text, password, hidden, file, textarea, select };

struct SelectOption {
    ZString value;
    ZString label;
    bool selected = false;
};

class ControlModel {
public:
    ControlType type = ControlType::text;
    ZString name;
    ZString value; // the text of a text field or text area, the caption of a button
    bool checked = false;
    bool disabled = false;
    bool readOnly = false;
    bool multiple = false; // a select that allows several choices, shown as a list
    int visibleRows = 0;   // a select's "size", a text area's "rows"; 0: the default
    int columns = 0;       // a text field's "size", a text area's "cols"; 0: the default
    std::vector<SelectOption> options;

    // A select shown as a list rather than a drop-down.
    bool isList() const { return type == ControlType::select && (multiple || visibleRows > 1); }
    // Text fields of every kind (text, password, hidden, file, text area): `value` is their text.
    bool holdsText() const
    {
        return type != ControlType::button && type != ControlType::checkbox && type != ControlType::radio
               && type != ControlType::select;
    }
    bool isCheckable() const { return type == ControlType::checkbox || type == ControlType::radio; }

    // Selects the option with this value, quietly. In a single-choice select every other
    // option loses its mark. Without such an option the selection stays; false then.
    bool selectValue(const ZString& optionValue);
    // The value of the first selected option; a single-choice select without a mark shows
    // its first option, so that one counts. Empty without options.
    ZString selectedValue() const;
    // The option the single-choice select shows, or -1 without options.
    int shownIndex() const;
    // Makes exactly this option the selected one (a single-choice change by the user).
    void selectOnly(int index);
};

} // namespace xhtml
