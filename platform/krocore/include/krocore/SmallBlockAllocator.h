#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

namespace krocore {

// The process-wide heap for small blocks: one free list a size class (16 bytes a step up to kLargestSmallBlock), larger
// requests go to the global heap. Any thread, and blocks may be released on another thread than the one that took them.
// Works before main, after it, and in the destructors of thread-local objects. Memory taken for small blocks is kept
// for later ones until the library is unloaded. Never throws anything but std::bad_alloc.
class SmallBlockHeap {
public:
    static constexpr std::size_t kLargestSmallBlock = 256;
    static constexpr std::size_t kAlignment = 16; // of every block

    // `bytes` is the same at the release as it was at the allocation.

    static void* Allocate(std::size_t bytes);
    static void Release(void* block, std::size_t bytes) noexcept;

    // How many small blocks were taken so far, by all threads: for those who watch that nothing is.
    static std::size_t AllocationCount() noexcept;
};

// Standard allocator over SmallBlockHeap; stateless, all instances are equal.
template <class T>
class SmallBlockAllocator {
public:
    using value_type = T;
    using is_always_equal = std::true_type;

    SmallBlockAllocator() noexcept = default;
    template <class U>
    SmallBlockAllocator(const SmallBlockAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= SmallBlockHeap::kAlignment);
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
        return static_cast<T*>(SmallBlockHeap::Allocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept { SmallBlockHeap::Release(block, count * sizeof(T)); }

    friend bool operator==(const SmallBlockAllocator&, const SmallBlockAllocator&) noexcept { return true; }
};

} // namespace krocore
