// pryxa-capture [MODE [TARGET]]: runs one capture through screencapture.dll, exactly as a
// suite program calls it. Without a mode the capture dialog asks the user.

#include "screencapture/CaptureApi.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

constexpr int kUsageError = 2;

std::wstring validNames(const wchar_t*(SCREENCAPTURE_CALL* nameOf)(int32_t))
{
    std::wstring list;
    for (int32_t value = 1; value < 100; ++value) {
        if (const wchar_t* name = nameOf(value))
            list += (list.empty() ? L"" : L", ") + std::wstring(name);
    }
    return list;
}

std::wstring modeNames() { return validNames(screenCapture_modeToName); }
std::wstring targetNames() { return validNames(screenCapture_targetToName); }

void printUsage(FILE* out)
{
    std::fwprintf(out,
                  L"usage: pryxa-capture [MODE [TARGET]]\n"
                  L"Captures a picture and delivers it. Without MODE the capture dialog asks.\n"
                  L"  MODE:   %ls\n"
                  L"  TARGET: %ls (without one, the picture becomes a PDF)\n",
                  modeNames().c_str(), targetNames().c_str());
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc > 1 && (std::wcscmp(argv[1], L"--help") == 0 || std::wcscmp(argv[1], L"-h") == 0)) {
        printUsage(stdout);
        return 0;
    }
    if (argc > 3) {
        printUsage(stderr);
        return kUsageError;
    }
    const int32_t mode = argc > 1 ? screenCapture_nameToMode(argv[1]) : 0;
    if (argc > 1 && mode == 0) {
        std::fwprintf(stderr, L"pryxa-capture: unknown mode \"%ls\"; valid modes: %ls\n", argv[1], modeNames().c_str());
        return kUsageError;
    }
    const int32_t target = argc > 2 ? screenCapture_nameToTarget(argv[2]) : 0;
    if (argc > 2 && target == 0) {
        std::fwprintf(stderr, L"pryxa-capture: unknown target \"%ls\"; valid targets: %ls\n", argv[2],
                      targetNames().c_str());
        return kUsageError;
    }
    screenCapture_capture(mode, target);
    return 0;
}
