// Node memory: blocks live until their own release, on any thread.

#include "xhtml/HtmlParser.h"
#include "xhtml/NodeMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

using xhtml::NodeMemory;

namespace {

struct Block {
    unsigned char* data;
    size_t size;
};

Block filled(size_t size, size_t seed)
{
    Block block{static_cast<unsigned char*>(NodeMemory::allocate(size)), size};
    std::memset(block.data, static_cast<unsigned char>(seed), size);
    return block;
}

} // namespace

// Half the blocks are released while their scope still carves from the same chunk (as a
// growing child list releases its old storage), the rest after it has ended. The sanitizer
// build reports a chunk freed too early or never.
TEST(NodeMemory, BlocksStayValidUntilReleasedInAnyOrder)
{
    std::vector<Block> blocks;
    {
        NodeMemory::Scope outer;
        for (size_t i = 0; i < 3000; ++i)
            blocks.push_back(filled(1 + (i * 37) % 200, i)); // spans many chunks
        blocks.push_back(filled(64 * 1024, blocks.size())); // too long to carve
        {
            NodeMemory::Scope inner;
            for (int i = 0; i < 99; ++i)
                blocks.push_back(filled(48, blocks.size()));
        }
        blocks.push_back(filled(24, blocks.size())); // the outer scope carves again
        for (size_t i = 0; i < blocks.size(); i += 2)
            NodeMemory::release(blocks[i].data, blocks[i].size);
    }
    blocks.push_back(filled(40, blocks.size())); // outside any scope
    ASSERT_EQ(blocks.size() % 2, 0u);
    for (size_t i = blocks.size() - 1; i < blocks.size(); i -= 2) { // the odd ones, last first
        const Block& b = blocks[i];
        EXPECT_EQ(reinterpret_cast<uintptr_t>(b.data) % NodeMemory::alignment, 0u) << i;
        EXPECT_EQ(size_t(std::count(b.data, b.data + b.size, static_cast<unsigned char>(i))), b.size) << i;
        NodeMemory::release(b.data, b.size);
    }
}

// A tree may be deleted on another thread while the one that parsed it goes on parsing.
TEST(NodeMemory, TreesParsedOnOneThreadAreDeletedOnAnother)
{
    const ZString markup(u"<div class=\"a\"><p style=\"color:red\">text &amp; more<br/><b>bold</b></p></div>x");
    auto parseMany = [&markup] {
        std::vector<std::unique_ptr<xhtml::HtmlTagNode>> roots(200);
        for (auto& root : roots)
            xhtml::HtmlParser::parse((root = std::make_unique<xhtml::HtmlTagNode>()).get(), markup.c_str());
        return roots;
    };
    std::thread deleter([roots = parseMany()]() mutable { roots.clear(); });
    auto second = parseMany();
    deleter.join();
    ASSERT_EQ(second.back()->children().size(), 2u);
    EXPECT_EQ(second.back()->children()[0]->parent(), second.back().get());
    std::thread([roots = std::move(second)]() mutable { roots.clear(); }).join();
}
