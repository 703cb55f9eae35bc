#pragma once

#include "kromediatypes/AudioBlock.h"
#include "kromediatypes/AudioChannelLayout.h"
#include "qoc/dsp/stream/SmoothedValue.h"
#include "qoc/dsp/stream/SoundPiece.h"

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

    // Takes up to a piece of the effect's input, from the block's frame `begin` on; it may be overwritten then. Samples
    // that are no numbers count as 0. Leaves a piece for each of Channels().
    void Take(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
              std::span<SoundPiece> sound) noexcept;
    // Of a channel of the effect as it came.
    const SoundPiece& Dry(std::size_t channel) const noexcept { return fDry[channel]; }

private:
    std::vector<std::size_t> fChannels;
    std::vector<SoundPiece> fDry;
    SmoothedValue fMeanShare;
};

} // namespace qoc::dsp
