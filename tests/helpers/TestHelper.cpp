// pryxa-test-helper: a second process for tests that need one.
//   hold-clipboard READY DONE  opens the clipboard, sets the event READY and keeps the
//                              clipboard open until the event DONE is set (30 s at most)
//   hold-mutex NAME READY DONE holds the named mutex likewise
//   anything else              appends its command line (UTF-8) as one line to the file
//                              named by %PRYXA_RECORD_FILE%: it stands in for programs that
//                              the module starts, under whatever name they are copied to

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

std::string utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(size > 0 ? size - 1 : 0), '\0');
    if (size > 1)
        WideCharToMultiByte(CP_UTF8, 0, text, -1, &out[0], size, nullptr, nullptr);
    return out;
}

int record()
{
    wchar_t path[MAX_PATH] = {};
    if (!GetEnvironmentVariableW(L"PRYXA_RECORD_FILE", path, MAX_PATH))
        return 3;
    FILE* out = _wfopen(path, L"ab");
    if (!out)
        return 4;
    std::fprintf(out, "%s\n", utf8(GetCommandLineW()).c_str());
    std::fclose(out);
    return 0;
}

// Sets READY once `acquire` succeeded, waits for DONE (30 s at most), then lets go.
template <typename Acquire, typename Release>
int holdUntilDone(const wchar_t* readyName, const wchar_t* doneName, Acquire acquire, Release release)
{
    HANDLE ready = OpenEventW(EVENT_MODIFY_STATE, FALSE, readyName);
    HANDLE done = OpenEventW(SYNCHRONIZE, FALSE, doneName);
    int status = 5;
    if (ready && done && acquire()) {
        SetEvent(ready);
        WaitForSingleObject(done, 30000);
        release();
        status = 0;
    }
    if (ready)
        CloseHandle(ready);
    if (done)
        CloseHandle(done);
    return status;
}

int holdClipboard(const wchar_t* readyName, const wchar_t* doneName)
{
    // Opened for a window, as programs do: Wine lets a second OpenClipboard(NULL) through
    // while the clipboard is open for no window.
    HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    const int status = holdUntilDone(readyName, doneName, [&] { return window && OpenClipboard(window); },
                                     [] { CloseClipboard(); });
    if (window)
        DestroyWindow(window);
    return status;
}

int holdMutex(const wchar_t* name, const wchar_t* readyName, const wchar_t* doneName)
{
    HANDLE mutex = nullptr;
    return holdUntilDone(readyName, doneName, [&] { return (mutex = CreateMutexW(nullptr, TRUE, name)) != nullptr; },
                         [&] { CloseHandle(mutex); });
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    const std::wstring command = argc > 1 ? argv[1] : L"";
    if (command == L"hold-clipboard" && argc == 4)
        return holdClipboard(argv[2], argv[3]);
    if (command == L"hold-mutex" && argc == 5)
        return holdMutex(argv[2], argv[3], argv[4]);
    return record();
}
