#pragma once
// Memory for the nodes of a markup tree and for their child and attribute lists.
//
// A parse makes a great many small blocks that are used together and usually die together.
// While a NodeMemory::Scope is open on a thread, that thread's blocks are carved one after
// another from shared chunks, which costs a fraction of a heap block each. Outside a scope
// every block is a heap block of its own. Either way each block is released on its own, from
// any thread, and a chunk goes back to the heap with the release of its last block.

#include <cstddef>
#include <limits>
#include <new>

namespace xhtml {

struct NodeChunk;

class NodeMemory {
public:
    // Every block is aligned for any type of at most this alignment.
    static constexpr size_t alignment = alignof(void*);

    // Throws std::bad_alloc when the heap is exhausted.
    static void* allocate(size_t size);
    // `size` is the size that was allocated; a null block does nothing.
    static void release(void* block, size_t size) noexcept;

    // Carves the allocations of this thread from shared chunks while it lives. Scopes nest;
    // the innermost one carves.
    class Scope {
    public:
        Scope();
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        friend class NodeMemory;

        void* carve(size_t size);
        void retire() noexcept;

        Scope* outer_;
        NodeChunk* chunk_ = nullptr;
        char* next_ = nullptr;
        char* end_ = nullptr;
        size_t carved_ = 0;
    };
};

// Lets the standard containers of the tree take their storage from NodeMemory.
template <typename T>
struct NodeAllocator {
    using value_type = T;
    static_assert(alignof(T) <= NodeMemory::alignment, "NodeMemory blocks are pointer-aligned");

    NodeAllocator() = default;
    template <typename U>
    NodeAllocator(const NodeAllocator<U>&) noexcept
    {
    }

    T* allocate(size_t count)
    {
        if (count > std::numeric_limits<size_t>::max() / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(NodeMemory::allocate(count * sizeof(T)));
    }
    void deallocate(T* block, size_t count) noexcept { NodeMemory::release(block, count * sizeof(T)); }

    friend bool operator==(NodeAllocator, NodeAllocator) { return true; }
    friend bool operator!=(NodeAllocator, NodeAllocator) { return false; }
};

} // namespace xhtml
