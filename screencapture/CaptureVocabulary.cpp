#include "screencapture/CaptureVocabulary.h"

namespace screenCapture {

const NamedValue<Mode> modeNames[] = {
    {ZSTR("screen"), screen},
    {ZSTR("screenClient"), screenClient},
    {ZSTR("activeWindow"), activeWindow},
    {ZSTR("activeWindowClient"), activeWindowClient},
    {ZSTR("userDefinedArea"), userDefinedArea},
    {ZSTR("clipboard"), clipboard},
    {nullptr, noMode},
};

// Starts with "pdfPrinter" (2), the suite's main target, and not with value 1.
const NamedValue<Target> targetNames[] = {
    {ZSTR("pdfPrinter"), pdfPrinter},
    {ZSTR("clipboard"), toClipboard},
    {ZSTR("imageEditor"), imageEditor},
    {ZSTR("file"), file},
    {nullptr, noTarget},
};

namespace {

bool sameUnits(const ZChar* a, const ZChar* b)
{
    for (;; ++a, ++b) {
        if (*a != *b)
            return false;
        if (*a == 0)
            return true;
    }
}

template <typename Value>
const ZChar* nameIn(const NamedValue<Value>* table, Value value)
{
    for (; table->name; ++table) {
        if (table->value == value)
            return table->name;
    }
    return nullptr;
}

template <typename Value>
Value valueIn(const NamedValue<Value>* table, const ZChar* name)
{
    for (; table->name; ++table) {
        if (sameUnits(table->name, name))
            return table->value;
    }
    return table->value; // the end row's value: 0
}

} // namespace

const ZChar* nameOf(Mode mode) { return nameIn(modeNames, mode); }
const ZChar* nameOf(Target target) { return nameIn(targetNames, target); }
Mode modeNamed(const ZChar* name) { return valueIn(modeNames, name); }
Target targetNamed(const ZChar* name) { return valueIn(targetNames, name); }

} // namespace screenCapture
