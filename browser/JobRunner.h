#pragma once
// Background jobs for the web bridge: a queue served by a bounded number of worker threads,
// with each job's completion handed back to the thread that made the runner (the UI
// thread) through a message-only window, and run there from its message loop.
//
//     auto response = std::make_shared<browser::HttpResponse>();
//     JobId id = runner.post(
//         [=](const browser::Cancellation& c) { *response = client.fetch(request, c); }, // a worker
//         [=] { callScript(*response); });                                                // UI thread
//
// Destroying the runner cancels every queued and running job and joins the workers before
// it returns: no thread of the runner outlives it, and no completion runs after it began
// to go. Completions may destroy the runner. Make, use and destroy the runner on one
// thread, which must pump messages for the completions to arrive.

#include "base/win/BaseWindow.h"
#include "base/win/KernelHandle.h"
#include "base/win/SlimLock.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace browser {

class Cancellation;

using JobId = std::uint64_t; // 0 is no job

class JobRunner {
public:
    // Runs on a worker. It should end soon once its Cancellation is raised.
    using Work = std::function<void(const Cancellation&)>;
    // Runs on the runner's thread once the work is done, cancelled or not.
    using Completion = std::function<void()>;

    // At most `maxWorkers` threads (at least one), started as jobs arrive.
    explicit JobRunner(unsigned maxWorkers = 4);
    ~JobRunner();
    JobRunner(const JobRunner&) = delete;
    JobRunner& operator=(const JobRunner&) = delete;

    // Queues a job; its closures are destroyed on this thread. 0 when it cannot be queued
    // (no window or no thread could be made, or out of memory); then nothing runs.
    JobId post(Work work, Completion completion);
    // Raises the job's Cancellation; a queued job moves to the front, so that its
    // completion comes soon. False for a job that is finished or unknown.
    bool cancel(JobId id);
    // Cancels every queued and running job.
    void cancelAll();

private:
    struct Job;
    class CompletionWindow;

    static DWORD WINAPI workerMain(void* runner);
    void workLoop();
    std::unique_ptr<Job> nextJob();
    void finish(std::unique_ptr<Job> job);
    bool startWorkerIfNeeded();
    void deliverCompletions();

    const unsigned maxWorkers_;
    std::unique_ptr<CompletionWindow> window_;
    HWND windowHandle_ = nullptr; // read by the workers
    JobId lastId_ = 0;

    SlimLock lock_; // guards everything below
    CONDITION_VARIABLE wake_ = CONDITION_VARIABLE_INIT;
    std::deque<std::unique_ptr<Job>> queued_;
    std::vector<Job*> running_;
    std::deque<std::unique_ptr<Job>> finished_;
    std::vector<KernelHandle> workers_;
    unsigned idleWorkers_ = 0;
    bool stopping_ = false;

    // Cleared when the runner goes, for completions that are being delivered meanwhile.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace browser
