#include "tools/assistant/Inbox.h"

#include "base/win/TempFolder.h"
#include "screencapture/FileHandlerArgs.h"

#include <windows.h>
#include <shlwapi.h>

#include <filesystem>
#include <fstream>

namespace {

bool exists(const ZString& path) { return PathFileExistsW(path.c_str()) != FALSE; }

// Without a name the file keeps its own, less its extension.
ZString baseNameFor(const ZString& source, const ZString& name)
{
    if (!name.isEmpty())
        return name;
    ZString own(PathFindFileNameW(source.c_str()));
    const int dot = own.findLast(L'.');
    return dot > 0 ? own.substring(0, dot) : own;
}

} // namespace

ZString freeFileName(const ZString& folder, const ZString& baseName)
{
    ZString path = joinPath(folder, baseName + L".pdf");
    for (int n = 2; exists(path); ++n)
        path = joinPath(folder, ZString::format(L"%s (%d).pdf", baseName.c_str(), n));
    return path;
}

Inbox::Inbox(ZString defaultFolder, ZString logPath)
    : defaultFolder_(std::move(defaultFolder)), logPath_(std::move(logPath))
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
        const ZString target = saveOne(file, folder, baseNameFor(file, args.name));
        if (target.isEmpty())
            continue;
        saved.push_back(target);
        if (args.deleteFile && !DeleteFileW(file.c_str()))
            log(L"could not delete " + file);
    }
    return saved;
}

ZString Inbox::saveOne(const ZString& source, const ZString& folder, const ZString& baseName)
{
    if (!createFolderTree(folder)) {
        log(L"failed: cannot create " + folder);
        return ZString();
    }
    // Never overwrite: a name taken meanwhile makes the copy fail, and the next name is tried.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const ZString target = freeFileName(folder, baseName);
        if (CopyFileW(source.c_str(), target.c_str(), TRUE)) {
            log(L"saved " + source + L" as " + target);
            return target;
        }
        if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS)
            break;
    }
    log(ZString::format(L"failed: cannot copy %s into %s (error %lu)", source.c_str(), folder.c_str(), GetLastError()));
    return ZString();
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
