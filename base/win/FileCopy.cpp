#include "base/win/FileCopy.h"

#include "base/win/SystemText.h"

#include <shlwapi.h>

namespace {

const int kTriesPerRound = 5;
const DWORD kPauseBetweenTriesMs = 100;

CopyFileCall copyFileCall = CopyFileW;

// One round of tries, 100 ms apart; an empty destination fails every try.
bool tryCopy(const ZString& source, const ZString& destination)
{
    for (int attempt = 0; attempt < kTriesPerRound; ++attempt) {
        if (attempt > 0)
            Sleep(kPauseBetweenTriesMs);
        if (destination.isEmpty())
            SetLastError(ERROR_INVALID_NAME);
        else if (copyFileCall(source.c_str(), destination.c_str(), FALSE))
            return true;
    }
    return false;
}

// Tells the user about the last failure; true if they ask to try again.
bool askToRetry(const ZString& source, const ZString& destination)
{
    const SystemText systemText(GetLastError());
    const ZString message =
        ZString(L"Could not write to file.\n\n") +
        ZString::format(L"ErrorCode=%d\nErrorMsg=%s\n\nSource=%s\nDestination=%s", static_cast<int>(GetLastError()),
                        systemText.get(), source.c_str(), destination.c_str());
    return MessageBoxW(nullptr, message.c_str(), L"File copy error", MB_RETRYCANCEL | MB_ICONERROR) == IDRETRY;
}

} // namespace

bool copyFileWithRetry(const ZString& source, const ZString& destination)
{
    if (source.isEmpty() || !PathFileExistsW(source.c_str()))
        return false;
    for (;;) {
        if (tryCopy(source, destination))
            return true;
        if (!askToRetry(source, destination))
            return false;
    }
}

CopyFileCall replaceCopyFileCall(CopyFileCall call)
{
    const CopyFileCall previous = copyFileCall;
    copyFileCall = call ? call : CopyFileW;
    return previous;
}
