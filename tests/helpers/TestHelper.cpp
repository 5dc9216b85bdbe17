// pryxa-test-helper: a second process for tests that need one.
//   hold-clipboard READY DONE  opens the clipboard, sets the event READY and keeps the
//                              clipboard open until the event DONE is set (30 s at most)
//   hold-mutex NAME READY DONE holds the named mutex likewise
//   empty-clipboard            empties the clipboard
//   clipboard-bitmap W H       exits with 0 if the clipboard holds a W x H bitmap, 6 if it
//                              holds no bitmap, 7 if the bitmap has another size
//   anything else              appends its command line (UTF-8) as one line to the file
//                              named by %PRYXA_RECORD_FILE%: it stands in for programs that
//                              the module starts, under whatever name they are copied to

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

int record()
{
    wchar_t path[MAX_PATH] = {};
    if (!GetEnvironmentVariableW(L"PRYXA_RECORD_FILE", path, MAX_PATH))
        return 3;
    FILE* out = _wfopen(path, L"ab");
    if (!out)
        return 4;
    const wchar_t* command = GetCommandLineW();
    const int size = WideCharToMultiByte(CP_UTF8, 0, command, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size > 0 ? size : 1), '\0'); // with the terminating null
    WideCharToMultiByte(CP_UTF8, 0, command, -1, &utf8[0], size, nullptr, nullptr);
    std::fprintf(out, "%s\n", utf8.c_str());
    std::fclose(out);
    return 0;
}

// Answers for scripts, which cannot look at the clipboard of a Wine session themselves.
int clipboardCommand(const std::wstring& command, int argc, wchar_t** argv)
{
    if (!OpenClipboard(nullptr))
        return 5;
    int status = 0;
    if (command == L"empty-clipboard") {
        EmptyClipboard();
    } else if (HBITMAP bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP))) {
        BITMAP info{};
        GetObjectW(bitmap, sizeof info, &info);
        const bool sized = argc == 4 && info.bmWidth == _wtoi(argv[2]) && info.bmHeight == _wtoi(argv[3]);
        status = sized ? 0 : 7;
    } else {
        status = 6;
    }
    CloseClipboard();
    return status;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    const std::wstring command = argc > 1 ? argv[1] : L"";
    if (command == L"empty-clipboard" || command == L"clipboard-bitmap")
        return clipboardCommand(command, argc, argv);
    const bool clipboard = command == L"hold-clipboard" && argc == 4;
    if (!clipboard && !(command == L"hold-mutex" && argc == 5))
        return record();
    HANDLE ready = OpenEventW(EVENT_MODIFY_STATE, FALSE, argv[argc - 2]);
    HANDLE done = OpenEventW(SYNCHRONIZE, FALSE, argv[argc - 1]);
    // The clipboard is opened for a window, as programs do: Wine lets a second
    // OpenClipboard(NULL) through while the clipboard is open for no window.
    HWND window = clipboard ? CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr)
                            : nullptr;
    HANDLE mutex = clipboard ? nullptr : CreateMutexW(nullptr, TRUE, argv[2]);
    if (!ready || !done || !(clipboard ? window && OpenClipboard(window) : mutex != nullptr))
        return 5; // the system closes what was opened
    SetEvent(ready);
    WaitForSingleObject(done, 30000);
    if (clipboard)
        CloseClipboard();
    return 0;
}
