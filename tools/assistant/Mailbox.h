#pragma once
// Command lines waiting for the assistant's worker thread, which handles them one after
// another in the order they came. Whoever hands a line over is answered at once, however
// long saving its files takes.

#include "base/ZString.h"
#include "base/win/KernelHandle.h"
#include "base/win/SlimLock.h"

#include <windows.h>

#include <deque>
#include <functional>

class Mailbox {
public:
    // Called on the worker thread, one line at a time; what it throws is dropped.
    using Handler = std::function<void(const ZString& line)>;

    explicit Mailbox(Handler handler);
    // Handles the lines still waiting, then ends the thread: nothing handed over is lost.
    ~Mailbox();
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    // Returns at once. Without a worker thread (it could not be started) the line is
    // handled here and now instead.
    void post(ZString line);
    // A line is waiting or being handled.
    bool busy() const;

private:
    static DWORD WINAPI threadMain(void* mailbox);
    void handleWaitingLines();
    void handle(const ZString& line) const;

    Handler handler_;
    mutable SlimLock lock_; // guards the three below
    std::deque<ZString> waiting_;
    bool handling_ = false;
    bool stopping_ = false;
    KernelHandle wake_; // auto-reset: set when a line comes or the thread should end
    KernelHandle thread_;
};
