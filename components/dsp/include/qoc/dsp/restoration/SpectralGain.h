#pragma once

#include "qoc/dsp/stream/PacedSteps.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// The gain of every bin that takes noise of known power out of a sound. Where there is sound is decided first, on means
// of many powers, which noise alone does not raise: over some time, as tones are held, and over many bins, as hits are
// broad. Less is asked of either while there is sound for certain somewhere. Where there is none, the gain is the
// floor; elsewhere it is the estimate of the logarithmic spectral amplitude with the least mean square error, with the
// decision directed estimate of the ratio of sound and noise (Ephraim and Malah, "Speech enhancement using a minimum
// mean-square error log-spectral amplitude estimator", 1985). Owned by the effect that uses it; nothing but Prepare
// allocates.
class SpectralGain {
public:
    struct Layout {
        std::size_t bins = 0;
        double framesPerSecond = 1;
        std::size_t hopsPerFrame = 1;
        std::size_t lowest = 0; // the first bin that is judged by itself: those below are together
    };
    struct Settings {
        float noiseScale = 1;    // the noise counts so many times
        float presence = 5;      // above 1: what is so many times the noise is sound for certain
        float threshold = 1;     // the ratio of sound and noise counts as that much smaller
        float decayPerFrame = 0; // a gain falls from one frame to the next to no less of itself
        std::size_t width = 0;   // bins to either side of sound that are kept with it
        float floor = 0;         // the least gain
    };

    // Allocates.
    void Prepare(const Layout& layout);
    // Forgets all sound.
    void Reset() noexcept;

    // The gains for the next frame take passes over all bins, so that the work can be cut: pass 0 over the bins in
    // order, then pass 1, and so on. `powers` and `noise` in the same unit, by bin; they are read from the first pass
    // to the last, the powers of a bin from its first pass on.
    static constexpr std::size_t kPasses = 5;
    static constexpr double kCosts[kPasses] = {1, 1.5, 2.5, 2, 3}; // in transforms of that size, about
    void Begin(std::span<const float> powers, std::span<const float> noise, const Settings& settings) noexcept;
    void Pass(std::size_t pass, StepRange bins) noexcept;
    // Factors of amplitude from the floor to 1; each bin's is there after its last pass.
    std::span<const float> Gains() const noexcept { return fGains; }

    // Of a bin: how loud the sound is, `prior` as expected and `posterior` with the noise in it, against the noise.
    // Within 1 % of Ephraim and Malah's formula.
    static float LogSpectralAmplitudeGain(float prior, float posterior) noexcept;

private:
    // The bins around one, over which hits are looked for.
    struct Surroundings {
        std::size_t begin = 0;
        std::size_t end = 0;
        float weight = 0; // of one bin in their mean
        float chance = 0; // how much their mean varies in noise
    };

    void Compare(StepRange bins) noexcept;
    void JoinLowest() noexcept;
    void Average(StepRange bins) noexcept;
    void MeasureCertainty(StepRange bins) noexcept;
    void FindPresence(StepRange bins) noexcept;
    void Estimate(StepRange bins) noexcept;
    float PresenceAround(std::size_t bin) const noexcept;

    std::span<const float> fPowers;
    std::span<const float> fNoise;
    Settings fSettings;
    std::size_t fLowest = 0;
    float fMemory = 0; // of the decision directed estimate
    float fHolding = 0;
    float fCertaintyDecay = 0;
    float fCertainty = 0; // 0...1, that there is sound anywhere
    float fCertain = 0;   // bins that hold sound for certain, so far
    std::vector<Surroundings> fSurroundings;
    std::vector<float> fGains;
    std::vector<float> fInverse;   // of the noise
    std::vector<float> fPosterior; // power over noise
    std::vector<float> fHeld;      // the same, averaged over time
    std::vector<float> fBroad;     // the same, averaged over the surroundings
    std::vector<float> fPresence;  // how surely there is sound, 0...1
    std::vector<float> fSound;     // the power that was left in the last frame
    std::vector<float> fSums;      // running
};

} // namespace qoc::dsp
