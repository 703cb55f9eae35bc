#pragma once

#include <cstddef>
#include <vector>

namespace qoc::components {

// Delays the sound of several channels by the same time. Another delay fades in while the old one fades out, so that
// the pitch stays. Owned by its effect; everything but Prepare is real time safe.
class FadedDelay {
public:
    // `longest` in samples.
    void Prepare(double sampleRate, std::size_t channels, std::size_t longest);
    // Forgets all sound.
    void Reset() noexcept;
    // In samples, up to the longest. `settle`: without a fade.
    void Set(std::size_t delay, bool settle) noexcept;
    // Replaces one sample a channel by the delayed one.
    void Process(float* frame) noexcept;

private:
    const float* FrameBefore(std::size_t delay) const noexcept;
    void Advance() noexcept;

    std::vector<float> fRing; // the channels' samples side by side
    std::size_t fChannels = 0;
    std::size_t fFrames = 1;
    std::size_t fPosition = 0;
    std::size_t fFrom = 0;
    std::size_t fTo = 0;
    std::size_t fPending = 0; // waits for the fade to end
    std::size_t fFadeLength = 1;
    std::size_t fFadeRemaining = 0;
};

} // namespace qoc::components
