// Replays the fuzzers' seed corpus and every input that ever made a fuzz target fail.

#include "fuzz/FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

TEST(FuzzReplay, SeedCorpusAndFoundFailures)
{
    namespace fs = std::filesystem;
    const struct {
        const char* name;
        bool (*run)(const uint8_t*, size_t);
    } targets[] = {{"parse", xhtmlfuzz::parseMarkup}, {"entities", xhtmlfuzz::decodeEntityText}, {"style", xhtmlfuzz::parseStyleText}};
    for (const auto& target : targets) {
        int seeds = 0;
        for (const char* kind : {"corpus", "regressions"}) {
            const fs::path folder = fs::path(XHTML_FUZZ_DIR) / kind / target.name;
            for (const fs::directory_entry& entry : fs::exists(folder) ? fs::directory_iterator(folder) : fs::directory_iterator()) {
                std::ifstream file(entry.path(), std::ios::binary);
                const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
                EXPECT_TRUE(target.run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())) << entry.path();
                seeds += kind[0] == 'c';
            }
        }
        EXPECT_GE(seeds, 4) << "the corpus of " << target.name << " is found";
    }
}
