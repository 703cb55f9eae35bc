#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::components {

// Makes each of the first eight channels anew as a sum of all of them, each by an amount of -100 to 100 %; below 0 is
// inverted. Channels behind the eighth come out as they went in. What no amount but its own 100 % is set for comes out
// bit by bit; a sum of several channels may exceed full scale and is not limited.
class ChannelMixer : public ComponentBase {
public:
    static constexpr std::size_t kMixedChannels = 8;

    ChannelMixer();

protected:
    ~ChannelMixer() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // From one input into one output.
    struct Path {
        std::size_t input = 0;
        SmoothedValue gain;
    };
    // What is added up for one output: its paths in the order of the inputs, and those of them that are heard.
    struct Output {
        std::array<Path, kMixedChannels> paths;
        std::array<Path*, kMixedChannels> heard{};
        std::size_t heardCount = 0;
    };

    // So many samples are mixed at once.
    static constexpr std::size_t kMost = 64;
    using Row = std::array<float, kMost>;

    std::size_t MixedCount() const noexcept;
    void StoreChannelCount() noexcept;
    void MixRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void Mix(Output& output, std::span<float> sum) const noexcept;

    std::vector<Output> fOutputs;              // kMixedChannels
    std::array<Row, kMixedChannels> fInputs{}; // the present row
};

} // namespace qoc::components
