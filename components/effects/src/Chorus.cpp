#include "qoc/components/Chorus.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestDelay = 90;   // milliseconds
constexpr float kLongestSpread = 200; // milliseconds
constexpr float kLowestRate = 0.01F;  // hertz
constexpr float kHighestRate = 10;
constexpr float kMostFeedback = 95; // percent

constexpr ParameterRow kRows[] = {
    {.index = kChorusVoices,
     .id = "voices",
     .name = "$$$/Chorus/Voices=Voices",
     .lo = 1,
     .hi = Chorus::kMostVoices,
     .defaultValue = 4,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterWhole},
    {.index = kChorusDelay,
     .id = "delay",
     .name = "$$$/Chorus/Delay=Delay Time",
     .unit = "ms",
     .hi = kLongestDelay,
     .defaultValue = 20,
     .decimals = 1},
    {.index = kChorusRate,
     .id = "rate",
     .name = "$$$/Chorus/Rate=Delay Rate",
     .unit = "Hz",
     .lo = kLowestRate,
     .hi = kHighestRate,
     .defaultValue = 0.8F},
    {.index = kChorusDepth,
     .id = "depth",
     .name = "$$$/Chorus/Depth=Delay Depth",
     .unit = "%",
     .hi = 100,
     .defaultValue = 20,
     .decimals = 1},
    {.index = kChorusFeedback,
     .id = "feedback",
     .name = "$$$/Chorus/Feedback=Feedback",
     .unit = "%",
     .hi = kMostFeedback,
     .defaultValue = 0,
     .decimals = 1},
    {.index = kChorusSpread,
     .id = "spread",
     .name = "$$$/Chorus/Spread=Spread",
     .unit = "ms",
     .hi = kLongestSpread,
     .defaultValue = 15,
     .decimals = 1},
    {.index = kChorusLevelDepth,
     .id = "levelDepth",
     .name = "$$$/Chorus/LevelDepth=Level Depth",
     .unit = "dB",
     .hi = 24,
     .defaultValue = 0,
     .decimals = 1},
    {.index = kChorusLevelRate,
     .id = "levelRate",
     .name = "$$$/Chorus/LevelRate=Level Rate",
     .unit = "Hz",
     .lo = kLowestRate,
     .hi = kHighestRate,
     .defaultValue = 1},
    {.index = kChorusHighQuality,
     .id = "highQuality",
     .name = "$$$/Chorus/HighQuality=Highest Quality",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable},
    {.index = kChorusAverage,
     .id = "average",
     .name = "$$$/Chorus/Average=Average Left and Right Channels",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
    {.index = kChorusBinaural,
     .id = "binaural",
     .name = "$$$/Chorus/Binaural=Add Binaural Cues",
     .kind = ParameterKind::kSwitch},
    {.index = kChorusWidth,
     .id = "width",
     .name = "$$$/Chorus/Width=Stereo Width",
     .unit = "%",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 1},
    {.index = kChorusMix,
     .id = "mix",
     .name = "$$$/Chorus/Mix=Mix",
     .unit = "%",
     .hi = 100,
     .defaultValue = 63,
     .decimals = 1},
};

// Around a sphere of 8.75 cm radius, from the side: r / c (pi / 2 + 1); after R. S. Woodworth, "Experimental
// Psychology" (1938).
constexpr double kLongestLag = 0.0875 / 343 * (std::numbers::pi / 2 + 1); // seconds
constexpr double kDecibelsAnOctave = 6.020599913279624;                   // of the amplitude: 20 log10(2)
// Read before the present sample is written, whose delay is 0.
constexpr double kShortestDelay = TapWeights::kAhead + 1;

// So that the voices are spread as evenly as goes however many there are.
double GoldenPlace(int voice) noexcept {
    constexpr double kGolden = 1 / std::numbers::phi;
    const double place = voice * kGolden;
    return place - std::floor(place);
}

constexpr std::size_t Index(ChannelSide side) noexcept {
    return static_cast<std::size_t>(side);
}

// Of the voices from the middle, as a root mean square, when the outer ones are at 1. Of one, which stands there, 1.
double MeanDistance(int count) noexcept {
    return count > 1 ? std::sqrt((count + 1) / (3.0 * (count - 1))) : 1;
}

// How far an oscillator is from its upper end, 0...1.
double ShareBelow(const Oscillator::Value& oscillator, const Oscillator::Value& ahead) noexcept {
    return (1 - oscillator.SineAhead(ahead)) / 2;
}

} // namespace

Chorus::Chorus() : ComponentBase(kChorusComponentID, std::move(ParameterTable().Add(kRows))) {
    for (int i = 0; i < kMostVoices; ++i) {
        Voice& voice = fVoices[static_cast<std::size_t>(i)];
        voice.place = GoldenPlace(i);
        voice.ahead = Oscillator::At(voice.place);
    }
}

Chorus::~Chorus() = default;

std::size_t Chorus::Tail() const noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    const double longest = SecondsOfMilliseconds(double{Natural(kChorusDelay)} + Natural(kChorusSpread)) + kLongestLag;
    const double feedback = FractionOfPercent(Natural(kChorusFeedback));
    const double rounds = feedback > kDecayed ? std::ceil(std::log(kDecayed) / std::log(feedback)) : 0;
    return static_cast<std::size_t>(std::ceil((1 + rounds) * longest * GetSampleRate())) + TapWeights::kAhead;
}

void Chorus::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double rate = GetSampleRate();
    const double longest = SecondsOfMilliseconds(double{kLongestDelay} + kLongestSpread) + kLongestLag;
    fChannels.clear();
    for (const ChannelSide side : SidesOf(GetInputBuses().front().GetLayout())) {
        Channel& channel = fChannels.emplace_back();
        channel.side = side;
        channel.line.Prepare(static_cast<std::size_t>(std::ceil(longest * rate)) +
                             static_cast<std::size_t>(kShortestDelay) + TapRow::kMost);
    }
    for (SmoothedValue* value :
         {&fDelay, &fDepth, &fSpread, &fFeedback, &fLevelDepth, &fAverage, &fDryLevel, &fWetLevel})
        value->Prepare(rate);
    for (Voice& voice : fVoices) {
        for (SmoothedValue& level : voice.levels)
            level.Prepare(rate);
        for (SmoothedValue& lag : voice.lags)
            lag.Prepare(rate);
        voice.share.Prepare(rate);
    }
}

void Chorus::ResetProcessing() noexcept {
    for (Channel& channel : fChannels)
        channel.line.Reset();
    fDelayOscillator.Reset();
    fLevelOscillator.Reset();
}

void Chorus::ReadParameters(bool settle) noexcept {
    const double rate = GetSampleRate();
    fDelay.Set(SecondsOfMilliseconds(Natural(kChorusDelay)) * rate, settle);
    fDepth.Set(FractionOfPercent(Natural(kChorusDepth)), settle);
    fSpread.Set(SecondsOfMilliseconds(Natural(kChorusSpread)) * rate, settle);
    fFeedback.Set(FractionOfPercent(Natural(kChorusFeedback)), settle);
    fLevelDepth.Set(Natural(kChorusLevelDepth) / kDecibelsAnOctave, settle);
    fAverage.Set(IsOn(kChorusAverage) ? 1 : 0, settle);
    if (settle)
        fIsOneLine = IsOn(kChorusAverage);
    else if (!IsOn(kChorusAverage))
        SplitLine();
    // The voices are not in step with the sound: together they are as loud as it is at every mix.
    const double mix = FractionOfPercent(Natural(kChorusMix)) * std::numbers::pi / 2;
    fDryLevel.Set(std::cos(mix), settle);
    fWetLevel.Set(std::sin(mix), settle);
    fDelayOscillator.SetRate(Natural(kChorusRate), rate);
    fLevelOscillator.SetRate(Natural(kChorusLevelRate), rate);
    fIsFine = IsOn(kChorusHighQuality);
    SetVoices(settle);
}

// Where each voice stands, 1 / sqrt(count) loud: the power of all together stays. At the full width two voices stand at
// the loudspeakers and have nothing in common. Of more, those between would bring the sides together again: the outer
// ones reach beyond the loudspeakers, so far that the sides are a little against each other.
void Chorus::SetVoices(bool settle) noexcept {
    const int count = static_cast<int>(std::lround(Natural(kChorusVoices)));
    const double width = FractionOfPercent(Natural(kChorusWidth));
    const double common = count > 1 ? std::sqrt(1 - width * width) : 1;
    constexpr double kBeyond = 0.6;
    const double sides = (1 - common) * (count > 2 ? kBeyond : 0.5); // share of the power
    const double middle = std::sqrt(1 - sides);
    const double across = std::sqrt(sides) / MeanDistance(count);
    const double lag = IsOn(kChorusBinaural) ? kLongestLag * GetSampleRate() : 0;
    for (int i = 0; i < kMostVoices; ++i) {
        Voice& voice = fVoices[static_cast<std::size_t>(i)];
        const double place = count > 1 && i < count ? 2.0 * i / (count - 1) - 1 : 0; // -1 is left
        const double level = i < count ? 1 / std::sqrt(static_cast<double>(count)) : 0;
        voice.levels[Index(ChannelSide::kMiddle)].Set(level, settle);
        voice.levels[Index(ChannelSide::kLeft)].Set(level * (middle - across * place), settle);
        voice.levels[Index(ChannelSide::kRight)].Set(level * (middle + across * place), settle);
        voice.lags[Index(ChannelSide::kMiddle)].Set(0, settle);
        voice.lags[Index(ChannelSide::kLeft)].Set(lag * width * std::max(0.0, place), settle);
        voice.lags[Index(ChannelSide::kRight)].Set(lag * width * std::max(0.0, -place), settle);
        voice.share.Set(i < count ? 1.0 / count : 0, settle);
    }
}

void Chorus::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0; begin < block.frames;) {
        const std::size_t count = std::min(block.frames - begin, RowLength());
        ProcessRow(block, begin, count);
        begin += count;
    }
}

// So many samples that none is fed back to another of them.
std::size_t Chorus::RowLength() const noexcept {
    if (!IsFedBack()) return TapRow::kMost;
    const double shortest = double{fDelay.LeastAhead()} * (1 - double{fDepth.MostAhead()});
    const auto whole = static_cast<std::size_t>(std::max(kShortestDelay, shortest));
    return std::min(TapRow::kMost, whole - TapWeights::kAhead);
}

void Chorus::ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                        std::size_t count) noexcept {
    TakeInputs(block, begin, count);
    Advance(count);
    for (Voice& voice : fVoices)
        AddVoice(voice, count);
    FeedBack(count);
    Row dry;
    Row wet;
    fDryLevel.Next(std::span(dry).first(count));
    fWetLevel.Next(std::span(wet).first(count));
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        const Channel& channel = fChannels[i];
        float* const output = block.outputs[i] + begin;
        for (std::size_t k = 0; k < count; ++k)
            output[k] = dry[k] * channel.input[k] + wet[k] * channel.wet[k];
    }
}

void Chorus::TakeInputs(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                        std::size_t count) noexcept {
    Row average;
    Row sum{};
    fAverage.Next(std::span(average).first(count));
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        Row& input = fChannels[i].input;
        std::transform(block.inputs[i] + begin, block.inputs[i] + begin + count, input.begin(), SaneSample);
        for (std::size_t k = 0; k < count; ++k)
            sum[k] += input[k];
    }
    const float share = 1 / static_cast<float>(fChannels.size());
    for (Channel& channel : fChannels) {
        std::fill_n(channel.wet.begin(), count, 0.0F);
        std::fill_n(channel.fedBack.begin(), count, 0.0F);
    }
    for (Channel& channel : ChannelsWithLines()) {
        for (std::size_t k = 0; k < count; ++k) {
            const float mean = sum[k] * share;
            channel.taken[k] = average[k] == 1 ? mean : channel.input[k] + average[k] * (mean - channel.input[k]);
        }
        if (!IsFedBack()) channel.line.Write(std::span(channel.taken).first(count));
    }
}

void Chorus::Advance(std::size_t count) noexcept {
    const auto first = [&](auto& row) { return std::span(row).first(count); };
    fMoments.isLevelStill = fLevelDepth.IsSettled() && fLevelDepth.Target() == 0;
    if (fMoments.isLevelStill) {
        fLevelOscillator.Skip(count);
    } else {
        fLevelDepth.Next(first(fMoments.levelDepth));
        fLevelOscillator.Next(first(fMoments.levelSines), first(fMoments.levelCosines));
    }
    Row delay;
    Row depth;
    Row spread;
    fDelayOscillator.Next(first(fMoments.swingSines), first(fMoments.swingCosines));
    fDelay.Next(first(delay));
    fDepth.Next(first(depth));
    fSpread.Next(first(spread));
    for (std::size_t k = 0; k < count; ++k) {
        const double swing = double{delay[k]} * depth[k] / 2;
        fMoments.middle[k] = delay[k] - swing;
        fMoments.swingSines[k] *= swing;
        fMoments.swingCosines[k] *= swing;
        fMoments.spread[k] = spread[k];
    }
}

// The feedback hears voices where they stand in the middle and at their own level.
void Chorus::AddVoice(Voice& voice, std::size_t count) noexcept {
    if (voice.share.IsSettled() && voice.share.Target() == 0) return;
    SetTaps(voice, count);
    SetLevels(voice, count);
    voice.share.Next(std::span(fShare).first(count));
    fReadLine = nullptr;
    for (Channel& channel : fChannels) {
        const std::size_t side = Index(channel.side);
        ReadVoice(channel, *fTapsOf[side], count);
        for (std::size_t k = 0; k < count; ++k)
            channel.wet[k] += fLevels[side][k] * fRead[k];
    }
    if (!IsFedBack()) return;
    for (Channel& channel : ChannelsWithLines()) {
        ReadVoice(channel, *fTapsOf.front(), count);
        for (std::size_t k = 0; k < count; ++k)
            channel.fedBack[k] += fShare[k] * fRead[k];
    }
}

void Chorus::SetTaps(Voice& voice, std::size_t count) noexcept {
    TapRow::Delays delays;
    const Oscillator::Value ahead = voice.ahead;
    for (std::size_t k = 0; k < count; ++k) {
        const double swung = fMoments.swingSines[k] * ahead.cosine + fMoments.swingCosines[k] * ahead.sine;
        delays[k] = std::max(kShortestDelay, fMoments.middle[k] + swung + fMoments.spread[k] * voice.place);
    }
    // In the middle no voice comes later.
    fTaps.front().Set(std::span(delays).first(count), fIsFine);
    for (std::size_t side = 0; side < kSides; ++side) {
        SmoothedValue& lag = voice.lags[side];
        fTapsOf[side] = fTaps.data();
        if (lag.IsSettled() && lag.Target() == 0) continue;
        fTapsOf[side] = &fTaps[side];
        TapRow::Delays late = delays;
        Row later;
        lag.Next(std::span(later).first(count));
        for (std::size_t k = 0; k < count; ++k)
            late[k] += later[k];
        fTaps[side].Set(std::span(late).first(count), fIsFine);
    }
}

void Chorus::SetLevels(Voice& voice, std::size_t count) noexcept {
    for (std::size_t side = 0; side < kSides; ++side)
        voice.levels[side].Next(std::span(fLevels[side]).first(count));
    if (fMoments.isLevelStill) return;
    for (std::size_t k = 0; k < count; ++k) {
        const Oscillator::Value oscillator{fMoments.levelSines[k], fMoments.levelCosines[k]};
        const auto level = static_cast<float>(std::exp2(-fMoments.levelDepth[k] * ShareBelow(oscillator, voice.ahead)));
        for (Row& row : fLevels)
            row[k] *= level;
    }
}

// What was read for another channel is not read again.
void Chorus::ReadVoice(const Channel& channel, const TapRow& taps, std::size_t count) noexcept {
    const DelayLine& line = fIsOneLine ? fChannels.front().line : channel.line;
    if (fReadLine == &line && fReadTaps == &taps) return;
    taps.Read(line, IsFedBack() ? -1 : static_cast<std::ptrdiff_t>(count) - 1, fRead.data());
    fReadLine = &line;
    fReadTaps = &taps;
}

void Chorus::FeedBack(std::size_t count) noexcept {
    if (!IsFedBack()) return;
    Row feedback;
    fFeedback.Next(std::span(feedback).first(count));
    for (Channel& channel : ChannelsWithLines()) {
        for (std::size_t k = 0; k < count; ++k)
            channel.taken[k] += feedback[k] * channel.fedBack[k];
        channel.line.Write(std::span(channel.taken).first(count));
    }
}

// From now on each channel has a line of its own, which goes on from the one of all.
void Chorus::SplitLine() noexcept {
    if (!std::exchange(fIsOneLine, false)) return;
    for (Channel& channel : std::span(fChannels).subspan(1))
        channel.line = fChannels.front().line;
}

} // namespace qoc::components
