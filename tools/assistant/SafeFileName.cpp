#include "tools/assistant/SafeFileName.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr int kMaxPath = 260; // MAX_PATH, the terminator included
constexpr int kLongestFileName = 255;
constexpr ZChar kReplacement = '_';

bool isHighSurrogate(ZChar unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(ZChar unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

bool isForbidden(ZChar unit)
{
    static constexpr std::basic_string_view<ZChar> kForbidden = ZSTR("<>:\"/\\|?*");
    return unit < 0x20 || kForbidden.find(unit) != kForbidden.npos;
}

// Step 1: forbidden characters and unpaired surrogates become "_"; pairs stay.
ZString replaceForbidden(const ZString& name)
{
    const ZString::Storage& units = name.units();
    ZString::Storage safe;
    safe.reserve(units.size());
    for (size_t i = 0; i < units.size(); ++i) {
        const ZChar unit = units[i];
        if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
            safe.append(units, i++, 2);
            continue;
        }
        safe += isForbidden(unit) || isHighSurrogate(unit) || isLowSurrogate(unit) ? kReplacement : unit;
    }
    return ZString(std::move(safe));
}

// Step 2: no blanks at either end, no dots at the end.
ZString trimEnds(const ZString& name)
{
    int start = 0;
    int end = name.length();
    while (start < end && name[start] == ' ')
        ++start;
    while (end > start && (name[end - 1] == ' ' || name[end - 1] == '.'))
        --end;
    return name.substring(start, end - start);
}

// Steps 1 to 3 for a name of at most `room` units.
ZString fit(const ZString& name, int room)
{
    ZString fitted = trimEnds(replaceForbidden(name));
    if (fitted.length() <= room)
        return fitted;
    int end = std::max(room, 0);
    // After step 1 a high surrogate is always followed by its low half: keep both or neither.
    if (end > 0 && isHighSurrogate(fitted[end - 1]))
        --end;
    return trimEnds(fitted.substring(0, end));
}

ZChar asciiUpper(ZChar unit) { return unit >= 'a' && unit <= 'z' ? ZChar(unit - 'a' + 'A') : unit; }

bool isDeviceDigit(ZChar unit) { return (unit >= '0' && unit <= '9') || unit == 0xB9 || unit == 0xB2 || unit == 0xB3; }

// The part before the first dot, less trailing blanks, names a device: CON, PRN, AUX, NUL,
// COM0-9, LPT0-9 (also COM¹ and so on).
bool isDeviceName(const ZString& name)
{
    ZString stem = name.substring(0, name.find(ZChar('.')));
    int end = stem.length();
    while (end > 0 && stem[end - 1] == ' ')
        --end;
    ZString upper;
    for (int i = 0; i < end; ++i)
        upper += asciiUpper(stem[i]);
    if (upper == ZSTR("CON") || upper == ZSTR("PRN") || upper == ZSTR("AUX") || upper == ZSTR("NUL"))
        return true;
    return upper.length() == 4 && (upper.startsWith(ZSTR("COM")) || upper.startsWith(ZSTR("LPT")))
        && isDeviceDigit(upper[3]);
}

} // namespace

int roomForName(const ZString& folder)
{
    int folderLength = folder.length();
    while (folderLength > 0 && folder[folderLength - 1] == '\\')
        --folderLength;
    const int pathRoom = kMaxPath - 1 - (folderLength + 1); // the folder, a backslash, the file's name
    return std::min(kLongestFileName, pathRoom) - kLongestNameEnding;
}

ZString safeFileName(const ZString& wanted, int room, const ZString& fallback)
{
    if (room < 1)
        return ZString();
    ZString name = fit(wanted, room);
    if (name.isEmpty())
        name = fit(fallback, room);
    if (name.isEmpty())
        name = ZString(1, kReplacement);
    if (isDeviceName(name))
        name = ZString(1, kReplacement) + fit(name, room - 1);
    return name;
}
