#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/RowDelay.h"
#include "qoc/dsp/dynamics/LimiterGain.h"
#include "qoc/dsp/dynamics/TruePeak.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <span>
#include <vector>

namespace qoc::components {

// Boosts the sound and keeps its true peaks, those between the samples too, below a ceiling. The gain goes down ahead
// of a peak, over the look-ahead time, and comes back with the release time as its time constant. With linked channels
// one gain serves all, so that the stereo image stays. What stays below the ceiling, unboosted, comes out bit by bit as
// it went in, later by the longest look-ahead, which is waited for whatever is set.
class HardLimiter : public ComponentBase {
public:
    HardLimiter();

    std::size_t Latency() const noexcept override { return fLatency; }

protected:
    ~HardLimiter() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    struct Channel {
        TruePeak peak;
        LimiterGain gain;
        RowDelay later;          // of the boosted sound
        float allowedBefore = 1; // by the last peak
        // Of the samples that are processed at once; what is allowed becomes the gains.
        TruePeak::Row sound;
        TruePeak::Row allowed;
    };
    // The present ones of the smoothed values.
    struct Levels {
        TruePeak::Row boost;
        TruePeak::Row ceiling;
    };

    void ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void Take(Channel& channel, const float* input, const Levels& levels, std::size_t count) noexcept;
    void Link(std::size_t count) noexcept;
    // Those of the first channel are all channels' while there is one gain.
    std::span<Channel> ChannelsWithGains() noexcept {
        return std::span(fChannels).first(fIsOneGain ? 1 : fChannels.size());
    }
    void SplitGain() noexcept;

    std::vector<Channel> fChannels;
    SmoothedValue fBoost;
    SmoothedValue fCeiling;
    bool fIsLinked = true;
    bool fIsOneGain = true; // the channels have been linked since the reset, and only the first one's gain is kept
    std::size_t fLatency = 0;
};

} // namespace qoc::components
