#include "tests/support/ResourceCounters.h"

#include "tests/support/UiRobot.h"
#include "tests/support/Wine.h"

#include <windows.h>
#include <winternl.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

// The GDI handle table that the PEB points to. Entries: kernel pointer, then the owner's
// process id (16 bits), a count, the handle's upper 16 bits (0x80: stock object) and the
// type. Wine keeps 64-bit pointers in every build and its table is per process, with 0
// as the owner; Windows shares one table per session and records the owner.
using QueryInformationProcess = NTSTATUS(NTAPI*)(HANDLE, PROCESSINFOCLASS, void*, ULONG, ULONG*);

const uint8_t* processEnvironmentBlock()
{
    auto query = reinterpret_cast<QueryInformationProcess>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION info = {};
    if (!query || query(GetCurrentProcess(), ProcessBasicInformation, &info, sizeof info, nullptr) < 0)
        return nullptr;
    return reinterpret_cast<const uint8_t*>(info.PebBaseAddress);
}

int countGdiObjectsInTable()
{
    const uint8_t* peb = processEnvironmentBlock();
    if (!peb)
        return -1;
    const bool wine = runningOnWine();
    const size_t tableOffset = sizeof(void*) == 8 ? 0xF8 : 0x94;
    const size_t pointerSize = wine ? 8 : sizeof(void*);
    const size_t entrySize = pointerSize * 2 + 8;
    const uint8_t* table = nullptr;
    std::memcpy(&table, peb + tableOffset, sizeof table);
    if (!table)
        return -1;
    const uint16_t owner = wine ? 0 : static_cast<uint16_t>(GetCurrentProcessId());
    int count = 0;
    for (size_t i = 0; i < 0x10000; ++i) {
        const uint8_t* entry = table + i * entrySize + pointerSize;
        uint16_t processId, upper;
        std::memcpy(&processId, entry, 2);
        std::memcpy(&upper, entry + 4, 2);
        const uint8_t type = entry[6];
        if (type != 0 && (upper & 0x80) == 0 && processId == owner)
            ++count;
    }
    return count;
}

// SYSTEM_HANDLE_INFORMATION_EX (class 64) with full process ids.
struct HandleEntryEx {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handleValue;
    ULONG grantedAccess;
    USHORT creatorBackTraceIndex;
    USHORT objectTypeIndex;
    ULONG attributes;
    ULONG reserved;
};
struct HandleInformationEx {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntryEx entries[1];
};

using QuerySystemInformation = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);
constexpr ULONG kSystemExtendedHandleInformation = 64;
constexpr NTSTATUS kInfoLengthMismatch = static_cast<NTSTATUS>(0xC0000004);

BOOL CALLBACK countChild(HWND, LPARAM counter)
{
    ++*reinterpret_cast<int*>(counter);
    return TRUE;
}

// The system gives each thread with windows a default IME window; it is not the
// program's own and comes and goes with the thread's first and last window.
bool isSystemImeWindow(HWND window)
{
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    return wcscmp(name, L"IME") == 0 || wcscmp(name, L"MSCTFIME UI") == 0;
}

void countWithChildren(HWND window, int& count)
{
    if (isSystemImeWindow(window))
        return;
    ++count;
    EnumChildWindows(window, countChild, reinterpret_cast<LPARAM>(&count));
}

BOOL CALLBACK countTopLevel(HWND window, LPARAM counter)
{
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (processId == GetCurrentProcessId())
        countWithChildren(window, *reinterpret_cast<int*>(counter));
    return TRUE;
}

} // namespace

int countGdiObjects()
{
    return countGdiObjectsInTable();
}

int countKernelHandles()
{
    auto query = reinterpret_cast<QuerySystemInformation>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    if (!query)
        return -1;
    std::vector<uint8_t> buffer(1 << 20);
    for (int attempt = 0; attempt < 8; ++attempt) {
        ULONG needed = 0;
        const NTSTATUS status =
            query(kSystemExtendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &needed);
        if (status == kInfoLengthMismatch) {
            buffer.resize(std::max<size_t>(buffer.size() * 2, needed + 4096));
            continue;
        }
        if (status < 0)
            return -1;
        const auto* info = reinterpret_cast<const HandleInformationEx*>(buffer.data());
        int count = 0;
        for (ULONG_PTR i = 0; i < info->count; ++i)
            count += info->entries[i].processId == GetCurrentProcessId() ? 1 : 0;
        return count;
    }
    return -1;
}

int countWindows()
{
    int count = 0;
    EnumWindows(countTopLevel, reinterpret_cast<LPARAM>(&count));
    for (HWND window = FindWindowExW(HWND_MESSAGE, nullptr, nullptr, nullptr); window;
         window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) {
        DWORD processId = 0;
        GetWindowThreadProcessId(window, &processId);
        if (processId == GetCurrentProcessId())
            countWithChildren(window, count);
    }
    return count;
}

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

std::string ResourceCounts::describe() const
{
    return "GDI objects " + std::to_string(gdiObjects) + ", kernel handles " + std::to_string(kernelHandles)
        + ", windows " + std::to_string(windows);
}
