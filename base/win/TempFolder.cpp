#include "base/win/TempFolder.h"

#include "base/win/KernelHandle.h"

#include <windows.h>
#include <shlwapi.h>

#include <cstdint>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

const wchar_t kModuleFolderName[] = L"Pryxa";
const int kFallbackFolders = 99;
const int kWriteTestTries = 10;
const DWORD kWriteTestPauseMs = 10;
const DWORD kTempPathBufferSize = 4096;

// Process-wide and unguarded: the tick count, the random value and the existence test
// keep names apart across threads and processes.
uint32_t uniqueNameCounter = 0;
uint32_t writeTestCounter = 0;

unsigned randomValue()
{
    try {
        static std::random_device device;
        return device();
    } catch (const std::exception&) {
        // No random source: the counter and the tick count still tell names apart.
        LARGE_INTEGER now = {};
        QueryPerformanceCounter(&now);
        return static_cast<unsigned>(now.LowPart);
    }
}

bool exists(const ZString& path)
{
    return PathFileExistsW(path.c_str()) != FALSE;
}

bool isFolder(const ZString& path)
{
    return PathIsDirectoryW(path.c_str()) != FALSE;
}

ZString environmentVariable(const wchar_t* name)
{
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    if (size == 0)
        return ZString();
    std::vector<wchar_t> buffer(size);
    const DWORD length = GetEnvironmentVariableW(name, buffer.data(), size);
    return length > 0 && length < size ? ZString(buffer.data()) : ZString();
}

ZString tempPathFromSystem()
{
    std::vector<wchar_t> buffer(kTempPathBufferSize);
    const DWORD length = GetTempPathW(kTempPathBufferSize, buffer.data());
    return length >= 1 && length < kTempPathBufferSize ? ZString(buffer.data()) : ZString();
}

// Absolute against the current folder as it is now, so that every path made from it is
// still right in a program started in another folder; unquoted, "." and ".." resolved, and
// without the trailing backslash that GetTempPathW adds (a root such as "C:\" keeps it).
ZString normalisedFolder(const ZString& candidate)
{
    std::vector<wchar_t> path(candidate.c_str(), candidate.c_str() + candidate.length() + 1);
    PathUnquoteSpacesW(path.data());
    const DWORD size = GetFullPathNameW(path.data(), 0, nullptr, nullptr);
    std::vector<wchar_t> full(size + 1);
    const DWORD length = size ? GetFullPathNameW(path.data(), size, full.data(), nullptr) : 0;
    if (length > 0 && length < size)
        path.swap(full);
    PathRemoveBackslashW(path.data());
    return ZString(path.data());
}

// The path without its last component; the path itself for a root.
ZString parentFolder(const ZString& path)
{
    std::vector<wchar_t> buffer(path.c_str(), path.c_str() + path.length() + 1);
    PathRemoveFileSpecW(buffer.data());
    return ZString(buffer.data());
}

// Creates the file exclusively and deletes it again at once.
bool createAndDelete(const ZString& path)
{
    {
        const KernelHandle file(CreateFileW(path.c_str(), GENERIC_ALL, 0, nullptr, CREATE_NEW,
                                            FILE_ATTRIBUTE_TEMPORARY, nullptr));
        if (!file)
            return false;
    }
    DeleteFileW(path.c_str());
    return true;
}

void showTempFolderError(const ZString& text, const ZString& title)
{
    MessageBoxW(nullptr, text.c_str(), title.c_str(), MB_OK | MB_ICONERROR);
}

} // namespace

ZString joinPath(const ZString& folder, const ZString& name)
{
    if (folder.isEmpty())
        return name;
    int end = folder.length();
    while (end > 0 && folder[end - 1] == L'\\')
        --end;
    int start = 0;
    while (start < name.length() && name[start] == L'\\')
        ++start;
    return folder.substring(0, end) + L"\\" + name.substring(start);
}

ZString systemTempFolder()
{
    const ZString candidates[] = {tempPathFromSystem(), environmentVariable(L"TMP"), environmentVariable(L"TEMP"),
                                  environmentVariable(L"TMPDIR")};
    for (const ZString& candidate : candidates) {
        // An empty candidate would normalise to the current folder, which always exists.
        if (candidate.trim().isEmpty())
            continue;
        const ZString folder = normalisedFolder(candidate.trim());
        if (exists(folder))
            return folder;
    }
    return normalisedFolder(L".");
}

// isWritable creates a missing candidate itself, so each one is only tested.
ZString moduleTempFolder()
{
    const ZString system = systemTempFolder();
    const ZString base = joinPath(system, kModuleFolderName);
    if (isWritable(base))
        return base;
    for (int n = 1; n <= kFallbackFolders; ++n) {
        const ZString fallback = joinPath(system, ZString::format(L"%s_%d", kModuleFolderName, n));
        if (isWritable(fallback))
            return fallback;
    }
    if (isWritable(system))
        return system;
    reportUnusableTempFolder(system);
}

bool createFolderTree(const ZString& path)
{
    if (path.isEmpty())
        return false;
    if (isFolder(path))
        return true;
    const ZString parent = parentFolder(path);
    if (!parent.isEmpty() && parent != path)
        createFolderTree(parent);
    CreateDirectoryW(path.c_str(), nullptr);
    return isFolder(path);
}

bool isWritable(const ZString& folder)
{
    if (!exists(folder))
        createFolderTree(folder);
    if (!exists(folder))
        return false;
    for (int attempt = 0; attempt < kWriteTestTries; ++attempt) {
        const ZString name = ZString::format(L"%lu_%u_%u", GetTickCount(), randomValue(), writeTestCounter++);
        const ZString path = joinPath(folder, L".write_test_" + name);
        if (!exists(path) && createAndDelete(path))
            return true;
        Sleep(kWriteTestPauseMs);
    }
    return false;
}

void reportUnusableTempFolder(const ZString& folder)
{
    if (!exists(folder)) {
        showTempFolderError(ZString(L"The following temporary files folder does not exist and could not be created "
                                    L"by the current user. Please check the permissions of the parent folder so "
                                    L"that the subfolder can be created.\r\n\r\n") +
                                folder,
                            L"Could not create temporary files folder");
        throw TempFolderError("Temporary files folder could not be created");
    }
    showTempFolderError(ZString(L"The following temporary files folder is not writeable by the current user. Please "
                                L"ensure that the current user can create files in that folder by checking "
                                L"permissions. Alternatively, you can try to delete the folder manually.\r\n\r\n") +
                            folder,
                        L"Temporary files folder not writeable");
    throw TempFolderError("Temporary files folder not writeable");
}

ZString uniqueFileName(const ZString& folder, const ZString& prefix, const ZString& extension)
{
    const ZString base = folder.isEmpty() ? systemTempFolder() : folder;
    for (;;) {
        ZString name = prefix;
        if (!name.isEmpty() && !name.endsWith(L"_"))
            name += L'_';
        name += ZString::format(L"%u_%lu_%u", uniqueNameCounter++, GetTickCount(), randomValue());
        const ZString path = joinPath(base, name + extension);
        if (!exists(path))
            return path;
    }
}
