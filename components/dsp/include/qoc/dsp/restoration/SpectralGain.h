#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// The gain of every bin that takes noise of known power out of a sound: the estimate of the sound's logarithmic
// spectral amplitude with the least mean square error, and the decision directed estimate of the ratio of sound and
// noise (Ephraim and Malah, "Speech enhancement using a minimum mean-square error log-spectral amplitude estimator",
// 1985). Owned by the effect that uses it; nothing but Prepare allocates.
class SpectralGain {
public:
    struct Settings {
        float noiseScale = 1;    // the noise counts so many times
        float threshold = 1;     // the ratio of sound and noise counts as that much smaller
        float decayPerFrame = 0; // a gain falls from one frame to the next to no less of itself
        std::size_t width = 0;   // bins to either side of sound that are kept with it
        float floor = 0;         // the least gain
    };

    // For spectra of so many bins. Allocates.
    void Prepare(std::size_t bins, double framesPerSecond);
    // Forgets all sound.
    void Reset() noexcept;

    // The gains, factors of amplitude from the floor to 1, for the powers of the next frame; valid until the next call.
    // `powers` and `noise` in the same unit, by bin.
    std::span<const float> Update(std::span<const float> powers, std::span<const float> noise,
                                  const Settings& settings) noexcept;

    // Of a bin: how loud the sound is, `prior` as expected and `posterior` with the noise in it, against the noise.
    static double LogSpectralAmplitudeGain(double prior, double posterior) noexcept;

private:
    void Estimate(std::span<const float> powers, std::span<const float> noise, const Settings& settings) noexcept;
    void Widen(const Settings& settings) noexcept;

    double fMemory = 0; // of the decision directed estimate
    std::vector<float> fGains;
    std::vector<double> fSums; // running, of the gains
    std::vector<float> fSound; // the power that was left in the last frame
    std::vector<float> fTold;
};

} // namespace qoc::dsp
