#pragma once
// Counts of what the process holds now, for leak tests: run something many times and
// compare before and after. GetGuiResources and GetProcessHandleCount answer 0 under Wine,
// so these read the process's GDI handle table and the system handle list instead, which
// work both there and on Windows.

#include <string>

struct ResourceCounts {
    int gdiObjects = 0;
    int kernelHandles = 0;
    int windows = 0;

    bool operator==(const ResourceCounts& o) const
    {
        return gdiObjects == o.gdiObjects && kernelHandles == o.kernelHandles && windows == o.windows;
    }

    std::string describe() const;
};

// Live GDI objects of this process (not counting stock objects); -1 if unreadable.
int countGdiObjects();
// Open kernel handles of this process; -1 if unreadable.
int countKernelHandles();
// Windows of this process: top-level, message-only and all their descendants.
int countWindows();

ResourceCounts countResources();
// The counts once they are back at `expected`, or after `timeoutMs` if they do not get
// there. The system frees some things a little later (a destroyed window's handles), so a
// leak check gives it that time while pumping this thread's messages; a real leak stays.
ResourceCounts countResourcesSettled(const ResourceCounts& expected, unsigned timeoutMs = 2000);
