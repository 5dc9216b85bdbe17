#pragma once
// What the process holds now, for leak tests: run something many times and compare before
// and after. GetGuiResources and GetProcessHandleCount answer 0 under Wine, so the GDI
// handle table and the system handle list are read instead.

#include <string>

struct ResourceCounts {
    int gdiObjects = 0;    // not counting stock objects; -1 if unreadable
    int kernelHandles = 0; // -1 if unreadable
    int windows = 0;       // top-level, message-only and all their descendants

    bool operator==(const ResourceCounts& o) const
    {
        return gdiObjects == o.gdiObjects && kernelHandles == o.kernelHandles && windows == o.windows;
    }

    std::string describe() const;
};

ResourceCounts countResources();
// The counts once they are back at `expected`, or after `timeoutMs` if they do not get
// there: the system frees some things a little later (a destroyed window's handles), so
// this pumps this thread's messages meanwhile; a real leak stays.
ResourceCounts countResourcesSettled(const ResourceCounts& expected, unsigned timeoutMs = 2000);

// True while the thread with this id has not ended. Counting all threads would not do for
// leak tests: system libraries (WinINet, under Wine and Windows alike) keep pool threads
// that come and go by themselves; the threads a test saw its own code run on are decisive.
bool threadRunning(unsigned long threadId);
