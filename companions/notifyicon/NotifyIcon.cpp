#include "companions/notifyicon/NotifyIcon.h"

#include "base/win/KernelHandle.h"
#include "base/win/SlimLock.h"
#include "base/win/ThisModule.h"

#include <windows.h>
#include <shellapi.h>

#include <mutex>
#include <optional>

namespace {

// The window class of the hidden window that owns the icon.
const wchar_t* const kWindowClass = L"PryxaNotifyIconWindow";
constexpr UINT kIconId = 1;
constexpr UINT kWakeMessage = WM_APP + 1;     // a new note is pending
constexpr UINT kCallbackMessage = WM_APP + 2; // the shell reports on the icon
constexpr UINT_PTR kDurationTimer = 1;
// Reported by the shell when a balloon is gone (shellapi.h, NIN_*).
constexpr UINT kBalloonHide = WM_USER + 3;
constexpr UINT kBalloonTimeout = WM_USER + 4;
constexpr UINT kBalloonUserClick = WM_USER + 5;

struct Note {
    ZString heading;
    ZString message;
};

// Shared between callers and the note thread; guarded by noteMutex.
SlimLock noteMutex;
std::optional<Note> pending;
bool threadAlive = false;
HWND noteWindow = nullptr;
UINT durationMs = 10000;

void copyTruncated(wchar_t* target, size_t capacity, const ZString& text)
{
    const size_t n = std::min(static_cast<size_t>(text.length()), capacity - 1);
    wmemcpy(target, text.c_str(), n);
    target[n] = L'\0';
}

HICON noteIcon()
{
    // The host program's own icon where it has one; shared icons need no clean-up.
    if (HICON icon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1)))
        return icon;
    return LoadIconW(nullptr, IDI_INFORMATION);
}

class TrayIcon {
public:
    explicit TrayIcon(HWND window) : window_(window) {}
    ~TrayIcon() { remove(); }
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    void show(const Note& note)
    {
        NOTIFYICONDATAW data = baseData();
        data.uFlags = NIF_ICON | NIF_MESSAGE | NIF_TIP | NIF_INFO;
        data.uCallbackMessage = kCallbackMessage;
        data.hIcon = noteIcon();
        data.dwInfoFlags = NIIF_INFO;
        copyTruncated(data.szTip, ARRAYSIZE(data.szTip), note.heading);
        copyTruncated(data.szInfoTitle, ARRAYSIZE(data.szInfoTitle), note.heading);
        copyTruncated(data.szInfo, ARRAYSIZE(data.szInfo), note.message);
        if (added_) {
            Shell_NotifyIconW(NIM_MODIFY, &data);
        } else {
            added_ = Shell_NotifyIconW(NIM_ADD, &data) != FALSE;
        }
    }

    void remove()
    {
        if (!added_)
            return;
        NOTIFYICONDATAW data = baseData();
        Shell_NotifyIconW(NIM_DELETE, &data);
        added_ = false;
    }

private:
    NOTIFYICONDATAW baseData() const
    {
        NOTIFYICONDATAW data = {};
        data.cbSize = sizeof data;
        data.hWnd = window_;
        data.uID = kIconId;
        return data;
    }

    HWND window_;
    bool added_ = false;
};

void show(TrayIcon& icon, HWND window, const Note& note, UINT duration)
{
    icon.show(note);
    SetTimer(window, kDurationTimer, duration, nullptr);
}

// Shows the pending note, if any.
void showPending(TrayIcon& icon, HWND window)
{
    std::optional<Note> note;
    UINT duration;
    {
        std::lock_guard<SlimLock> lock(noteMutex);
        note.swap(pending);
        duration = durationMs;
    }
    if (note)
        show(icon, window, *note, duration);
}

// The note is over: show the next one if it came meanwhile, else end the thread. The
// choice is made under the lock, so that a caller either hands its note to this thread or
// starts a new one, never both.
void finishNote(TrayIcon& icon, HWND window)
{
    std::optional<Note> next;
    UINT duration;
    {
        std::lock_guard<SlimLock> lock(noteMutex);
        next.swap(pending);
        duration = durationMs;
        if (!next) {
            threadAlive = false;
            noteWindow = nullptr;
        }
    }
    if (next) {
        show(icon, window, *next, duration);
        return;
    }
    KillTimer(window, kDurationTimer);
    icon.remove();
    DestroyWindow(window);
}

LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* icon = reinterpret_cast<TrayIcon*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case kWakeMessage:
        if (icon)
            showPending(*icon, window);
        return 0;
    case kCallbackMessage: {
        const UINT event = LOWORD(lParam);
        if (icon && (event == kBalloonHide || event == kBalloonTimeout || event == kBalloonUserClick))
            finishNote(*icon, window);
        return 0;
    }
    case WM_TIMER:
        if (icon && wParam == kDurationTimer)
            finishNote(*icon, window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

// False when the window could not be made.
bool runNoteWindow()
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = windowProc;
    windowClass.hInstance = thisModule();
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass); // fails harmlessly when an earlier thread registered it

    HWND window = CreateWindowExW(0, kWindowClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, thisModule(), nullptr);
    if (!window)
        return false;
    TrayIcon icon(window);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&icon));
    {
        std::lock_guard<SlimLock> lock(noteMutex);
        noteWindow = window;
    }
    // The caller that started this thread left its note pending.
    finishNote(icon, window);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

DWORD WINAPI noteThread(void*)
{
    if (!runNoteWindow()) {
        std::lock_guard<SlimLock> lock(noteMutex);
        pending.reset();
        threadAlive = false;
    }
    // The thread holds a reference on the library so that it is not unloaded under it;
    // this gives it back and ends the thread without returning into unloaded code.
    FreeLibraryAndExitThread(thisModule(), 0);
}

bool startNoteThread()
{
    HMODULE self = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&noteThread), &self))
        return false;
    // Nobody waits for the thread, which ends by itself: its handle is closed at once.
    const KernelHandle thread(CreateThread(nullptr, 0, noteThread, nullptr, 0, nullptr));
    if (!thread) {
        FreeLibrary(self);
        return false;
    }
    return true;
}

} // namespace

void notifyIcon_info(const ZString& heading, const ZString& message)
{
    try {
        std::lock_guard<SlimLock> lock(noteMutex);
        pending = Note{heading, message};
        if (threadAlive) {
            // The thread picks the note up when its window exists; before that it reads
            // `pending` itself.
            if (noteWindow)
                PostMessageW(noteWindow, kWakeMessage, 0, 0);
            return;
        }
        threadAlive = startNoteThread();
        if (!threadAlive)
            pending.reset();
    } catch (...) {
    }
}

void notifyIcon_setDuration(uint32_t milliseconds)
{
    try {
        std::lock_guard<SlimLock> lock(noteMutex);
        durationMs = milliseconds;
    } catch (...) {
    }
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* reserved)
{
    // Classes of a DLL outlive it; a stale one would point a reloaded library at freed code.
    // By the time the library unloads, its note thread and window are gone.
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr)
        UnregisterClassW(kWindowClass, thisModule());
    return TRUE;
}
