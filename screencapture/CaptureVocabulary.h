#pragma once
// The names of modes and targets, as used in settings, command lines and the dialog.
// Portable: the same tables and look-ups natively and on Windows.

#include "base/ZString.h"
#include "screencapture/CaptureApi.h"

namespace screenCapture {

template <typename Value>
struct NamedValue {
    const ZChar* name; // null in the row that ends a table
    Value value;
};

// Look-ups scan from the top, so the order of the rows decides between duplicates.
extern const NamedValue<Mode> modeNames[];
extern const NamedValue<Target> targetNames[];

// The name of the first row with this value, or null. The pointer is into the table.
const ZChar* nameOf(Mode mode);
const ZChar* nameOf(Target target);
// The value of the first row whose name equals `name` exactly (case, no trimming), or 0.
// `name` must not be null.
Mode modeNamed(const ZChar* name);
Target targetNamed(const ZChar* name);

} // namespace screenCapture
