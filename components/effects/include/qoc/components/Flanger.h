#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/delay/TapRow.h"
#include "qoc/dsp/math/Oscillator.h"
#include "qoc/dsp/stream/ChannelSide.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <span>
#include <vector>

namespace qoc::components {

// Mixes the sound with itself at a short delay that goes from its initial to its final value and back, so that the
// notches of a comb filter sweep through it. Along a sine, or at a constant speed. The right-hand channels are ahead by
// the stereo phase. Through zero the original is delayed too, by the middle of the two delays, so that the other one
// overtakes it. In the feedback a delay is never below three samples.
class Flanger : public ComponentBase {
public:
    Flanger();

    std::size_t Latency() const noexcept override { return TapWeights::kAhead; }
    std::size_t Tail() const noexcept override;

protected:
    ~Flanger() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // A value for each of the samples that are processed at once.
    using Row = TapRow::Samples;
    struct Channel {
        DelayLine original;
        DelayLine line; // with what is fed back
        bool isAhead;   // by the stereo phase
    };
    // Where the channels are read that are in step, or those that are ahead.
    struct Sweep {
        TapRow taps;
        TapRow loopTaps;          // if the delay gets shorter than the loop can be
        bool isLongEnough = true; // for the loop
    };

    std::size_t RowLength() const noexcept;
    void ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void SetSweeps(std::size_t count) noexcept;
    void SetSweep(Sweep& sweep, std::span<const double> phases, std::span<const double> cosines) noexcept;
    void SetOriginalTaps(std::size_t count) noexcept;
    void Write(Channel& channel, const float* input, std::size_t count) noexcept;
    void ReadOriginal(const Channel& channel, Row& sound, std::size_t count) const noexcept;
    bool IsFedBack() const noexcept { return !fFeedback.IsSettled() || fFeedback.Target() != 0; }

    std::vector<Channel> fChannels;
    Oscillator fOscillator;
    SmoothedValue fInitial;
    SmoothedValue fFinal;
    SmoothedValue fWaiting;
    SmoothedValue fPhase;     // turns
    SmoothedValue fRoundness; // 1: a sine
    SmoothedValue fFeedback;
    SmoothedValue fOriginalLevel;
    SmoothedValue fDelayedLevel;
    // Of the present row.
    std::array<Sweep, 2> fSweeps; // in step and ahead
    TapRow fOriginalTaps;
    bool fIsWaiting = false; // the original
    bool fIsFedBack = false;
    Row fFeedbacks;
    Row fInitials; // samples
    Row fFinals;
    Row fRoundnesses;
};

} // namespace qoc::components
