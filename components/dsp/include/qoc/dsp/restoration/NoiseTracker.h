#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Follows the power spectrum of the noise under a sound, through pauses and through the sound alike: minima controlled
// recursive averaging (Cohen and Berdugo, "Noise estimation by minima controlled recursive averaging for robust speech
// enhancement", 2002). What stays near the lowest power of the last second or so is averaged into the estimate. Noise
// is broad, so that a line that stands out of its surroundings, as a held tone does, is not taken for it. Owned by the
// effect that uses it; nothing but Prepare allocates.
class NoiseTracker {
public:
    // `framesPerSecond` spectra of `bins` values.
    void Prepare(std::size_t bins, double framesPerSecond);
    // Forgets all sound. The estimate then grows from nothing within half a second.
    void Reset() noexcept;

    // Takes the powers of the next frame. `margin`: how many times the lowest power may be noise. Frames of silence
    // tell nothing and count for nothing.
    void Update(std::span<const float> powers, float margin) noexcept;

    // The power of the noise in every bin.
    std::span<const float> Noise() const noexcept { return fNoise; }

private:
    void Smooth(std::span<const float> powers) noexcept;
    void FollowMinimum() noexcept;
    void Average(std::span<const float> powers, float margin) noexcept;
    void Tell() noexcept;

    float fSmoothing = 0;
    float fAveraging = 0;
    float fPresenceSmoothing = 0;
    std::size_t fFramesPerMinimum = 1;
    std::size_t fFramesToTrust = 1;
    std::size_t fFrames = 0; // since Reset
    std::vector<float> fSmoothed;
    std::vector<float> fMinimum;
    std::vector<float> fNextMinimum;
    std::vector<float> fPresence; // how likely there is more than noise
    std::vector<float> fAverage;
    std::vector<double> fInverseSums; // running, of the average's inverses
    std::vector<float> fNoise;
};

} // namespace qoc::dsp
