#pragma once

#include "kromediatypes/AudioBlock.h"
#include "kromediatypes/AudioChannelLayout.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// The channels of an effect that sound in a room: all but the low-frequency effects, which a room's sound does not
// belong into. Can give all of them the mean of them. Owned by its effect; everything but Prepare is real time safe.
class RoomChannels {
public:
    // `sampleRate` in hertz. Allocates.
    void Prepare(double sampleRate, const kromediatypes::AudioChannelLayout& layout);
    // Whether all of them are to have their mean. It is glided to as SmoothedValue does; `settle`: it is so at once.
    void SetSums(bool sums, bool settle) noexcept;

    // Channels of the effect.
    std::span<const std::size_t> Channels() const noexcept { return fChannels; }
    std::size_t size() const noexcept { return fChannels.size(); }

    // Takes a frame of the effect's input, `frame` counted from the block's first; it may be overwritten then. Samples
    // that are no numbers count as 0.
    void Take(const kromediatypes::AudioBlock& block, std::size_t frame) noexcept;
    // What was taken: of a channel of the effect as it came, and a sample for each of Channels().
    float Dry(std::size_t channel) const noexcept { return fDry[channel]; }
    std::span<const float> Sound() const noexcept { return fSound; }

private:
    std::vector<std::size_t> fChannels;
    std::vector<float> fDry;
    std::vector<float> fSound;
    SmoothedValue fMeanShare;
};

} // namespace qoc::dsp
