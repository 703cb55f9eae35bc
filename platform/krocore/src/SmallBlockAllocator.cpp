#include "krocore/SmallBlockAllocator.h"

#include <algorithm>
#include <array>
#include <mutex>
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

// Free blocks travel between threads in batches: lists of at most kBatchBlocks blocks. Only the first block of a batch
// uses `nextBatch`.
struct FreeBlock {
    FreeBlock* next;
    FreeBlock* nextBatch;
};
static_assert(sizeof(FreeBlock) <= kGranularity);

struct Batch {
    FreeBlock* first = nullptr;
    std::size_t count = 0;
};

void Push(Batch& batch, void* block) noexcept {
    batch.first = new (block) FreeBlock{batch.first, nullptr};
    ++batch.count;
}

void* Pop(Batch& batch) noexcept {
    --batch.count;
    return std::exchange(batch.first, batch.first->next);
}

constexpr std::size_t SizeClass(std::size_t bytes) {
    return bytes == 0 ? 0 : (bytes - 1) / kGranularity;
}
constexpr std::size_t BlockBytes(std::size_t sizeClass) {
    return (sizeClass + 1) * kGranularity;
}

// The free blocks that belong to no thread, and the chunk that new blocks are cut from. Chunks are never given back:
// strings of static life time may outlive every other object of the process.
class SharedStore {
public:
    // A batch with at least one block.
    Batch Take(std::size_t sizeClass) {
        const std::lock_guard lock(fMutex);
        FreeBlock*& batches = fBatches[sizeClass];
        if (batches == nullptr) return Cut(BlockBytes(sizeClass));
        FreeBlock* const first = std::exchange(batches, batches->nextBatch);
        return {first, CountBlocks(first)};
    }

    void Give(std::size_t sizeClass, Batch batch) noexcept {
        if (batch.first == nullptr) return;
        const std::lock_guard lock(fMutex);
        batch.first->nextBatch = std::exchange(fBatches[sizeClass], batch.first);
    }

private:
    static std::size_t CountBlocks(const FreeBlock* block) noexcept {
        std::size_t count = 0;
        for (; block != nullptr; block = block->next)
            ++count;
        return count;
    }

    Batch Cut(std::size_t blockBytes) {
        if (fChunkLeft < blockBytes) {
            fChunk = static_cast<std::byte*>(::operator new(kChunkBytes));
            fChunkLeft = kChunkBytes;
        }
        const std::size_t count = std::min(kBatchBlocks, fChunkLeft / blockBytes);
        Batch batch;
        for (std::size_t i = count; i > 0; --i)
            Push(batch, fChunk + (i - 1) * blockBytes);
        fChunk += count * blockBytes;
        fChunkLeft -= count * blockBytes;
        return batch;
    }

    std::mutex fMutex;
    std::array<FreeBlock*, kSizeClasses> fBatches{};
    std::byte* fChunk = nullptr;
    std::size_t fChunkLeft = 0;
};

enum class ThreadState { fresh, live, ended };

// One thread's own free blocks. Two batches a class, so that taking and releasing at a batch's border stays free of
// locks. Has no destructor on purpose: it is used until the thread's very last instruction.
struct ThreadLists {
    std::array<Batch, kSizeClasses> active{};
    std::array<Batch, kSizeClasses> spare{};
    ThreadState state = ThreadState::fresh;
};

constinit SharedStore sStore;

// Half a kilobyte, well within what the loader keeps in reserve for the static model; the general model's call into
// the loader would cost as much as everything else here.
[[gnu::tls_model("initial-exec")]] constinit thread_local ThreadLists sLists;

struct ThreadEnd {
    ~ThreadEnd() {
        for (std::size_t sizeClass = 0; sizeClass < kSizeClasses; ++sizeClass) {
            sStore.Give(sizeClass, std::exchange(sLists.active[sizeClass], {}));
            sStore.Give(sizeClass, std::exchange(sLists.spare[sizeClass], {}));
        }
        sLists.state = ThreadState::ended;
    }
};

// Whether the thread may keep free blocks; sees to it that it gives them back at its end.
bool MayKeepBlocks() noexcept {
    if (sLists.state == ThreadState::fresh) {
        static thread_local ThreadEnd threadEnd;
        sLists.state = ThreadState::live;
    }
    return sLists.state == ThreadState::live;
}

void* AllocateFromStore(std::size_t sizeClass) {
    Batch batch = sStore.Take(sizeClass);
    void* const block = Pop(batch);
    if (MayKeepBlocks()) {
        sLists.active[sizeClass] = batch;
    } else {
        sStore.Give(sizeClass, batch);
    }
    return block;
}

void* AllocateFromEmptyList(std::size_t sizeClass) {
    Batch& spare = sLists.spare[sizeClass];
    if (spare.first == nullptr) return AllocateFromStore(sizeClass);
    Batch& active = sLists.active[sizeClass];
    active = std::exchange(spare, {});
    return Pop(active);
}

void ReleaseToStore(void* block, std::size_t sizeClass) noexcept {
    Batch single;
    Push(single, block);
    sStore.Give(sizeClass, single);
}

} // namespace

void* SmallBlockHeap::Allocate(std::size_t bytes) {
    if (kPlainHeap || bytes > kLargestSmallBlock) return ::operator new(bytes);
    const std::size_t sizeClass = SizeClass(bytes);
    Batch& active = sLists.active[sizeClass];
    return active.first != nullptr ? Pop(active) : AllocateFromEmptyList(sizeClass);
}

void SmallBlockHeap::Release(void* block, std::size_t bytes) noexcept {
    if (kPlainHeap || bytes > kLargestSmallBlock) return ::operator delete(block);
    const std::size_t sizeClass = SizeClass(bytes);
    if (sLists.state != ThreadState::live && !MayKeepBlocks()) return ReleaseToStore(block, sizeClass);

    Batch& active = sLists.active[sizeClass];
    Push(active, block);
    if (active.count < kBatchBlocks) return;
    sStore.Give(sizeClass, std::exchange(sLists.spare[sizeClass], active));
    active = {};
}

} // namespace krocore
