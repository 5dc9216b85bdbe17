// Replays the fuzzers' seed corpus and every input that ever made a fuzz target fail.

#include "fuzz/FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

const struct {
    const char* name;
    bool (*run)(const uint8_t*, size_t);
    int seeds; // at least this many in the corpus
} targets[] = {
    {"parse", xhtmlfuzz::parseMarkup, 5},
    {"entities", xhtmlfuzz::decodeEntityText, 3},
    {"style", xhtmlfuzz::parseStyleText, 5},
};

} // namespace

TEST(FuzzReplay, SeedCorpusAndFoundFailures)
{
    for (const auto& target : targets) {
        for (const char* kind : {"corpus", "regressions"}) {
            const fs::path folder = fs::path(XHTML_FUZZ_DIR) / kind / target.name;
            int count = 0;
            const auto entries = fs::exists(folder) ? fs::directory_iterator(folder) : fs::directory_iterator();
            for (const fs::directory_entry& entry : entries) {
                std::ifstream file(entry.path(), std::ios::binary);
                const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
                EXPECT_TRUE(target.run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())) << entry.path();
                ++count;
            }
            EXPECT_GE(count, kind[0] == 'c' ? target.seeds : 0) << target.name;
        }
    }
}

TEST(FuzzReplay, Utf16InputReachesAnyUnit)
{
    // A byte order mark selects UTF-16LE: here a lone surrogate and a zero inside a tag.
    const uint8_t input[] = {0xFF, 0xFE, '<', 0, 'b', 0, 0x00, 0xD8, '>', 0, 0, 0, 'x', 0};
    for (const auto& target : targets)
        EXPECT_TRUE(target.run(input, sizeof input)) << target.name;
}
