#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>

namespace qoc::components {

// A gain for every channel. At 0 dB, once a ramp has settled, the sound comes out bit by bit as it went in. The lowest
// setting is a gain of -96 dB, not silence. Linking is for panels: the processing follows each channel's own gain.
class Amplify : public ComponentBase {
public:
    Amplify();

    // Two and one for each channel.
    int GetParameterCount() const override;

protected:
    ~Amplify() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    void StoreChannelCount() noexcept;

    std::array<SmoothedValue, kMaximumChannels> fGains;
};

} // namespace qoc::components
