// Replays the fuzzers' seed corpus and every input that ever made a fuzz target fail.

#include "fuzz/FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Target = bool (*)(const uint8_t*, size_t);

// Runs every file below fuzz/<kind>/<target> through the target; returns how many ran.
int replay(const char* kind, const char* target, Target run)
{
    const fs::path folder = fs::path(XHTML_FUZZ_DIR) / kind / target;
    int count = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        EXPECT_TRUE(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())) << entry.path().string();
        ++count;
    }
    return count;
}

} // namespace

TEST(FuzzReplay, SeedCorpus)
{
    EXPECT_GE(replay("corpus", "parse", xhtmlfuzz::parseMarkup), 5);
    EXPECT_GE(replay("corpus", "entities", xhtmlfuzz::decodeEntityText), 3);
    EXPECT_GE(replay("corpus", "style", xhtmlfuzz::parseStyleText), 5);
}

TEST(FuzzReplay, FoundFailures)
{
    for (const char* target : {"parse", "entities", "style"}) {
        if (fs::exists(fs::path(XHTML_FUZZ_DIR) / "regressions" / target))
            replay("regressions", target, target[0] == 'p'   ? xhtmlfuzz::parseMarkup
                                          : target[0] == 'e' ? xhtmlfuzz::decodeEntityText
                                                             : xhtmlfuzz::parseStyleText);
    }
}

TEST(FuzzReplay, Utf16InputReachesAnyUnit)
{
    // A byte order mark selects UTF-16LE: here a lone surrogate and a zero inside a tag.
    const uint8_t input[] = {0xFF, 0xFE, '<', 0, 'b', 0, 0x00, 0xD8, '>', 0, 0, 0, 'x', 0};
    EXPECT_TRUE(xhtmlfuzz::parseMarkup(input, sizeof input));
    EXPECT_TRUE(xhtmlfuzz::decodeEntityText(input, sizeof input));
    EXPECT_TRUE(xhtmlfuzz::parseStyleText(input, sizeof input));
}
