// Replays the fuzzers' seed corpus and every input that ever made a fuzz target fail.

#include "fuzz/FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

TEST(FuzzReplay, SeedCorpusAndFoundFailures)
{
    namespace fs = std::filesystem;
    const std::pair<const char*, bool (*)(const uint8_t*, size_t)> targets[] = {
        {"parse", xhtmlfuzz::parseMarkup}, {"entities", xhtmlfuzz::decodeEntityText}, {"style", xhtmlfuzz::parseStyleText}};
    for (const auto& [name, run] : targets) {
        int seeds = 0;
        for (const char* kind : {"corpus", "regressions"}) {
            const fs::path folder = fs::path(XHTML_FUZZ_DIR) / kind / name;
            for (const fs::directory_entry& entry : fs::exists(folder) ? fs::directory_iterator(folder) : fs::directory_iterator()) {
                std::ifstream file(entry.path(), std::ios::binary);
                const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
                EXPECT_TRUE(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())) << entry.path();
                seeds += kind[0] == 'c';
            }
        }
        EXPECT_GE(seeds, 4) << "the corpus of " << name << " is found";
    }
}
