// The main of every test program: GoogleTest plus a watchdog, so that a hung test (a modal
// loop nobody closes, a lost message) fails with a clear message instead of blocking the run.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const char* limit = std::getenv("PRYXA_TEST_TIME_LIMIT");
    const int seconds = limit && std::atoi(limit) > 0 ? std::atoi(limit) : 240;
    std::thread([seconds] {
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info(); // takes gtest's lock
        const std::string name = test ? std::string(test->test_suite_name()) + "." + test->name() : "no test";
        std::fprintf(stderr, "\nFAILED: time limit of %d s exceeded while running %s (hung test?)\n", seconds,
                     name.c_str());
        std::fflush(stderr);
        std::_Exit(124);
    }).detach();
    return RUN_ALL_TESTS();
}
