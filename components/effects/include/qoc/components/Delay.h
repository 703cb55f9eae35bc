#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/CrossfadedTap.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/stream/ChannelSide.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <vector>

namespace qoc::components {

// Mixes each channel with itself at another time. The right-hand channels have settings of their own, all others those
// of the left. A delay may be negative: that sound comes before the original, for which all of it waits as long as the
// longest such delay, whatever is set. With a mix of 0 % the sound comes out bit by bit as it went in.
class Delay : public ComponentBase {
public:
    static constexpr float kLongestTime = 500; // milliseconds, to either side

    Delay();

    std::size_t Latency() const noexcept override { return fLatency; }
    std::size_t Tail() const noexcept override;

protected:
    ~Delay() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    struct Channel {
        DelayLine line;
        CrossfadedTap tap;
        SmoothedValue original; // gains
        SmoothedValue delayed;
        int firstParameter = 0; // of its side
    };

    std::ptrdiff_t DelayInSamples(int timeParameter) const noexcept;

    std::vector<Channel> fChannels;
    std::size_t fLatency = 0;
};

} // namespace qoc::components
