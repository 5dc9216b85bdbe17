#include "xhtml/NodeMemory.h"

#include <atomic>

#if defined(__SANITIZE_ADDRESS__)
#define XHTML_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define XHTML_ASAN 1
#endif
#endif

#ifdef XHTML_ASAN
#include <sanitizer/asan_interface.h>
// Carved space is poisoned until it is handed out and again once it is released, so the
// sanitizer still sees overruns and uses after release inside a chunk.
#define XHTML_POISON(address, size) ASAN_POISON_MEMORY_REGION(address, size)
#define XHTML_UNPOISON(address, size) ASAN_UNPOISON_MEMORY_REGION(address, size)
#else
#define XHTML_POISON(address, size) ((void)(address), (void)(size))
#define XHTML_UNPOISON(address, size) ((void)(address), (void)(size))
#endif

namespace xhtml {

// The header of a chunk; its blocks follow it. `live` counts the blocks not yet released,
// plus `scopeHold` while a scope is still carving from it.
struct NodeChunk {
    std::atomic<size_t> live;
};

namespace {

constexpr size_t chunkSize = 32 * 1024;
// Longer blocks (the child list of an element with hundreds of children) are heap blocks of
// their own, so that one of them does not waste the rest of a chunk.
constexpr size_t largestCarved = 1024;
// Stands for the blocks a scope may still carve from its chunk; far above any real count.
constexpr size_t scopeHold = std::numeric_limits<size_t>::max() / 2;

thread_local NodeMemory::Scope* activeScope = nullptr;

static_assert(sizeof(NodeChunk) % NodeMemory::alignment == 0, "blocks after the header stay aligned");

// Each block is preceded by the address of its chunk, which its release reads.
constexpr size_t prefixSize = sizeof(NodeChunk*);

size_t spanOf(size_t size)
{
    return prefixSize + (size + NodeMemory::alignment - 1) / NodeMemory::alignment * NodeMemory::alignment;
}

void* placeBlock(NodeChunk* chunk, char* at)
{
    *reinterpret_cast<NodeChunk**>(at) = chunk;
    return at + prefixSize;
}

NodeChunk* newChunk(size_t bytes, size_t live)
{
    return new (::operator new(bytes)) NodeChunk{{live}};
}

void deleteChunk(NodeChunk* chunk) noexcept
{
    chunk->~NodeChunk();
    ::operator delete(chunk);
}

} // namespace

void* NodeMemory::allocate(size_t size)
{
    if (size > std::numeric_limits<size_t>::max() - sizeof(NodeChunk) - prefixSize - alignment)
        throw std::bad_array_new_length();
    const size_t span = spanOf(size);
    if (activeScope && span <= largestCarved)
        return activeScope->carve(span);
    NodeChunk* chunk = newChunk(sizeof(NodeChunk) + span, 1);
    return placeBlock(chunk, reinterpret_cast<char*>(chunk + 1));
}

void NodeMemory::release(void* block, size_t size) noexcept
{
    if (!block)
        return;
    NodeChunk* chunk = *reinterpret_cast<NodeChunk**>(static_cast<char*>(block) - prefixSize);
    XHTML_POISON(block, size);
    if (chunk->live.fetch_sub(1, std::memory_order_acq_rel) == 1)
        deleteChunk(chunk);
}

NodeMemory::Scope::Scope() : outer_(activeScope)
{
    activeScope = this;
}

NodeMemory::Scope::~Scope()
{
    retire();
    activeScope = outer_;
}

void* NodeMemory::Scope::carve(size_t span)
{
    if (static_cast<size_t>(end_ - next_) < span) {
        retire();
        chunk_ = newChunk(chunkSize, scopeHold);
        next_ = reinterpret_cast<char*>(chunk_ + 1);
        end_ = reinterpret_cast<char*>(chunk_) + chunkSize;
        XHTML_POISON(next_, end_ - next_);
    }
    char* at = next_;
    next_ += span;
    ++carved_;
    XHTML_UNPOISON(at, span);
    return placeBlock(chunk_, at);
}

// Gives up the scope's hold on its chunk: from now on only its blocks keep it.
void NodeMemory::Scope::retire() noexcept
{
    if (!chunk_)
        return;
    const size_t hold = scopeHold - carved_;
    if (chunk_->live.fetch_sub(hold, std::memory_order_acq_rel) == hold)
        deleteChunk(chunk_);
    chunk_ = nullptr;
    next_ = end_ = nullptr;
    carved_ = 0;
}

} // namespace xhtml
