#pragma once
// About.dll: the suite's About box.
//
// about_show shows the product, its version, the current language and the notices of the
// libraries the program uses, modal to `owner` (null: none; the owner is disabled while the
// box is open), and returns when the user has closed it with its button, Escape or the close
// box. The calling thread must be one that can own windows; it pumps messages meanwhile. A
// box that cannot be shown is reported in a message box. No function throws.

#include <windows.h>

#ifdef PRYXA_ABOUT_BUILD
#define ABOUT_API __declspec(dllexport)
#else
#define ABOUT_API __declspec(dllimport)
#endif

extern "C" {

ABOUT_API void about_show(HWND owner);

} // extern "C"
