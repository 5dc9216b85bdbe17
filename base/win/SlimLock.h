#pragma once
// A mutex on a slim reader/writer lock: unlike std::mutex under MinGW's pthreads, it never
// creates a kernel event when threads contend, so it needs no clean-up and does not show
// up as a handle. Usable with std::lock_guard.

#include <windows.h>

class SlimLock {
public:
    SlimLock() = default;
    SlimLock(const SlimLock&) = delete;
    SlimLock& operator=(const SlimLock&) = delete;

    void lock() { AcquireSRWLockExclusive(&lock_); }
    void unlock() { ReleaseSRWLockExclusive(&lock_); }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
};
