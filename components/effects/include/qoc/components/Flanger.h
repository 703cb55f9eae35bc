#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/math/Oscillator.h"
#include "qoc/dsp/stream/ChannelSide.h"
#include "qoc/dsp/stream/SmoothedValue.h"

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
    struct Channel {
        DelayLine original;
        DelayLine line; // with what is fed back
        bool isAhead;   // by the stereo phase
    };
    struct Moment {
        double initial;       // samples
        double change;        // to the final delay
        double waiting;       // of the original
        double position;      // in the sweep, 0...1
        double positionAhead; // by the stereo phase
        float feedback;
        float originalLevel;
        float delayedLevel;
    };

    Moment NextMoment() noexcept;
    static double PositionAt(double phase, double roundness) noexcept;
    static float Next(Channel& channel, const Moment& moment, float input) noexcept;

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
};

} // namespace qoc::components
