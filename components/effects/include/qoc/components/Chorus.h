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
        // In samples: a voice's delay is the middle one, the sums of what swings as its oscillator's sine and cosine,
        // and its place in the spread.
        TapRow::Delays middle;
        TapRow::Delays swingSines;
        TapRow::Delays swingCosines;
        TapRow::Delays spread;
        bool isLevelStill = true;  // otherwise:
        TapRow::Delays levelSines; // of the oscillator
        TapRow::Delays levelCosines;
        Row levelDepth; // octaves of the amplitude
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
    void ReadVoice(const Channel& channel, const TapRow& taps, std::size_t count) noexcept;
    void FeedBack(std::size_t count) noexcept;
    // Those of the first channel are all channels' while there is one line.
    std::span<Channel> ChannelsWithLines() noexcept {
        return std::span(fChannels).first(fIsOneLine ? 1 : fChannels.size());
    }
    void SplitLine() noexcept;
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
    // What was read last, and where.
    Row fRead;
    const DelayLine* fReadLine = nullptr;
    const TapRow* fReadTaps = nullptr;
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
    bool fIsOneLine = true; // the channels have been averaged since the reset, and only the first one's line is kept
};

} // namespace qoc::components
