#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/dynamics/LimiterGain.h"
#include "qoc/dsp/dynamics/TruePeak.h"
#include "qoc/dsp/stream/SmoothedValue.h"

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
        std::vector<float> sound; // boosted, a ring
        float allowedBefore = 1;  // by the last peak
        TruePeak::Row allowed;    // of the samples that are processed at once
    };
    // The present ones of the smoothed values.
    struct Levels {
        TruePeak::Row boost;
        TruePeak::Row ceiling;
    };

    void ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void Take(Channel& channel, const float* input, const Levels& levels, std::size_t count) noexcept;
    void Link(std::size_t count) noexcept;
    void Give(Channel& channel, float* output, std::size_t count) const noexcept;

    std::vector<Channel> fChannels;
    SmoothedValue fBoost;
    SmoothedValue fCeiling;
    bool fIsLinked = true;
    std::size_t fLatency = 0;
    std::size_t fPosition = 0; // in the rings
};

} // namespace qoc::components
