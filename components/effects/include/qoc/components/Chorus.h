#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/math/Oscillator.h"
#include "qoc/dsp/stream/ChannelSide.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <vector>

namespace qoc::components {

// Several voices that sing along: each is the sound at a delay of its own, which an oscillator moves, and with a level
// that another one moves. The delay is the longest that a voice has without the spread, which sets the voices further
// back one behind the other; the depth is how much of the delay the oscillator takes away at most. Voices stand side by
// side from left to right, and with the binaural cue the ear that is further away hears a voice later. Channels in the
// middle hear all voices alike.
//
// The voices move at the same rate, each elsewhere in its round. Without the highest quality sound between samples is
// read along a line. A delay is never below three samples.
class Chorus : public ComponentBase {
public:
    static constexpr int kMostVoices = 8;

    Chorus();

    std::size_t Tail() const noexcept override;

protected:
    ~Chorus() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    static constexpr std::size_t kSides = 3;

    struct Voice {
        double place = 0;        // in the spread, 0...1
        Oscillator::Value ahead; // of the oscillators
        std::array<SmoothedValue, kSides> levels;
        std::array<SmoothedValue, kSides> lags;
        SmoothedValue share;
        // What these have come to.
        std::array<float, kSides> level{};
        std::array<float, kSides> lag{}; // samples
        float feedbackShare = 0;
    };
    // What all voices have in common at a sample.
    struct Moment {
        Oscillator::Value delayOscillator;
        Oscillator::Value levelOscillator;
        double delay; // samples
        double depth;
        double spread;     // samples
        double levelDepth; // octaves of the amplitude
    };

    void SetVoices(bool settle) noexcept;
    static void Advance(Voice& voice) noexcept;
    Moment NextMoment() noexcept;
    void AddVoice(const Voice& voice, const Moment& moment) noexcept;
    TapWeights WeightsAt(double delay) const noexcept;
    void WriteLines() noexcept;

    std::array<Voice, kMostVoices> fVoices;
    std::size_t fGliding = 0; // samples until the voices stand still
    std::vector<ChannelSide> fSides;
    std::vector<DelayLine> fLines;
    std::vector<float> fInputs; // of the present sample, by channel
    std::vector<float> fWet;
    std::vector<float> fFedBack;
    Oscillator fDelayOscillator;
    Oscillator fLevelOscillator;
    SmoothedValue fDelay;
    SmoothedValue fDepth;
    SmoothedValue fSpread;
    SmoothedValue fFeedback;
    SmoothedValue fLevelDepth;
    SmoothedValue fAverage; // 0...1
    SmoothedValue fDryLevel;
    SmoothedValue fWetLevel;
    bool fIsFine = true;
};

} // namespace qoc::components
