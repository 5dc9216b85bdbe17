// The job runner: completions on the runner's thread, bounded workers, cancellation, and a
// destruction that cancels and joins everything, with 100 HTTP requests in flight too.
#include "LoopbackServer.h"

#include "browser/Cancellation.h"
#include "browser/HttpClient.h"
#include "browser/JobRunner.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>

using namespace browser;
using namespace browserTest;

namespace {

// Waits (without pumping: completions must not run meanwhile) until `condition` holds.
template <class Condition>
bool waitFor(Condition condition, DWORD timeoutMs = 10000)
{
    for (const ULONGLONG end = GetTickCount64() + timeoutMs; !condition(); Sleep(2))
        if (GetTickCount64() > end)
            return false;
    return true;
}

// Thread ids seen by jobs, from any thread.
struct ThreadLog {
    void add() { std::lock_guard<SlimLock> hold(lock); all.insert(GetCurrentThreadId()); }
    std::set<DWORD> ids() const { std::lock_guard<SlimLock> hold(lock); return all; }
    mutable SlimLock lock;
    std::set<DWORD> all;
};

void waitUntilCancelled(const Cancellation& cancellation)
{
    WaitForSingleObject(cancellation.event(), 10000);
}

// A throwing job or completion ends only itself: every completion still comes, from the same workers.
TEST(JobRunner, CompletionsComeOnTheRunnersThreadFromBoundedWorkersThrowOrNot)
{
    JobRunner runner(3);
    ThreadLog workers;
    std::atomic<int> running{0}, most{0};
    std::vector<DWORD> completionThreads;
    for (int i = 0; i < 12; ++i) {
        const JobId id = runner.post(
            [&, i](const Cancellation&) {
                workers.add();
                const int now = ++running;
                most = std::max(most.load(), now);
                waitFor([&] { return most >= 3; }, 2000); // three at once, if there are three
                Sleep(20);                                  // long enough for a fourth to show
                --running;
                if (i == 0)
                    throw std::runtime_error("work");
            },
            [&, i] {
                completionThreads.push_back(GetCurrentThreadId());
                if (i == 1)
                    throw std::runtime_error("completion");
            });
        ASSERT_NE(id, 0u);
    }
    ASSERT_TRUE(pumpUntil([&] { return completionThreads.size() == 12; }, 20000));
    EXPECT_EQ(completionThreads, std::vector<DWORD>(12, GetCurrentThreadId()));
    EXPECT_EQ(most, 3);
    EXPECT_EQ(workers.ids().size(), 3u);
    EXPECT_EQ(workers.ids().count(GetCurrentThreadId()), 0u);
}

TEST(JobRunner, CancellingAJobOrAll)
{
    JobRunner runner(1);
    std::vector<int> order;
    std::atomic<bool> firstStarted{false};
    const auto finished = [&](int job) { return [&order, job] { order.push_back(job); }; };
    const JobId first = runner.post(
        [&](const Cancellation& c) {
            firstStarted = true;
            waitUntilCancelled(c);
        },
        finished(1));
    const JobId second = runner.post(waitUntilCancelled, finished(2));
    const JobId third = runner.post(waitUntilCancelled, finished(3));
    ASSERT_TRUE(waitFor([&] { return firstStarted.load(); }));

    EXPECT_TRUE(runner.cancel(third)); // queued: it moves to the front
    EXPECT_TRUE(runner.cancel(first)); // running
    ASSERT_TRUE(pumpUntil([&] { return order.size() == 2; }, 10000));
    EXPECT_TRUE(runner.cancel(second));
    ASSERT_TRUE(pumpUntil([&] { return order.size() == 3; }, 10000));
    EXPECT_EQ(order, (std::vector<int>{1, 3, 2}));
    EXPECT_FALSE(runner.cancel(first)); // finished
    EXPECT_FALSE(runner.cancel(0));

    std::atomic<int> sawCancel{0};
    for (int i = 0; i < 3; ++i)
        runner.post([&](const Cancellation& c) { waitUntilCancelled(c); sawCancel += c.isCancelled(); }, finished(4));
    runner.cancelAll();
    ASSERT_TRUE(pumpUntil([&] { return order.size() == 6; }, 10000));
    EXPECT_EQ(sawCancel, 3);
}

// Once the runner goes, in a completion too, no further completion runs.
TEST(JobRunner, ACompletionMayDestroyTheRunner)
{
    auto runner = std::make_unique<JobRunner>(1);
    std::atomic<int> worked{0};
    int completions = 0;
    for (int i = 0; i < 3; ++i)
        runner->post([&](const Cancellation&) { ++worked; }, [&] { ++completions; runner.reset(); });
    ASSERT_TRUE(waitFor([&] { return worked == 3; }));
    pumpUntil([&] { return completions > 0; }, 10000);
    pumpMessages(100);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(runner, nullptr);
}

// What one round of 100 requests saw: four of them running in the middle of their bodies
// when the runner was destroyed.
struct RoundSeen {
    int started, cancelled, completions;
    std::set<DWORD> workers;
};

RoundSeen destroyWithRequestsInFlight(const HttpClient& client)
{
    ThreadLog workers;
    std::atomic<int> cancelled{0}, started{0};
    int completions = 0;
    LoopbackServer server({{"/slow", [](const ServerRequest&, ServerConnection& connection) {
                                connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n"
                                                "Connection: close\r\n\r\n");
                                while (connection.send("x") && connection.pause(20)) {
                                }
                            }}});
    HttpRequest request;
    request.url = server.url("/slow").c_str();
    auto runner = std::make_unique<JobRunner>(4);
    for (int i = 0; i < 100; ++i)
        runner->post(
            [&](const Cancellation& c) {
                workers.add();
                ++started;
                cancelled += client.fetch(request, c).outcome == HttpOutcome::cancelled;
            },
            [&] { ++completions; });
    EXPECT_TRUE(pumpUntil([&] { return server.requestsFor("/slow") == 4; }, 20000));
    runner.reset();
    pumpMessages(100); // a completion posted late would come now
    return {started, cancelled, completions, workers.ids()};
}

TEST(JobRunner, GoingWithHundredRequestsInFlightCancelsAndJoinsEverything)
{
    const HttpClient client;
    // A first round lets WinINet and Winsock set up what they keep for the process; then
    // their pool threads are let go.
    const int threadsAtStart = countThreads();
    destroyWithRequestsInFlight(client);
    pumpUntil([&] { return countThreads() <= threadsAtStart; }, 15000);
    const int threadsBefore = countThreads();
    const ResourceCounts before = countResources();

    const RoundSeen seen = destroyWithRequestsInFlight(client);
    // The other 96 never ran, and no completion did.
    EXPECT_EQ(std::vector<int>({seen.started, seen.cancelled, seen.completions, int(seen.workers.size())}),
              std::vector<int>({4, 4, 0, 4}));
    for (DWORD id : seen.workers)
        EXPECT_FALSE(threadRunning(id)) << "worker " << id;
    EXPECT_TRUE(pumpUntil([&] { return countThreads() == threadsBefore; }, 15000)) << countThreads() << " threads";
    EXPECT_EQ(countResourcesSettled(before, 15000).describe(), before.describe());
}

} // namespace
