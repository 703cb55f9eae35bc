#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/CrossfadedTap.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/filters/GlidingSections.h"
#include "qoc/dsp/filters/GraphicEQDesign.h"
#include "qoc/dsp/stream/HandOver.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <memory>
#include <span>
#include <vector>

namespace qoc::components {

// Repeats the sound at a distance, each echo quieter than the one before by the feedback and duller by the equaliser
// that it goes through once more. The right-hand channels have settings of their own, all others those of the left,
// unless they are locked to them. Echoes that bounce are those of both sides together: they begin on the left and go
// over to the other side with each repeat.
//
// The equaliser only takes away: with any feedback the echoes never get louder. The setters solve for it, on the
// user-interface thread; the sound thread glides from the old coefficients to the new.
class Echo : public ComponentBase {
public:
    static constexpr std::size_t kBands = 8;

    Echo();

    // In hertz, ascending.
    static std::span<const double, kBands> Centres();

    // Until the echoes have decayed by 100 dB, at most ten minutes.
    std::size_t Tail() const noexcept override;

protected:
    ~Echo() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // So many samples are processed at once at most.
    static constexpr std::size_t kMost = 64;
    using Row = std::array<float, kMost>;

    struct Equaliser {
        std::array<BiquadCoefficients, kBands> sections;
        double gain = 1; // keeps the response from rising above 0 dB anywhere
    };
    struct Channel {
        DelayLine line;
        CrossfadedTap tap;
        SmoothedValue feedback;
        SmoothedValue level;
        std::size_t mirror = 0; // the channel on the other side
        bool isRight = false;
        Row input{}; // of the present samples
        Row echo{};
        Row fedBack{};
    };

    void Redesign();
    double HighestGain(std::span<const BiquadCoefficients> sections) const;
    int FirstParameter(bool isRight) const noexcept;
    std::size_t DelayInSamples(int timeParameter) const noexcept;

    void TakeEqualiser(bool settle) noexcept;
    std::size_t RowLength() const noexcept;
    void ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void Hear(std::size_t index, const float* input, std::span<const float> gain) noexcept;
    void FeedBack(Channel& channel, std::span<const float> bounce) noexcept;

    // User-interface thread.
    std::unique_ptr<GraphicEQDesign> fDesign;
    Equaliser fDesigned;
    HandOver<Equaliser> fHandOver;
    // Sound thread.
    std::vector<Channel> fChannels;
    std::unique_ptr<Equaliser> fTarget;
    GlidingSections fEqualiser;
    SmoothedValue fEqualiserGain;
    SmoothedValue fBounce; // 0...1
};

} // namespace qoc::components
