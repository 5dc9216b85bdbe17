#include "tools/assistant/Mailbox.h"

#include <mutex>

Mailbox::Mailbox(Handler handler)
    : handler_(std::move(handler)), wake_(CreateEventW(nullptr, FALSE, FALSE, nullptr))
{
    if (wake_)
        thread_ = KernelHandle(CreateThread(nullptr, 0, threadMain, this, 0, nullptr));
}

Mailbox::~Mailbox()
{
    if (!thread_)
        return;
    {
        std::lock_guard<SlimLock> guard(lock_);
        stopping_ = true;
    }
    SetEvent(wake_.get());
    WaitForSingleObject(thread_.get(), INFINITE);
}

void Mailbox::post(ZString line)
{
    if (!thread_) {
        handle(line);
        return;
    }
    {
        std::lock_guard<SlimLock> guard(lock_);
        waiting_.push_back(std::move(line));
    }
    SetEvent(wake_.get());
}

bool Mailbox::busy() const
{
    std::lock_guard<SlimLock> guard(lock_);
    return handling_ || !waiting_.empty();
}

DWORD WINAPI Mailbox::threadMain(void* mailbox)
{
    auto* self = static_cast<Mailbox*>(mailbox);
    for (;;) {
        WaitForSingleObject(self->wake_.get(), INFINITE);
        self->handleWaitingLines();
        std::lock_guard<SlimLock> guard(self->lock_);
        if (self->stopping_ && self->waiting_.empty())
            return 0;
    }
}

void Mailbox::handleWaitingLines()
{
    for (;;) {
        ZString line;
        {
            std::lock_guard<SlimLock> guard(lock_);
            handling_ = !waiting_.empty();
            if (!handling_)
                return;
            line = std::move(waiting_.front());
            waiting_.pop_front();
        }
        handle(line);
    }
}

void Mailbox::handle(const ZString& line) const
{
    try {
        handler_(line);
    } catch (...) {
        // One bad line must not stop the lines after it.
    }
}
