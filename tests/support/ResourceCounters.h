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

// The threads of this process now (-1 if unreadable), and once back at `expected` or after
// the time-out, as above. System libraries keep pool threads that end by themselves some
// seconds after their last work (Wine's WinINet after about five, each with a handle): let
// them go before counting, or count only the threads a test saw its own code run on.
int countThreads();
int countThreadsSettled(int expected, unsigned timeoutMs = 5000);
// True while the thread with this id has not ended.
bool threadRunning(unsigned long threadId);
