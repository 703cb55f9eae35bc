#include "qoc/components/Chorus.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <numbers>
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
    fSides = SidesOf(GetInputBuses().front().GetLayout());
    fLines.assign(fSides.size(), {});
    for (DelayLine& line : fLines)
        line.Prepare(static_cast<std::size_t>(std::ceil(longest * rate)) + static_cast<std::size_t>(kShortestDelay));
    fInputs.resize(fSides.size());
    fWet.resize(fSides.size());
    fFedBack.resize(fSides.size());
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
    for (DelayLine& line : fLines)
        line.Reset();
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
        for (const auto* values : {&voice.levels, &voice.lags})
            for (const SmoothedValue& value : *values)
                fGliding = std::max(fGliding, value.Remaining());
        fGliding = std::max(fGliding, voice.share.Remaining());
        if (settle) Advance(voice);
    }
}

void Chorus::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t frame = 0; frame < block.frames; ++frame) {
        for (std::size_t channel = 0; channel < fInputs.size(); ++channel)
            fInputs[channel] = SaneSample(block.inputs[channel][frame]);
        std::ranges::fill(fWet, 0.0F);
        std::ranges::fill(fFedBack, 0.0F);
        const Moment moment = NextMoment();
        if (fGliding > 0) {
            --fGliding;
            std::ranges::for_each(fVoices, Advance);
        }
        for (const Voice& voice : fVoices)
            AddVoice(voice, moment);
        WriteLines();
        const float dry = fDryLevel.Next();
        const float wet = fWetLevel.Next();
        for (std::size_t channel = 0; channel < fWet.size(); ++channel)
            block.outputs[channel][frame] = dry * fInputs[channel] + wet * fWet[channel];
    }
}

Chorus::Moment Chorus::NextMoment() noexcept {
    const double levelPhase = fLevelOscillator.Next();
    const bool isLevelStill = fLevelDepth.IsSettled() && fLevelDepth.Target() == 0;
    return {.delayOscillator = Oscillator::At(fDelayOscillator.Next()),
            .levelOscillator = isLevelStill ? Oscillator::Value() : Oscillator::At(levelPhase),
            .delay = fDelay.Next(),
            .depth = fDepth.Next(),
            .spread = fSpread.Next(),
            .levelDepth = fLevelDepth.Next()};
}

void Chorus::Advance(Voice& voice) noexcept {
    for (std::size_t side = 0; side < kSides; ++side) {
        voice.level[side] = voice.levels[side].Next();
        voice.lag[side] = voice.lags[side].Next();
    }
    voice.feedbackShare = voice.share.Next();
}

// The feedback hears voices where they stand in the middle and at their own level.
void Chorus::AddVoice(const Voice& voice, const Moment& moment) noexcept {
    if (voice.feedbackShare == 0) return;
    const double swing = moment.depth * ShareBelow(moment.delayOscillator, voice.ahead);
    const double delay = moment.delay * (1 - swing) + moment.spread * voice.place;
    const auto level =
        moment.levelDepth == 0
            ? 1.0F
            : static_cast<float>(std::exp2(-moment.levelDepth * ShareBelow(moment.levelOscillator, voice.ahead)));
    const TapWeights middle = WeightsAt(delay);
    const TapWeights left =
        voice.lag[Index(ChannelSide::kLeft)] == 0 ? middle : WeightsAt(delay + voice.lag[Index(ChannelSide::kLeft)]);
    const TapWeights right =
        voice.lag[Index(ChannelSide::kRight)] == 0 ? middle : WeightsAt(delay + voice.lag[Index(ChannelSide::kRight)]);
    const std::array<const TapWeights*, kSides> weights = {&middle, &left, &right};
    for (std::size_t channel = 0; channel < fLines.size(); ++channel) {
        const std::size_t side = Index(fSides[channel]);
        const float sample = fLines[channel].At(*weights[side]);
        fWet[channel] += level * voice.level[side] * sample;
        fFedBack[channel] += voice.feedbackShare * (side == 0 ? sample : fLines[channel].At(middle));
    }
}

// The lines' newest sample is the one before the present.
TapWeights Chorus::WeightsAt(double delay) const noexcept {
    const double before = std::max(kShortestDelay, delay) - 1;
    return fIsFine ? TapWeights(before) : TapWeights::Linear(before);
}

void Chorus::WriteLines() noexcept {
    const float average = fAverage.Next();
    const float feedback = fFeedback.Next();
    float sum = 0;
    for (const float input : fInputs)
        sum += input;
    const float mean = sum / static_cast<float>(fInputs.size());
    for (std::size_t channel = 0; channel < fLines.size(); ++channel) {
        const float taken = fInputs[channel] + average * (mean - fInputs[channel]);
        fLines[channel].Write(taken + feedback * fFedBack[channel]);
    }
}

} // namespace qoc::components
