#include "tools/assistant/Inbox.h"

#include "base/win/SystemText.h"
#include "base/win/TempFolder.h"
#include "companions/language/Language.h"
#include "screencapture/FileHandlerArgs.h"
#include "tools/assistant/SafeFileName.h"

#include <shlwapi.h>

#include <filesystem>
#include <fstream>

namespace {

bool exists(const ZString& path) { return PathFileExistsW(path.c_str()) != FALSE; }

// Without a name the file keeps its own, less its extension.
ZString wantedNameFor(const ZString& source, const ZString& name)
{
    if (!name.isEmpty())
        return name;
    ZString own(PathFindFileNameW(source.c_str()));
    const int dot = own.findLast(L'.');
    return dot > 0 ? own.substring(0, dot) : own;
}

} // namespace

Inbox::Inbox(ZString defaultFolder, ZString logPath, TrayNote note)
    : defaultFolder_(std::move(defaultFolder)), logPath_(std::move(logPath)), note_(std::move(note))
{
}

std::vector<ZString> Inbox::receive(const std::vector<ZString>& items)
{
    log(L"received: " + screenCapture::joinArguments(items));
    screenCapture::FileHandlerArgs args;
    ZString error;
    if (!screenCapture::parseFileHandlerArgs(items, args, error)) {
        log(L"refused: " + error);
        return {};
    }
    for (const ZString& file : args.files) {
        if (!exists(file)) {
            log(L"refused: no such file " + file);
            return {};
        }
    }
    const ZString folder = args.dir.isEmpty() ? defaultFolder_ : args.dir;
    std::vector<ZString> saved;
    for (const ZString& file : args.files) {
        const Saved result = saveOne(file, folder, wantedNameFor(file, args.name));
        if (result.path.isEmpty()) {
            reportFailure(file, folder, result.error); // the file stays where it is
            continue;
        }
        saved.push_back(result.path);
        note_(lang_getStr(L"general/note"), lang_getStr(L"assistant/~file-saved") + L"\n" + result.path);
        if (args.deleteFile && !DeleteFileW(file.c_str()))
            log(L"could not delete " + file);
    }
    return saved;
}

Inbox::Saved Inbox::saveOne(const ZString& source, const ZString& folder, const ZString& wantedName)
{
    createFolderTree(folder); // if that fails, the copy says why
    const ZString name = safeFileName(wantedName, roomForName(folder), lang_getStr(L"assistant/filenames/~untitled"));
    if (name.isEmpty())
        return {ZString(), ERROR_FILENAME_EXCED_RANGE};
    // Never overwrite: a name taken meanwhile makes the copy fail, and the next name is tried.
    for (;;) {
        const ZString target = freeNames_.next(folder, name);
        if (target.isEmpty())
            return {ZString(), ERROR_FILE_EXISTS}; // every number is taken
        if (CopyFileW(source.c_str(), target.c_str(), TRUE)) {
            log(L"saved " + source + L" as " + target);
            return {target};
        }
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS)
            return {ZString(), error};
    }
}

void Inbox::reportFailure(const ZString& source, const ZString& folder, DWORD error) const
{
    const ZString reason = ZString(SystemText(error).get()).trim();
    log(ZString::format(L"failed: cannot save %s into %s (error %lu: %s)", source.c_str(), folder.c_str(), error,
                        reason.c_str()));
    note_(lang_getStr(L"general/error"), lang_getStr(L"assistant/~file-not-saved") + L"\n" + reason + L"\n"
                                             + lang_getStr(L"assistant/~file-kept-here") + L"\n" + source);
}

void Inbox::log(const ZString& text) const
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    std::ofstream out(std::filesystem::path(logPath_.c_str()), std::ios::app | std::ios::binary);
    out << ZString::format(L"%04u-%02u-%02u %02u:%02u:%02u ", now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                           now.wSecond)
               .toUtf8()
        << text.toUtf8() << "\r\n";
}
