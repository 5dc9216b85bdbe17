#include "browser/net/AsyncCompletion.h"

#include <algorithm>
#include <new>

namespace browser {

namespace {

unsigned limitOf(AsyncCompletion::Phase phase, const AsyncCompletion::Limits& limits)
{
    switch (phase) {
    case AsyncCompletion::Phase::connecting:
        return limits.connectMs;
    case AsyncCompletion::Phase::sending:
        return limits.sendMs;
    case AsyncCompletion::Phase::receiving:
        break;
    }
    return limits.receiveMs;
}

} // namespace

AsyncCompletion::AsyncCompletion()
    : completed_(CreateEventW(nullptr, FALSE, FALSE, nullptr)), progress_(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      closed_(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    if (!completed_ || !progress_ || !closed_)
        throw std::bad_alloc();
}

void CALLBACK AsyncCompletion::statusCallback(HINTERNET handle, DWORD_PTR context, DWORD status, void* info, DWORD)
{
    // The session has no context; only the connection and the request carry one.
    if (context)
        reinterpret_cast<AsyncCompletion*>(context)->onStatus(handle, status, info);
}

void AsyncCompletion::onStatus(HINTERNET, DWORD status, const void* info)
{
    switch (status) {
    case INTERNET_STATUS_CONNECTED_TO_SERVER:
    case INTERNET_STATUS_SENDING_REQUEST:
        enter(Phase::sending, false);
        break;
    case INTERNET_STATUS_REQUEST_SENT:
    case INTERNET_STATUS_RECEIVING_RESPONSE:
        enter(Phase::receiving, false);
        break;
    case INTERNET_STATUS_RESPONSE_RECEIVED:
        enter(Phase::receiving, true); // data came: the wait for the next piece starts now
        break;
    case INTERNET_STATUS_REQUEST_COMPLETE: {
        // Some WinINets put a byte count into dwError on success: dwResult decides.
        const auto* result = static_cast<const INTERNET_ASYNC_RESULT*>(info);
        error_ = result->dwResult ? ERROR_SUCCESS : (result->dwError ? result->dwError : ERROR_INTERNET_INTERNAL_ERROR);
        completedSet_ = true;
        SetEvent(completed_.get());
        break;
    }
    case INTERNET_STATUS_HANDLE_CLOSING:
        // The last call for that handle; nothing of this object is touched after the last one.
        if (--openHandles_ == 0)
            SetEvent(closed_.get());
        break;
    default:
        break;
    }
}

// A phase's time counts from when it began; within the receiving phase, from the last data.
// A waiter is woken to take the new limit. (Either it is seen waiting here, or it reads the
// new phase after it said so: the atomics keep that order.)
void AsyncCompletion::enter(Phase phase, bool restart)
{
    if (restart || phase_.exchange(phase) != phase) {
        phaseStart_ = GetTickCount64();
        if (waiting_)
            SetEvent(progress_.get());
    }
}

// The completion event is reset only when it was set: calls that answer at once, the common
// case on a fast connection, then cost no system call here. A stale progress signal costs
// the next wait one look at the clock, so it is left.
void AsyncCompletion::begin(Phase phase)
{
    if (completedSet_.exchange(false))
        ResetEvent(completed_.get());
    error_ = ERROR_SUCCESS;
    phase_ = phase;
    phaseStart_ = GetTickCount64();
}

AsyncCompletion::WaitEnd AsyncCompletion::wait(HANDLE cancel, const Limits& limits, Phase& phase) const
{
    // A cancellation wins over a completion that came at the same time.
    const HANDLE events[] = {cancel, completed_.get(), progress_.get()};
    waiting_ = true;
    const struct Done {
        std::atomic<bool>& waiting;
        ~Done() { waiting = false; }
    } done{waiting_};
    for (;;) {
        phase = phase_;
        const ULONGLONG phaseEnd = phaseStart_ + limitOf(phase, limits);
        const ULONGLONG now = GetTickCount64();
        if (now >= limits.deadline)
            return WaitEnd::deadlinePassed;
        if (now >= phaseEnd)
            return WaitEnd::phaseTimedOut;
        const DWORD wait = static_cast<DWORD>(std::min(limits.deadline, phaseEnd) - now);
        const DWORD woken = WaitForMultipleObjects(3, events, FALSE, wait);
        if (woken == WAIT_OBJECT_0 + 1)
            return WaitEnd::completed;
        // Cancelled, or the events cannot be waited for, which ends the exchange alike.
        if (woken != WAIT_TIMEOUT && woken != WAIT_OBJECT_0 + 2)
            return WaitEnd::cancelled;
        // A time ran out or the phase moved on: look again.
    }
}

bool AsyncCompletion::waitUntilClosed(DWORD milliseconds) const
{
    // The event, not the count: the callback still uses the object between the two.
    return !anyOpened_ || WaitForSingleObject(closed_.get(), milliseconds) == WAIT_OBJECT_0;
}

} // namespace browser
