#pragma once
// NotifyIcon.dll: short notes to the user from a tray icon.
//
// notifyIcon_info shows an information balloon and returns at once. The icon belongs to a
// hidden window on a thread of the library; it is removed when the balloon is gone (closed,
// clicked or timed out) or when the note's time is up, whichever comes first. A new note
// while one is up replaces it. The library stays loaded while a note is up and unloads
// afterwards, leaving no window or icon behind. A failure (no tray) is silent.
// No function throws.

#include "base/ZString.h"

#include <cstdint>

#ifdef PRYXA_NOTIFYICON_BUILD
#define NOTIFYICON_API __declspec(dllexport)
#else
#define NOTIFYICON_API __declspec(dllimport)
#endif

extern "C" {

NOTIFYICON_API void notifyIcon_info(const ZString& heading, const ZString& message);

// The longest time a note stays up when the shell does not report its balloon gone:
// 10 seconds unless set. Applies to notes shown after the call.
NOTIFYICON_API void notifyIcon_setDuration(uint32_t milliseconds);

} // extern "C"
