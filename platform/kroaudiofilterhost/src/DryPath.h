#pragma once

#include "kromediatypes/AudioBlock.h"

#include <cstddef>
#include <vector>

namespace kroaudiofilterhost {

// The way of the sound around an effect: as late as the effect makes it, faded over when the effect is bypassed. Keeps
// the input besides, where the output that is written meanwhile would overwrite it. Owned by a filter; nothing but
// Prepare allocates.
class DryPath {
public:
    struct Format {
        std::size_t inputs = 0;
        std::size_t maximumBlock = 0; // frames
        std::size_t latency = 0;      // of the effect, samples
        float sampleRate = 0;         // hertz
    };

    void Prepare(const Format& format, bool isBypassed);
    // Forgets all sound, and is where a fade would end.
    void Reset(bool isBypassed) noexcept;

    // Before the effect: keeps what is needed of the block. Returns what the effect is to work on, the same but for
    // inputs that its outputs would overwrite.
    kromediatypes::AudioBlock Begin(const kromediatypes::AudioBlock& block, bool isBypassed) noexcept;
    // After the effect: brings the block's outputs nearer to the effect or to the sound without it. An output that has
    // no input of its number takes the last one.
    void End(const kromediatypes::AudioBlock& block, bool isBypassed) noexcept;

private:
    bool IsHeard(bool isBypassed) const noexcept { return isBypassed || fShare > 0; }
    void Keep(const kromediatypes::AudioBlock& block) noexcept;
    void Fetch(std::size_t channel, std::size_t frames) noexcept;
    void Mix(float* output, std::size_t frames, float target) noexcept;

    std::size_t fLatency = 0;
    float fStep = 1;                        // of the share, a sample
    float fShare = 0;                       // of the sound without the effect, 0...1
    std::size_t fPosition = 0;              // in the rings, of the block's first frame
    std::vector<std::vector<float>> fRings; // a channel: the latency and a block
    std::vector<float> fDry;
    std::vector<std::vector<float>> fCopies;
    std::vector<const float*> fCopyPointers;
};

} // namespace kroaudiofilterhost
