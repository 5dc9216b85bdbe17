#pragma once
// The name under which the assistant saves a file, made from the name it was given (often a
// window title) so that Windows accepts it and the file lands in the output folder itself:
//
//  1. Each character that Windows forbids in a file name (< > : " / \ | ? *), each control
//     character (U+0000 to U+001F) and each unpaired surrogate becomes "_". With the
//     separators gone the name is a single path part: "..\x", "C:\x", "\\server\x" and
//     "x/../y" can point nowhere else.
//  2. Blanks at either end and dots at the end go; Windows would drop them silently.
//  3. A name longer than `room` UTF-16 units is cut to `room`, never between the halves of a
//     surrogate pair; then step 2 again.
//  4. An empty name becomes `fallback`, which passes steps 1 to 3 itself; "_" if that is
//     empty too.
//  5. A device name (CON, PRN, AUX, NUL, COM0 to COM9, LPT0 to LPT9, also with the digits
//     ¹ ² ³), in any case and before any extension or trailing blanks ("con", "Com1.txt",
//     "NUL .x"), is opened as the device whatever the folder: such a name is cut to
//     `room` - 1 and gets a leading "_" ("_con").
//
// The result is empty only when `room` is less than 1. Portable: no file is touched.

#include "base/ZString.h"

// Saved names end in " (N).pdf" for N up to kHighestFileNumber, at most this many units.
constexpr int kHighestFileNumber = 99999;
constexpr int kLongestNameEnding = 12; // " (99999).pdf"

// The units left for a name in `folder`, so that the whole path, ending included, stays
// within what Windows' file functions take without a long-path prefix (MAX_PATH, 260 units
// with the terminator) and the file's own name within 255 units. Below 1 when the folder
// leaves no room.
int roomForName(const ZString& folder);

ZString safeFileName(const ZString& wanted, int room, const ZString& fallback);
