// Replays the reader fuzzer's seed corpus and every input that ever made it fail.
#include "fuzz/FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

// Runs every file below fuzz/<kind>/open through the target; returns how many ran.
int replay(const char* kind)
{
    const fs::path folder = fs::path(ZPDF_FUZZ_DIR) / kind / "open";
    int count = 0;
    if (!fs::exists(folder)) // no failure found yet: git keeps no empty folder
        return count;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        EXPECT_TRUE(zpdffuzz::openAndLoad(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()))
            << entry.path().string();
        ++count;
    }
    return count;
}

TEST(FuzzReplay, SeedCorpus) { EXPECT_GE(replay("corpus"), 7); }

TEST(FuzzReplay, FoundFailures) { replay("regressions"); }

} // namespace
