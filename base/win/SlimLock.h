#pragma once
// A mutex on a slim reader/writer lock: unlike std::mutex under MinGW's pthreads, it never
// creates a kernel event when threads contend, so it needs no clean-up and does not show
// up as a handle. Usable with std::lock_guard, and with a condition variable through wait.

#include <windows.h>

class SlimLock {
public:
    SlimLock() = default;
    SlimLock(const SlimLock&) = delete;
    SlimLock& operator=(const SlimLock&) = delete;

    void lock() { AcquireSRWLockExclusive(&lock_); }
    void unlock() { ReleaseSRWLockExclusive(&lock_); }
    // With the lock held: releases it until `condition` is woken, then takes it again.
    void wait(CONDITION_VARIABLE& condition) { SleepConditionVariableSRW(&condition, &lock_, INFINITE, 0); }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
};
