#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/DelayLine.h"
#include "qoc/dsp/delay/TapRow.h"
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
    };
    // A value for each of the samples that are processed at once.
    using Row = TapRow::Samples;
    // What all voices have in common.
    struct Moments {
        TapRow::Delays delaySines; // of the oscillators
        TapRow::Delays delayCosines;
        TapRow::Delays levelSines;
        TapRow::Delays levelCosines;
        Row delay; // samples
        Row depth;
        Row spread;               // samples
        bool isLevelStill = true; // otherwise:
        Row levelDepth;           // octaves of the amplitude
    };
    struct Channel {
        ChannelSide side;
        DelayLine line;
        Row input;
        Row taken; // by the line: the input, averaged
        Row wet;
        Row fedBack;
    };

    void SetVoices(bool settle) noexcept;
    std::size_t RowLength() const noexcept;
    void ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void TakeInputs(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void Advance(std::size_t count) noexcept;
    void AddVoice(Voice& voice, std::size_t count) noexcept;
    void SetTaps(Voice& voice, std::size_t count) noexcept;
    void SetLevels(Voice& voice, std::size_t count) noexcept;
    void AddVoice(Channel& channel, std::size_t count) noexcept;
    void FeedBack(std::size_t count) noexcept;
    // The feedback is at work or on its way: the lines take the sound only when the voices have been heard.
    bool IsFedBack() const noexcept { return !fFeedback.IsSettled() || fFeedback.Target() != 0; }

    std::array<Voice, kMostVoices> fVoices;
    std::vector<Channel> fChannels;
    Moments fMoments;
    // Of the present voice.
    std::array<TapRow, kSides> fTaps;
    std::array<const TapRow*, kSides> fTapsOf{}; // by side, which may have the same ones
    std::array<Row, kSides> fLevels;
    Row fShare;
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
