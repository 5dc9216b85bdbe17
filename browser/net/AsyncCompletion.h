#pragma once
// The context that WinINet calls back with in asynchronous mode, for one exchange: it hears
// when a pending call completes, how far the exchange has got (connecting, sending,
// receiving) and when the handles that carry it close.
//
// The time-outs are decided here, on our own clock, instead of by WinINet's options: so a
// time-out reads the same on every WinINet, and a wait ends at once when cancelled.

#include "base/win/KernelHandle.h"

#include <windows.h>
#include <wininet.h>

#include <atomic>

namespace browser {

class AsyncCompletion {
public:
    enum class Phase { connecting, sending, receiving };
    enum class WaitEnd { completed, cancelled, phaseTimedOut, deadlinePassed };

    struct Limits {
        unsigned connectMs;
        unsigned sendMs;
        unsigned receiveMs;
        ULONGLONG deadline; // a GetTickCount64 value
    };

    AsyncCompletion(); // throws std::bad_alloc when its events cannot be made
    AsyncCompletion(const AsyncCompletion&) = delete;
    AsyncCompletion& operator=(const AsyncCompletion&) = delete;

    // Registered on the session; its handles inherit it.
    static void CALLBACK statusCallback(HINTERNET handle, DWORD_PTR context, DWORD status, void* info, DWORD length);
    DWORD_PTR context() { return reinterpret_cast<DWORD_PTR>(this); }
    // A handle was opened with context(); its closing is waited for.
    void handleOpened()
    {
        ++openHandles_;
        anyOpened_ = true;
    }

    // Before an asynchronous call: forgets any earlier completion and starts `phase`.
    void begin(Phase phase);
    // After the call answered ERROR_IO_PENDING. `phase` receives the phase that ran out.
    WaitEnd wait(HANDLE cancel, const Limits& limits, Phase& phase) const;
    // The completed call's result: ERROR_SUCCESS or a WinINet or Winsock error code.
    DWORD error() const { return error_; }

    // After the handles were closed: true once WinINet has closed them all, false if that
    // did not happen within `milliseconds` (then WinINet may still call back).
    bool waitUntilClosed(DWORD milliseconds) const;

private:
    void enter(Phase phase, bool restart);
    void onStatus(HINTERNET handle, DWORD status, const void* info);

    KernelHandle completed_; // auto-reset: one pending call at a time
    KernelHandle progress_;  // auto-reset: the phase moved on
    KernelHandle closed_;    // manual-reset
    std::atomic<DWORD> error_{ERROR_SUCCESS};
    std::atomic<Phase> phase_{Phase::connecting};
    std::atomic<ULONGLONG> phaseStart_{0};
    std::atomic<bool> completedSet_{false};
    mutable std::atomic<bool> waiting_{false};
    std::atomic<int> openHandles_{0};
    bool anyOpened_ = false; // only the owner's thread reads and writes it
};

} // namespace browser
