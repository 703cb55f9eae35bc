#pragma once

#include "qoc/dsp/restoration/NoiseProfile.h"
#include "qoc/dsp/restoration/NoiseTracker.h"
#include "qoc/dsp/stream/HopGrid.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <cstddef>
#include <span>

namespace qoc::dsp {

// The noise in one channel, as the looks of a NoiseTracker and the NoiseProfile made of them tell it: of a sound that
// goes on, or of one that was listened to before. The work is spread over the sound that is heard. Owned by the effect
// that uses it; nothing but Prepare and Listen allocates.
class NoiseEstimator {
public:
    // For spectra of so many bins from 0 Hz to half the rate. Estimators with another `turn`, 0...3, do their work at
    // other times. Allocates.
    void Prepare(std::size_t bins, double sampleRate, std::size_t turn);
    // Forgets all sound.
    void Reset() noexcept;

    // The sound that is to come, all of it, in parts of any length. Allocates.
    void Listen(std::span<const float> samples);
    // After Listen: finds the noise around a place, in samples from the beginning. False when it is as before.
    bool Recall(std::size_t place) noexcept;

    // The sound as it goes on, in parts of any length. True when the noise was found anew meanwhile.
    bool Hear(std::span<const float> samples) noexcept;

    // The power of each bin, of noise whose samples have that mean square; 0 before it was found.
    std::span<const float> Noise() const noexcept { return fProfile.Noise(); }

private:
    static constexpr std::size_t kNone = ~std::size_t{0};

    NoiseTracker fTracker;
    NoiseProfile fProfile;
    HopGrid fGrid; // that of the tracker
    PacedSteps fPace;
    bool fIsFinding = false;
    std::size_t fRecalled = kNone; // look
};

} // namespace qoc::dsp
