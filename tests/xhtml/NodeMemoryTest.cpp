#include "xhtml/HtmlParser.h"
#include "xhtml/NodeMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define NODE_MEMORY_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NODE_MEMORY_TEST_ASAN 1
#endif
#endif

using xhtml::NodeMemory;

namespace {

struct Block {
    unsigned char* data;
    size_t size;
};

Block allocateFilled(size_t size, int seed)
{
    Block block{static_cast<unsigned char*>(NodeMemory::allocate(size)), size};
    std::memset(block.data, seed & 0xFF, size);
    return block;
}

bool stillFilled(const Block& block, int seed)
{
    for (size_t i = 0; i < block.size; ++i) {
        if (block.data[i] != (seed & 0xFF))
            return false;
    }
    return true;
}

} // namespace

// Blocks are released one by one, some while their scope still carves from the same chunk
// (as a growing child list releases its old storage), the rest after the scope has ended.
// None of that may free a chunk that still holds a live block; the sanitizer build also
// reports any chunk that is never freed.
TEST(NodeMemoryTest, BlocksStayValidUntilReleasedInAnyOrder)
{
    std::vector<Block> blocks;
    {
        NodeMemory::Scope outer;
        for (int i = 0; i < 3000; ++i)
            blocks.push_back(allocateFilled(1 + (i * 37) % 200, i)); // spans many chunks
        blocks.push_back(allocateFilled(64 * 1024, 3000)); // too long to carve
        {
            NodeMemory::Scope inner;
            for (int i = 3001; i < 3100; ++i)
                blocks.push_back(allocateFilled(48, i));
        }
        blocks.push_back(allocateFilled(24, 3100)); // the outer scope carves again
        for (size_t i = 0; i < blocks.size(); i += 2)
            NodeMemory::release(blocks[i].data, blocks[i].size);
    }
    blocks.push_back(allocateFilled(40, 3101)); // outside any scope

    for (size_t i = 1; i < blocks.size(); i += 2) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(blocks[i].data) % NodeMemory::alignment, 0u) << i;
        EXPECT_TRUE(stillFilled(blocks[i], static_cast<int>(i))) << i;
    }
    for (size_t i = blocks.size(); i-- > 0;) {
        if (i % 2)
            NodeMemory::release(blocks[i].data, blocks[i].size);
    }
    NodeMemory::release(nullptr, 0);
}

// A tree may be deleted on a thread other than the one that parsed it, while that thread
// goes on parsing.
TEST(NodeMemoryTest, TreesParsedOnOneThreadAreDeletedOnAnother)
{
    const ZString markup(u"<div class=\"a\"><p style=\"color:red\">text &amp; more<br/><b>bold</b></p></div>x");
    auto parseMany = [&markup] {
        std::vector<std::unique_ptr<xhtml::HtmlTagNode>> roots;
        for (int i = 0; i < 200; ++i) {
            roots.push_back(std::make_unique<xhtml::HtmlTagNode>());
            xhtml::HtmlParser::parse(roots.back().get(), markup.c_str());
        }
        return roots;
    };
    auto first = parseMany();
    std::thread deleter([roots = std::move(first)]() mutable { roots.clear(); });
    auto second = parseMany();
    deleter.join();
    ASSERT_EQ(second.back()->children().size(), 2u);
    EXPECT_EQ(second.back()->children()[0]->parent(), second.back().get());
    std::thread([roots = std::move(second)]() mutable { roots.clear(); }).join();
}

#ifdef NODE_MEMORY_TEST_ASAN
// Carving must not blind the sanitizer: released blocks and the uncarved rest of a chunk
// stay poisoned.
TEST(NodeMemoryDeathTest, ReleasedAndUncarvedSpaceIsPoisoned)
{
    NodeMemory::Scope scope;
    auto* released = static_cast<volatile char*>(NodeMemory::allocate(32));
    NodeMemory::release(const_cast<char*>(released), 32);
    EXPECT_DEATH((void)released[0], "use-after-poison");
    auto* last = static_cast<volatile char*>(NodeMemory::allocate(32));
    EXPECT_DEATH((void)last[48], "use-after-poison");
    NodeMemory::release(const_cast<char*>(last), 32);
}
#endif
