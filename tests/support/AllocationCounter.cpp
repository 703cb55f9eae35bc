#include "AllocationCounter.h"

#include "krocore/SmallBlockAllocator.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> sAllocations{0};

} // namespace

std::size_t AllocationCount() noexcept {
    return sAllocations.load() + krocore::SmallBlockHeap::AllocationCount();
}

void* operator new(std::size_t size) {
    sAllocations.fetch_add(1);
    if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    sAllocations.fetch_add(1);
    return std::malloc(size > 0 ? size : 1);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
