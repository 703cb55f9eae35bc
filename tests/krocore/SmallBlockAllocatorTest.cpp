#include "krocore/SmallBlockAllocator.h"

#include "krocore/String.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <future>
#include <set>
#include <thread>
#include <vector>

namespace krocore {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kReusesBlocks = false; // the sanitizer keeps released blocks in quarantine
#else
constexpr bool kReusesBlocks = true;
#endif

constexpr std::size_t kBytes = 48;

std::vector<void*> AllocateMany(std::size_t count, std::size_t bytes) {
    std::vector<void*> blocks(count);
    std::generate(blocks.begin(), blocks.end(), [bytes] { return SmallBlockHeap::Allocate(bytes); });
    return blocks;
}

void ReleaseAll(const std::vector<void*>& blocks, std::size_t bytes) {
    for (void* block : blocks)
        SmallBlockHeap::Release(block, bytes);
}

// Takes blocks of every size, fills them, and counts those that another block's content or a bad address spoiled.
int CountSpoiledBlocks(std::uint8_t mark) {
    constexpr std::size_t kRounds = 100; // more than a batch of each class, and many chunks in all
    constexpr std::size_t kLargest = SmallBlockHeap::kLargestSmallBlock + 40;
    std::vector<std::vector<void*>> blocks;
    for (std::size_t bytes = 1; bytes <= kLargest; ++bytes) {
        blocks.push_back(AllocateMany(kRounds, bytes));
        for (void* block : blocks.back())
            std::memset(block, static_cast<std::uint8_t>(bytes + mark), bytes);
    }
    int spoiled = 0;
    for (std::size_t bytes = 1; bytes <= kLargest; ++bytes) {
        const auto expected = static_cast<std::uint8_t>(bytes + mark);
        for (void* block : blocks[bytes - 1]) {
            const auto* const content = static_cast<const std::uint8_t*>(block);
            spoiled += std::count(content, content + bytes, expected) != static_cast<std::ptrdiff_t>(bytes);
            spoiled += reinterpret_cast<std::uintptr_t>(block) % SmallBlockHeap::kAlignment != 0;
        }
        ReleaseAll(blocks[bytes - 1], bytes);
    }
    return spoiled;
}

TEST(SmallBlockHeap, BlocksOfAllSizesAndThreadsAreAlignedAndDoNotOverlap) {
    std::vector<std::future<int>> spoiled;
    for (const int mark : {0, 50, 100, 150})
        spoiled.push_back(std::async(std::launch::async, CountSpoiledBlocks, static_cast<std::uint8_t>(mark)));
    for (std::future<int>& count : spoiled)
        EXPECT_EQ(count.get(), 0);
}

TEST(SmallBlockHeap, BlocksReleasedOnAnotherThreadComeBack) {
    if (!kReusesBlocks) GTEST_SKIP() << "addresses are not reused under the address sanitizer";
    constexpr std::size_t kAtOnce = 200;
    std::set<void*> addresses;
    std::vector<void*> inFlight;
    std::thread consumer;
    for (int round = 0; round < 500; ++round) {
        inFlight = AllocateMany(kAtOnce, kBytes);
        addresses.insert(inFlight.begin(), inFlight.end());
        consumer = std::thread([&inFlight] { ReleaseAll(inFlight, kBytes); });
        consumer.join();
    }
    EXPECT_LT(addresses.size(), kAtOnce * 3);
}

TEST(SmallBlockHeap, AThreadThatOnlyReleasesKeepsNoBlocks) {
    if (!kReusesBlocks) GTEST_SKIP() << "addresses are not reused under the address sanitizer";
    constexpr std::size_t kAtOnce = 2000;
    const std::vector<void*> first = AllocateMany(kAtOnce, kBytes);
    std::vector<void*> second;
    std::thread([&first, &second] {
        ReleaseAll(first, kBytes);
        std::thread([&second] { second = AllocateMany(kAtOnce, kBytes); }).join(); // while the releasing thread lives
    }).join();
    const std::set<void*> known(first.begin(), first.end());
    EXPECT_EQ(std::ranges::count_if(second, [&known](void* block) { return known.contains(block); }),
              static_cast<std::ptrdiff_t>(kAtOnce));
    ReleaseAll(second, kBytes);
}

// Allocates in a destructor that runs when the thread has ended.
struct LateUser {
    ~LateUser() {
        const string8 text(100, 'x');
        string8 copy(text);
        copy += 'y';
        *result = std::count(copy.begin(), copy.end(), 'x') == 100 && early == std::string_view(std::string(50, 'e'));
        early.clear();
        early.shrink_to_fit();
    }
    string8 early;
    bool* result = nullptr;
};

TEST(SmallBlockHeap, CountsWhatItGives) {
    if (!kReusesBlocks) GTEST_SKIP() << "all blocks come from the global heap under the address sanitizer";
    const std::size_t before = SmallBlockHeap::AllocationCount();
    ReleaseAll(AllocateMany(100, kBytes), kBytes);
    ReleaseAll(AllocateMany(100, SmallBlockHeap::kLargestSmallBlock + 1), SmallBlockHeap::kLargestSmallBlock + 1);
    EXPECT_EQ(SmallBlockHeap::AllocationCount(), before + 100);
}

TEST(SmallBlockHeap, WorksInDestructorsOfThreadLocalObjects) {
    for (int round = 0; round < 3; ++round) {
        bool worked = false;
        std::thread([&worked] {
            static thread_local LateUser sUser;
            sUser.result = &worked;
            sUser.early.assign(50, 'e');
        }).join();
        EXPECT_TRUE(worked);
    }
}

} // namespace
} // namespace krocore
