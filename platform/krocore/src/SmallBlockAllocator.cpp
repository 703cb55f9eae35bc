#include "krocore/SmallBlockAllocator.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define KROCORE_PLAIN_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KROCORE_PLAIN_HEAP 1
#endif
#endif
#ifndef KROCORE_PLAIN_HEAP
#define KROCORE_PLAIN_HEAP 0
#endif

namespace krocore {
namespace {

// The address sanitizer sees errors only in blocks that come from the global heap.
constexpr bool kPlainHeap = KROCORE_PLAIN_HEAP != 0;

constexpr std::size_t kGranularity = 16;
constexpr std::size_t kSizeClasses = SmallBlockHeap::kLargestSmallBlock / kGranularity;
constexpr std::size_t kBatchBlocks = 32;
constexpr std::size_t kChunkBytes = 65536;

constexpr std::size_t SizeClass(std::size_t bytes) {
    return bytes == 0 ? 0 : (bytes - 1) / kGranularity;
}
constexpr std::size_t BlockBytes(std::size_t sizeClass) {
    return (sizeClass + 1) * kGranularity;
}

// Guards a handful of instructions. Constant-initialised and without a destructor on every system, so that the heap
// works before the first and after the last static object.
class SpinLock {
public:
    void lock() noexcept {
        while (fTaken.test_and_set(std::memory_order_acquire))
            WaitUntilFree();
    }
    void unlock() noexcept { fTaken.clear(std::memory_order_release); }

private:
    void WaitUntilFree() const noexcept {
        constexpr int kLooksBeforeYielding = 64;
        for (int look = 0; fTaken.test(std::memory_order_relaxed); ++look) {
            if (look >= kLooksBeforeYielding) std::this_thread::yield(); // its owner may wait for this processor
        }
    }

    std::atomic_flag fTaken{};
};

// The memory that blocks are cut from.
class ChunkStore {
public:
    // One block or more of a size, side by side.
    struct Run {
        std::byte* first = nullptr;
        std::size_t blocks = 0;
    };

    Run Cut(std::size_t blockBytes) {
        const std::lock_guard lock(fLock);
        if (fChunkLeft < blockBytes) AddChunk();
        const std::size_t blocks = std::min(kBatchBlocks, fChunkLeft / blockBytes);
        fChunkLeft -= blocks * blockBytes;
        return {std::exchange(fFree, fFree + blocks * blockBytes), blocks};
    }

    void FreeAll() noexcept {
        while (fChunks != nullptr)
            ::operator delete(std::exchange(fChunks, fChunks->next));
        fChunkLeft = 0;
    }

private:
    // Stands at a chunk's beginning.
    struct alignas(SmallBlockHeap::kAlignment) Chunk {
        Chunk* next;
    };

    void AddChunk() {
        fChunks = new (::operator new(kChunkBytes)) Chunk{fChunks};
        fFree = reinterpret_cast<std::byte*>(fChunks + 1);
        fChunkLeft = kChunkBytes - sizeof(Chunk);
    }

    SpinLock fLock;
    Chunk* fChunks = nullptr;
    std::byte* fFree = nullptr;
    std::size_t fChunkLeft = 0;
};

// The free blocks of one size.
class FreeList {
public:
    void* Take(std::size_t blockBytes, ChunkStore& chunks) {
        const std::lock_guard lock(fLock);
        if (fFirst == nullptr) AddRun(chunks.Cut(blockBytes), blockBytes);
        ++fTaken;
        ++fAllocations;
        return std::exchange(fFirst, fFirst->next);
    }

    void Give(void* block) noexcept {
        const std::lock_guard lock(fLock);
        --fTaken;
        Push(block);
    }

    std::size_t Allocations() noexcept {
        const std::lock_guard lock(fLock);
        return fAllocations;
    }

    bool AreAllBlocksFree() const noexcept { return fTaken == 0; }
    void Forget() noexcept { fFirst = nullptr; }

private:
    struct FreeBlock {
        FreeBlock* next;
    };
    static_assert(sizeof(FreeBlock) <= kGranularity);

    void Push(void* block) noexcept { fFirst = new (block) FreeBlock{fFirst}; }
    void AddRun(ChunkStore::Run run, std::size_t blockBytes) noexcept {
        for (std::size_t i = run.blocks; i > 0; --i)
            Push(run.first + (i - 1) * blockBytes);
    }

    SpinLock fLock;
    FreeBlock* fFirst = nullptr;
    std::size_t fTaken = 0;
    std::size_t fAllocations = 0; // so far
};

constinit ChunkStore sChunks;
constinit std::array<FreeList, kSizeClasses> sFreeLists;

// After the library's last static object, at the end of the process or when the library is unloaded. Blocks that
// somebody still holds keep all of the memory alive.
constexpr int kLast = 101;
__attribute__((destructor(kLast))) void FreeChunksThatNobodyUses() {
    if (!std::ranges::all_of(sFreeLists, &FreeList::AreAllBlocksFree)) return;
    std::ranges::for_each(sFreeLists, &FreeList::Forget);
    sChunks.FreeAll();
}

} // namespace

void* SmallBlockHeap::Allocate(std::size_t bytes) {
    if (kPlainHeap || bytes > kLargestSmallBlock) return ::operator new(bytes);
    const std::size_t sizeClass = SizeClass(bytes);
    return sFreeLists[sizeClass].Take(BlockBytes(sizeClass), sChunks);
}

void SmallBlockHeap::Release(void* block, std::size_t bytes) noexcept {
    if (kPlainHeap || bytes > kLargestSmallBlock) return ::operator delete(block);
    sFreeLists[SizeClass(bytes)].Give(block);
}

std::size_t SmallBlockHeap::AllocationCount() noexcept {
    std::size_t count = 0;
    for (FreeList& list : sFreeLists)
        count += list.Allocations();
    return count;
}

} // namespace krocore
