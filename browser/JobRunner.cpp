#include "browser/JobRunner.h"

#include "browser/Cancellation.h"

#include "base/win/ThisModule.h"

#include <algorithm>
#include <mutex>

namespace browser {

namespace {

constexpr wchar_t className[] = L"PryxaJobRunner";
constexpr UINT deliverMessage = WM_APP + 1;

bool registerClass(HINSTANCE instance)
{
    WNDCLASSEXW windowClass = {};
    windowClass.hInstance = instance;
    windowClass.lpszClassName = className;
    return BaseWindow::registerClass(windowClass);
}

} // namespace

struct JobRunner::Job {
    JobId id = 0;
    Work work;
    Completion completion;
    Cancellation cancellation;
};

// Where the workers post that completions are ready; it hands them to the runner.
class JobRunner::CompletionWindow : public BaseWindow {
public:
    explicit CompletionWindow(JobRunner& runner) : runner_(runner) {}

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message != deliverMessage)
            return BaseWindow::handleMessage(message, wParam, lParam);
        runner_.deliverCompletions(); // may destroy the runner and this window
        return 0;
    }

private:
    JobRunner& runner_;
};

JobRunner::JobRunner(unsigned maxWorkers)
    : maxWorkers_(std::max(1u, maxWorkers)), window_(std::make_unique<CompletionWindow>(*this))
{
    if (registerClass(thisModule()))
        window_->create(0, className, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, thisModule(), window_.get());
    windowHandle_ = window_->handle();
}

JobRunner::~JobRunner()
{
    *alive_ = false;
    std::deque<std::unique_ptr<Job>> dropped;
    {
        std::lock_guard<SlimLock> hold(lock_);
        stopping_ = true;
        dropped.swap(queued_);
        for (Job* job : running_)
            job->cancellation.cancel();
    }
    WakeAllConditionVariable(&wake_);
    for (const KernelHandle& worker : workers_)
        WaitForSingleObject(worker.get(), INFINITE);
    // What finished meanwhile is never delivered; the window goes last.
}

JobId JobRunner::post(Work work, Completion completion)
{
    try {
        if (!windowHandle_)
            return 0;
        auto job = std::make_unique<Job>();
        job->work = std::move(work);
        job->completion = std::move(completion);
        std::lock_guard<SlimLock> hold(lock_);
        if (!startWorkerIfNeeded())
            return 0;
        job->id = ++lastId_;
        queued_.push_back(std::move(job));
        WakeConditionVariable(&wake_);
        return lastId_;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

bool JobRunner::cancel(JobId id)
{
    std::lock_guard<SlimLock> hold(lock_);
    const auto queued = std::find_if(queued_.begin(), queued_.end(), [id](const auto& job) { return job->id == id; });
    if (queued != queued_.end()) {
        std::unique_ptr<Job> job = std::move(*queued);
        queued_.erase(queued);
        job->cancellation.cancel();
        queued_.push_front(std::move(job));
        return true;
    }
    const auto running = std::find_if(running_.begin(), running_.end(), [id](Job* job) { return job->id == id; });
    if (running == running_.end())
        return false;
    (*running)->cancellation.cancel();
    return true;
}

void JobRunner::cancelAll()
{
    std::lock_guard<SlimLock> hold(lock_);
    for (const auto& job : queued_)
        job->cancellation.cancel();
    for (Job* job : running_)
        job->cancellation.cancel();
}

// With the lock held. False when no worker exists and none can be started.
bool JobRunner::startWorkerIfNeeded()
{
    if (queued_.size() < idleWorkers_ || workers_.size() >= maxWorkers_)
        return !workers_.empty();
    KernelHandle worker(CreateThread(nullptr, 0, workerMain, this, 0, nullptr));
    if (worker)
        workers_.push_back(std::move(worker));
    return !workers_.empty();
}

DWORD WINAPI JobRunner::workerMain(void* runner)
{
    static_cast<JobRunner*>(runner)->workLoop();
    return 0;
}

void JobRunner::workLoop()
{
    while (std::unique_ptr<Job> job = nextJob()) {
        try {
            job->work(job->cancellation);
        } catch (...) {
            // A failing job ends alone; its completion still comes.
        }
        finish(std::move(job));
    }
}

std::unique_ptr<JobRunner::Job> JobRunner::nextJob()
{
    std::lock_guard<SlimLock> hold(lock_);
    while (!stopping_ && queued_.empty()) {
        ++idleWorkers_;
        lock_.wait(wake_);
        --idleWorkers_;
    }
    if (stopping_)
        return nullptr;
    std::unique_ptr<Job> job = std::move(queued_.front());
    queued_.pop_front();
    running_.push_back(job.get());
    return job;
}

// The job goes to the runner's thread whole: closures are never destroyed on a worker.
void JobRunner::finish(std::unique_ptr<Job> job)
{
    bool first = false;
    {
        std::lock_guard<SlimLock> hold(lock_);
        running_.erase(std::find(running_.begin(), running_.end(), job.get()));
        first = finished_.empty();
        finished_.push_back(std::move(job));
    }
    if (first)
        PostMessageW(windowHandle_, deliverMessage, 0, 0);
}

void JobRunner::deliverCompletions()
{
    std::deque<std::unique_ptr<Job>> ready;
    {
        std::lock_guard<SlimLock> hold(lock_);
        ready.swap(finished_);
    }
    const std::shared_ptr<bool> alive = alive_;
    while (!ready.empty() && *alive) {
        const std::unique_ptr<Job> job = std::move(ready.front());
        ready.pop_front();
        try {
            job->completion();
        } catch (...) {
            // Nothing may leave a window procedure.
        }
    }
}

} // namespace browser
