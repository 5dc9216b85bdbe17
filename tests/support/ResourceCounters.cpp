#include "tests/support/ResourceCounters.h"

#include "base/win/KernelHandle.h"
#include "tests/support/UiRobot.h"
#include "tests/support/Wine.h"

#include <windows.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

template <typename Function>
Function ntdll(const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

// The GDI handle table that the PEB points to. Entries: kernel pointer, then the owner's
// process id (16 bits), a count, the handle's upper 16 bits (0x80: stock object) and the
// type. Wine keeps 64-bit pointers in every build and its table is per process, with 0
// as the owner; Windows shares one table per session and records the owner.
int countGdiObjects()
{
    using Query = NTSTATUS(NTAPI*)(HANDLE, PROCESSINFOCLASS, void*, ULONG, ULONG*);
    const auto query = ntdll<Query>("NtQueryInformationProcess");
    PROCESS_BASIC_INFORMATION info = {};
    if (!query || query(GetCurrentProcess(), ProcessBasicInformation, &info, sizeof info, nullptr) < 0
        || !info.PebBaseAddress)
        return -1;
    const bool wine = runningOnWine();
    const size_t pointerSize = wine ? 8 : sizeof(void*);
    const uint8_t* table = nullptr;
    std::memcpy(&table, reinterpret_cast<const uint8_t*>(info.PebBaseAddress) + (sizeof(void*) == 8 ? 0xF8 : 0x94),
                sizeof table);
    if (!table)
        return -1;
    const uint16_t owner = wine ? 0 : static_cast<uint16_t>(GetCurrentProcessId());
    int count = 0;
    for (size_t i = 0; i < 0x10000; ++i) {
        const uint8_t* entry = table + i * (pointerSize * 2 + 8) + pointerSize;
        uint16_t processId, upper;
        std::memcpy(&processId, entry, 2);
        std::memcpy(&upper, entry + 4, 2);
        if (entry[6] != 0 && (upper & 0x80) == 0 && processId == owner)
            ++count;
    }
    return count;
}

// From SYSTEM_HANDLE_INFORMATION_EX (class 64), which has full process ids.
int countKernelHandles()
{
    struct Entry {
        void* object;
        ULONG_PTR processId;
        ULONG_PTR handleValue;
        ULONG rest[4]; // access, back trace and type indexes, attributes, reserved
    };
    struct Information {
        ULONG_PTR count;
        ULONG_PTR reserved;
        Entry entries[1];
    };
    using Query = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);
    const auto query = ntdll<Query>("NtQuerySystemInformation");
    std::vector<uint8_t> buffer(1 << 20);
    for (int attempt = 0; query && attempt < 8; ++attempt) {
        ULONG needed = 0;
        const NTSTATUS status = query(64, buffer.data(), static_cast<ULONG>(buffer.size()), &needed);
        if (status == static_cast<NTSTATUS>(0xC0000004)) { // the buffer is too small
            buffer.resize(std::max<size_t>(buffer.size() * 2, needed + 4096));
            continue;
        }
        if (status < 0)
            return -1;
        const auto* info = reinterpret_cast<const Information*>(buffer.data());
        int count = 0;
        for (ULONG_PTR i = 0; i < info->count; ++i)
            count += info->entries[i].processId == GetCurrentProcessId() ? 1 : 0;
        return count;
    }
    return -1;
}

// Counts `window` if it is this process's. The system gives each thread with windows a
// default IME window that comes and goes with the thread's first and last window; it is not
// the program's own.
BOOL CALLBACK countIfOurs(HWND window, LPARAM counter)
{
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    const std::wstring name = windowClass(window);
    if (processId == GetCurrentProcessId() && name != L"IME" && name != L"MSCTFIME UI")
        ++*reinterpret_cast<int*>(counter);
    return TRUE;
}

// EnumChildWindows goes through all descendants: of the desktop, and of the parent of all
// message-only windows.
int countWindows()
{
    int count = 0;
    EnumChildWindows(GetDesktopWindow(), countIfOurs, reinterpret_cast<LPARAM>(&count));
    if (HWND messageOnly = FindWindowExW(HWND_MESSAGE, nullptr, nullptr, nullptr))
        EnumChildWindows(GetAncestor(messageOnly, GA_PARENT), countIfOurs, reinterpret_cast<LPARAM>(&count));
    return count;
}

} // namespace

ResourceCounts countResources()
{
    return {countGdiObjects(), countKernelHandles(), countWindows()};
}

ResourceCounts countResourcesSettled(const ResourceCounts& expected, unsigned timeoutMs)
{
    ResourceCounts last;
    pumpUntil([&] { return (last = countResources()) == expected; }, timeoutMs);
    return last;
}

int countThreads()
{
    const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    if (!snapshot || !Thread32First(snapshot.get(), &entry))
        return -1;
    int count = 0;
    do {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    } while (Thread32Next(snapshot.get(), &entry));
    return count;
}

int countThreadsSettled(int expected, unsigned timeoutMs)
{
    int last = -1;
    pumpUntil([&] { return (last = countThreads()) == expected; }, timeoutMs);
    return last;
}

bool threadRunning(unsigned long threadId)
{
    const KernelHandle thread(OpenThread(SYNCHRONIZE, FALSE, threadId));
    return thread && WaitForSingleObject(thread.get(), 0) == WAIT_TIMEOUT;
}

std::string ResourceCounts::describe() const
{
    return "GDI objects " + std::to_string(gdiObjects) + ", kernel handles " + std::to_string(kernelHandles)
        + ", windows " + std::to_string(windows);
}
