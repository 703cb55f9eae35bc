#pragma once

#include "qoc/dsp/dynamics/SustainedGain.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::dsp {

// The envelope of a look-ahead limiter's gain: given the gain that each sample may have at most, it goes down along a
// smooth curve that begins a look-ahead before the sample and never lies above what is allowed, and comes back
// exponentially: soon after a single peak, with the release time after what goes on. The largest gain over the
// look-ahead is found first, then the release, then two moving averages of half the look-ahead each. All sums are of
// integers, so that nothing creeps in however long the sound.
class LimiterEnvelope {
public:
    // The gain stands still for so many samples before and after each that it obeys, because the peaks beside a sample
    // are made of its neighbours too.
    static constexpr std::size_t kHold = 64;

    // A gain as an integer: kOne is 1.
    using Fixed = std::int64_t;
    static constexpr Fixed kOne = Fixed{1} << 32;

    // After a single peak the gain comes back with this share of the release time.
    static constexpr double kQuickRelease = 0.02;

    // Room for a look-ahead of so many samples, at least 2. Allocates, and starts with it.
    void Prepare(std::size_t longestLookAhead, double sampleRate);
    // Anew, at a gain of 1 and with a look-ahead of 2 samples to the longest. What it tells holds as soon as it has
    // seen Sight() samples.
    void Start(std::size_t lookAhead) noexcept;
    // As Start(), but it comes back from where `other` is.
    void StartFrom(const LimiterEnvelope& other, std::size_t lookAhead) noexcept;
    std::size_t LookAhead() const noexcept { return fLookAhead; }
    std::size_t Sight() const noexcept { return fLongest + 2 * kHold + 1; }

    // The time constant in samples: 63 % of the way back, after what goes on.
    void SetRelease(double samples) noexcept;

    // Takes the largest gain, 0 to kOne, that the next sample allows. Returns the gain of the sample that came the
    // longest look-ahead and kHold earlier.
    Fixed Next(Fixed allowed) noexcept;

private:
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
        double fPerLength = 1;
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

    Minimum fMinimum;
    Average fFirst;
    Average fSecond;
    std::vector<Fixed> fGains; // a ring of the last ones
    std::size_t fPosition = 0;
    std::size_t fLongest = 2;
    std::size_t fLookAhead = 2;
    SustainedGain fSustained;
    double fQuickCoefficient = 1;
    double fReleased = 1;
};

} // namespace qoc::dsp
