#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>

namespace qohost {

// A queue from one thread to one other, without locks.
template <typename T, std::size_t kCapacity>
class SpscRing {
public:
    // One thread. False when it is full.
    bool Push(const T& value) noexcept {
        const std::size_t end = fEnd.load(std::memory_order_relaxed);
        if (end - fBegin.load(std::memory_order_acquire) == kCapacity) return false;
        fValues[end % kCapacity] = value;
        fEnd.store(end + 1, std::memory_order_release);
        return true;
    }
    // The other thread. Nothing when it is empty.
    std::optional<T> Pop() noexcept {
        const std::size_t begin = fBegin.load(std::memory_order_relaxed);
        if (begin == fEnd.load(std::memory_order_acquire)) return std::nullopt;
        const T value = fValues[begin % kCapacity];
        fBegin.store(begin + 1, std::memory_order_release);
        return value;
    }

private:
    static_assert((kCapacity & (kCapacity - 1)) == 0, "the counters run over");

    static constexpr std::size_t kCacheLine = 64; // bytes
    alignas(kCacheLine) std::atomic<std::size_t> fBegin{0};
    alignas(kCacheLine) std::atomic<std::size_t> fEnd{0};
    alignas(kCacheLine) std::array<T, kCapacity> fValues{};
};

} // namespace qohost
