/* The screen-capture module's interface, for C and C++ hosts.
 *
 * C++ hosts call the functions of namespace screenCapture; hosts in C, built with another
 * compiler or in another language call the screenCapture_* functions, which behave exactly
 * the same. Modes and targets are 32-bit values; names are UTF-16 strings (wchar_t, 16 bits
 * on Windows) that point into the module's own tables (valid while the module is loaded;
 * never freed by the caller).
 *
 * The screenCapture_* functions use the Windows API convention (WINAPI: stdcall on x86,
 * the one convention on x86-64) and are exported under their plain names on both
 * architectures, so GetProcAddress(module, "screenCapture_capture") finds them and a C#
 * [DllImport] with the default calling convention calls them correctly; strings there
 * need CharSet.Unicode. Their truth values are int32_t (1 or 0), not bool, so that a
 * default BOOL marshalling reads them right. The C++ functions use the compiler's default
 * convention (cdecl on x86) and their mangled names.
 *
 * capture() runs one capture synchronously on the calling thread, which must pump window
 * messages (the dialog and the area selection run modal loops on it). Failures are shown to
 * the user in message boxes; nothing is returned. The one exception that leaves
 * screenCapture::capture is a std::runtime_error when no temporary folder can be written,
 * after the user has been told; screenCapture_capture lets nothing through.
 */
#ifndef PRYXA_SCREENCAPTURE_CAPTUREAPI_H
#define PRYXA_SCREENCAPTURE_CAPTUREAPI_H

#include <stdint.h>
#include <wchar.h>

/* The module exports what screencapture.def lists, nothing more. */
#if !defined(_WIN32) || defined(PRYXA_SCREENCAPTURE_BUILD)
#define SCREENCAPTURE_API
#else
#define SCREENCAPTURE_API __declspec(dllimport)
#endif

/* WINAPI, without making every host include windows.h. */
#if defined(_WIN32)
#define SCREENCAPTURE_CALL __stdcall
#else
#define SCREENCAPTURE_CALL
#endif

#ifdef __cplusplus
namespace screenCapture {

/* What to capture. The values are stored in user settings and on command lines:
 * never renumber them, and add new modes at the end. */
enum Mode : int32_t {
    noMode = 0,             /* ask the user in the capture dialog */
    screen = 1,             /* the whole primary screen */
    screenClient = 2,       /* the primary screen's working area */
    activeWindow = 3,       /* the active window with its frame */
    activeWindowClient = 4, /* the active window's client area */
    userDefinedArea = 5,    /* a rectangle the user drags on a frozen screen */
    clipboard = 6           /* the bitmap on the clipboard */
};

/* Where the picture goes. Stored like Mode: never renumber, add at the end. */
enum Target : int32_t {
    noTarget = 0,
    toClipboard = 1,  /* "clipboard" */
    pdfPrinter = 2,   /* a one-page PDF handed to the assistant */
    imageEditor = 3,  /* a PNG opened with the "edit" verb */
    file = 4          /* a PNG file the user names */
};

SCREENCAPTURE_API void capture(Mode mode, Target target);
SCREENCAPTURE_API bool canCaptureClipboard();
SCREENCAPTURE_API const wchar_t* modeToName(Mode mode);
SCREENCAPTURE_API Mode nameToMode(const wchar_t* name);
SCREENCAPTURE_API const wchar_t* targetToName(Target target);
SCREENCAPTURE_API Target nameToTarget(const wchar_t* name);

} /* namespace screenCapture */

extern "C" {
#endif

SCREENCAPTURE_API void SCREENCAPTURE_CALL screenCapture_capture(int32_t mode, int32_t target);
SCREENCAPTURE_API int32_t SCREENCAPTURE_CALL screenCapture_canCaptureClipboard(void); /* 1 or 0 */
SCREENCAPTURE_API const wchar_t* SCREENCAPTURE_CALL screenCapture_modeToName(int32_t mode);
SCREENCAPTURE_API int32_t SCREENCAPTURE_CALL screenCapture_nameToMode(const wchar_t* name);
SCREENCAPTURE_API const wchar_t* SCREENCAPTURE_CALL screenCapture_targetToName(int32_t target);
SCREENCAPTURE_API int32_t SCREENCAPTURE_CALL screenCapture_nameToTarget(const wchar_t* name);

#ifdef __cplusplus
}
#endif

#endif
