#pragma once

#include "qoc/dsp/restoration/NoiseTracker.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// What the looks of a NoiseTracker tell together: the noise is what the quietest fifth of the looks of some seconds
// found, scaled to what noise is on average. Owned by the effect that uses it.
class NoiseProfile {
public:
    // For spectra of so many bins from 0 Hz to half the rate. Allocates, and forgets all looks.
    void Prepare(const NoiseBands& bands, std::size_t bins, double sampleRate);
    void Reset() noexcept;

    // The next look, of a sound that goes on: what is too old is forgotten, and silence is left out.
    void Add(const NoiseTracker::Look& look) noexcept;
    // The next look, of a sound that is heard beforehand: nothing is forgotten. Allocates.
    void Record(const NoiseTracker::Look& look);

    std::size_t Looks() const noexcept { return fLooks.size() / fLookSize; }
    // Finds the noise of the seconds around one of the looks, which are counted from 0; the last one for a number that
    // is too large. Without any look nothing changes.
    void Find(std::size_t look) noexcept;
    // The same in steps, 0 to one below kSteps, in order; what has been found is told from the last one on.
    static constexpr std::size_t kSteps = 34;
    void Find(std::size_t look, std::size_t step) noexcept;
    // The power of each bin, of noise whose samples have that mean square; 0 before it was found.
    std::span<const float> Noise() const noexcept { return fNoise; }

private:
    struct BandFigures {
        float deviation = 0;    // of a look at noise, relative to its mean
        float logFrequency = 0; // natural logarithm of the hertz
    };
    struct Place {
        std::size_t band = 0; // the one below
        float above = 0;      // how much of the next one
    };

    void Append(const NoiseTracker::Look& look);
    void FindLevels(std::size_t look, StepRange bands) noexcept;
    float LevelAmong(std::size_t count, float deviation) noexcept;
    void LimitToSurroundings(StepRange bands) noexcept;
    void LimitToTrend() noexcept;
    void Tell() noexcept;
    bool IsTrusted(std::size_t band, float level) const noexcept;

    std::vector<BandFigures> fBands;
    std::vector<Place> fPlaces; // of the bins
    std::size_t fLookSize = 1;
    std::vector<float> fLooks; // one after the other: noise by band, sound by band
    std::vector<float> fSorted;
    std::vector<float> fLevels; // of the noise, by band
    std::vector<float> fFound;
    std::vector<float> fMeans; // of sound and noise, by band
    std::vector<float> fNoise;
};

} // namespace qoc::dsp
