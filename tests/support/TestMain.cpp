// The main of every test program: GoogleTest plus a watchdog, so that a hung test
// (a modal loop nobody closes, a lost message) fails with a clear message instead of
// blocking the whole run.

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

namespace {

std::mutex watchMutex;
std::condition_variable watchDone;
bool finished = false;
std::string currentTest = "(start-up)";

class CurrentTestTracker : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& info) override
    {
        std::lock_guard<std::mutex> lock(watchMutex);
        currentTest = std::string(info.test_suite_name()) + "." + info.name();
    }
};

int timeLimitSeconds()
{
    const char* text = std::getenv("PRYXA_TEST_TIME_LIMIT");
    const int seconds = text ? std::atoi(text) : 0;
    return seconds > 0 ? seconds : 240;
}

void watch(int seconds)
{
    std::unique_lock<std::mutex> lock(watchMutex);
    if (watchDone.wait_for(lock, std::chrono::seconds(seconds), [] { return finished; }))
        return;
    std::fprintf(stderr, "\nFAILED: time limit of %d s exceeded while running %s (hung test?)\n", seconds,
                 currentTest.c_str());
    std::fflush(stderr);
    std::_Exit(124);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new CurrentTestTracker);
    std::thread watchdog(watch, timeLimitSeconds());
    const int result = RUN_ALL_TESTS();
    {
        std::lock_guard<std::mutex> lock(watchMutex);
        finished = true;
    }
    watchDone.notify_all();
    watchdog.join();
    return result;
}
