#pragma once

#include "qoc/dsp/delay/CrossfadedTap.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Delays the sound of several channels by the same time, which fades to another as CrossfadedTap does. It adds no
// latency of its own. Owned by its effect; everything but Prepare is real time safe.
class CrossfadedDelay {
public:
    // `longest` in samples.
    void Prepare(double sampleRate, std::size_t channels, std::size_t longest);
    // Forgets all sound.
    void Reset() noexcept;
    // In samples, up to the longest. `settle`: without a fade.
    void Set(std::size_t delay, bool settle) noexcept;
    // Replaces `frames` samples a channel by the delayed ones.
    void Process(std::span<SoundPiece> channels, std::size_t frames) noexcept;

private:
    std::vector<DelayLine> fLines; // by channel
    CrossfadedTap fTap;
    std::size_t fLongest = 0;
};

} // namespace qoc::dsp
