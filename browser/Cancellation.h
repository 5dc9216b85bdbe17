#pragma once
// A cancellation flag that one thread raises and another waits on: the job runner gives one
// to each job, and the HTTP client wakes from any wait when it is raised. Thread-safe.

#include "base/win/KernelHandle.h"

#include <windows.h>

#include <atomic>

namespace browser {

class Cancellation {
public:
    Cancellation(); // throws std::bad_alloc when no event can be made
    Cancellation(const Cancellation&) = delete;
    Cancellation& operator=(const Cancellation&) = delete;

    void cancel() const
    {
        cancelled_ = true;
        SetEvent(event_.get());
    }
    // Cheap enough to ask between any two steps.
    bool isCancelled() const { return cancelled_; }
    // Signalled once cancelled, for WaitForMultipleObjects; it stays signalled.
    HANDLE event() const { return event_.get(); }

private:
    KernelHandle event_;
    mutable std::atomic<bool> cancelled_{false};
};

} // namespace browser
