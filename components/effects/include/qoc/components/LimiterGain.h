#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::components {

// The course of a look-ahead limiter's gain: given the gain that each sample may have at most, it goes down along a
// smooth curve that begins a look-ahead before the sample and never lies above what is allowed, and comes back
// exponentially. The largest gain over the look-ahead is found first, then the release, then two moving averages of
// half the look-ahead each. All sums are of integers, so that nothing creeps in however long the sound.
class LimiterGain {
public:
    // The gain stands still for so many samples before and after each that it obeys, because the peaks beside a sample
    // are made of its neighbours too.
    static constexpr std::size_t kHold = 32;

    // Room for a look-ahead of so many samples, at least 2. The gain told is always that of the sample which came so
    // many samples and kHold earlier. Allocates, and resets.
    void Prepare(std::size_t longestLookAhead);
    // Back to a gain of 1.
    void Reset() noexcept;

    // 2 to the longest, in samples. A new one takes effect along the way of the sound.
    void SetLookAhead(std::size_t samples) noexcept;
    // The time constant in samples: 63 % of the way back.
    void SetRelease(double samples) noexcept;

    // Takes the largest gain, 0...1, that the next sample allows. Returns the gain of the sample that came the longest
    // look-ahead and kHold earlier.
    float Next(float allowed) noexcept;

private:
    // A gain as an integer: kOne is 1.
    using Fixed = std::int64_t;

    // The mean of the last samples, how many may change.
    class Average {
    public:
        void Prepare(std::size_t most);
        void Reset() noexcept;
        Fixed Next(Fixed value, std::size_t length) noexcept;

    private:
        std::vector<Fixed> fValues; // a ring
        std::size_t fNow = 0;
        std::size_t fLength = 1; // that the sum is of
        Fixed fSum = 0;
    };
    // The least of the last samples.
    class Minimum {
    public:
        void Prepare(std::size_t most);
        void Reset() noexcept;
        Fixed Next(Fixed value, std::size_t length) noexcept;

    private:
        struct Entry {
            Fixed value;
            std::uint64_t time;
        };
        std::vector<Entry> fEntries; // a ring: ascending values, those that may yet become the least
        std::size_t fFirst = 0;
        std::size_t fCount = 0;
        std::uint64_t fNow = 0;
    };

    static constexpr Fixed kOne = Fixed{1} << 32;

    Fixed Delayed(Fixed value, std::vector<Fixed>& ring, std::size_t delay) const noexcept;

    Minimum fMinimum;
    Average fFirst;
    Average fSecond;
    std::vector<Fixed> fAllowed; // rings of the last samples
    std::vector<Fixed> fGains;
    std::size_t fPosition = 0;
    std::size_t fLongest = 2;
    std::size_t fLookAhead = 2;
    double fReleaseCoefficient = 1;
    double fReleased = 1;
};

} // namespace qoc::components
