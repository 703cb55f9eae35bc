#include "qoc/components/Flanger.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestDelay = 20; // milliseconds
constexpr float kMostFeedback = 95; // percent

constexpr ParameterRow kRows[] = {
    {.index = kFlangerInitialDelay,
     .id = "initialDelay",
     .name = "$$$/Flanger/InitialDelay=Initial Delay Time",
     .unit = "ms",
     .hi = kLongestDelay,
     .defaultValue = 0.5F},
    {.index = kFlangerFinalDelay,
     .id = "finalDelay",
     .name = "$$$/Flanger/FinalDelay=Final Delay Time",
     .unit = "ms",
     .hi = kLongestDelay,
     .defaultValue = 5},
    {.index = kFlangerStereoPhase,
     .id = "stereoPhase",
     .name = "$$$/Flanger/StereoPhase=Stereo Phasing",
     .unit = "#{deg}",
     .hi = 360,
     .defaultValue = 90,
     .decimals = 1},
    {.index = kFlangerFeedback,
     .id = "feedback",
     .name = "$$$/Flanger/Feedback=Feedback",
     .unit = "%",
     .lo = -kMostFeedback,
     .hi = kMostFeedback,
     .defaultValue = 30,
     .decimals = 1},
    {.index = kFlangerRate,
     .id = "rate",
     .name = "$$$/Flanger/Rate=Modulation Rate",
     .unit = "Hz",
     .lo = 0.01F,
     .hi = 10,
     .defaultValue = 0.2F},
    {.index = kFlangerInverted,
     .id = "inverted",
     .name = "$$$/Flanger/Inverted=Inverted",
     .kind = ParameterKind::kSwitch},
    {.index = kFlangerThroughZero,
     .id = "throughZero",
     .name = "$$$/Flanger/ThroughZero=Through Zero",
     .kind = ParameterKind::kSwitch},
    {.index = kFlangerSinusoidal,
     .id = "sinusoidal",
     .name = "$$$/Flanger/Sinusoidal=Sinusoidal",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
    {.index = kFlangerMix,
     .id = "mix",
     .name = "$$$/Flanger/Mix=Mix",
     .unit = "%",
     .hi = 100,
     .defaultValue = 50,
     .decimals = 1},
    {.index = kFlangerShowPeriod,
     .id = "showPeriod",
     .name = "$$$/Flanger/ShowPeriod=Show Rate as Period",
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable},
};

constexpr double kTurn = 360; // degrees
// Read before the present sample is written, whose delay is 0.
constexpr double kShortestLoop = TapWeights::kAhead + 1;

} // namespace

Flanger::Flanger() : ComponentBase(kFlangerComponentID, std::move(ParameterTable().Add(kRows))) {
}

Flanger::~Flanger() = default;

std::size_t Flanger::Tail() const noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    const double longest = SecondsOfMilliseconds(std::max(Natural(kFlangerInitialDelay), Natural(kFlangerFinalDelay)));
    const double feedback = FractionOfPercent(std::abs(Natural(kFlangerFeedback)));
    const double rounds = feedback > kDecayed ? std::ceil(std::log(kDecayed) / std::log(feedback)) : 0;
    return static_cast<std::size_t>(std::ceil((1 + rounds) * std::max(longest * GetSampleRate(), kShortestLoop)));
}

void Flanger::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double rate = GetSampleRate();
    const auto longest = static_cast<std::size_t>(std::ceil(SecondsOfMilliseconds(kLongestDelay) * rate)) + Latency();
    fChannels.clear();
    for (const ChannelSide side : SidesOf(GetInputBuses().front().GetLayout())) {
        Channel& channel = fChannels.emplace_back();
        channel.original.Prepare(longest);
        channel.line.Prepare(longest);
        channel.isAhead = side == ChannelSide::kRight;
    }
    for (SmoothedValue* value :
         {&fInitial, &fFinal, &fWaiting, &fPhase, &fRoundness, &fFeedback, &fOriginalLevel, &fDelayedLevel})
        value->Prepare(rate);
}

void Flanger::ResetProcessing() noexcept {
    for (Channel& channel : fChannels) {
        channel.original.Reset();
        channel.line.Reset();
    }
    fOscillator.Reset();
}

void Flanger::ReadParameters(bool settle) noexcept {
    const double initial = SecondsOfMilliseconds(Natural(kFlangerInitialDelay)) * GetSampleRate();
    const double final = SecondsOfMilliseconds(Natural(kFlangerFinalDelay)) * GetSampleRate();
    // Above its first notches the copy is not in step: together both are as loud as the sound at every mix.
    const double mix = FractionOfPercent(Natural(kFlangerMix)) * std::numbers::pi / 2;
    fInitial.Set(initial, settle);
    fFinal.Set(final, settle);
    fWaiting.Set(IsOn(kFlangerThroughZero) ? (initial + final) / 2 : 0, settle);
    fPhase.Set(Natural(kFlangerStereoPhase) / kTurn, settle);
    fRoundness.Set(IsOn(kFlangerSinusoidal) ? 1 : 0, settle);
    fFeedback.Set(FractionOfPercent(Natural(kFlangerFeedback)), settle);
    fOriginalLevel.Set(std::cos(mix), settle);
    fDelayedLevel.Set(IsOn(kFlangerInverted) ? -std::sin(mix) : std::sin(mix), settle);
    fOscillator.SetRate(Natural(kFlangerRate), GetSampleRate());
}

void Flanger::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t frame = 0; frame < block.frames; ++frame) {
        const Moment moment = NextMoment();
        for (std::size_t i = 0; i < fChannels.size(); ++i)
            block.outputs[i][frame] = Next(fChannels[i], moment, SaneSample(block.inputs[i][frame]));
    }
}

Flanger::Moment Flanger::NextMoment() noexcept {
    const double phase = fOscillator.Next();
    const double initial = fInitial.Next();
    Moment moment{.initial = initial,
                  .change = fFinal.Next() - initial,
                  .waiting = fWaiting.Next(),
                  .position = 0,
                  .positionAhead = 0,
                  .feedback = fFeedback.Next(),
                  .originalLevel = fOriginalLevel.Next(),
                  .delayedLevel = fDelayedLevel.Next()};
    const double roundness = fRoundness.Next();
    const double ahead = phase + fPhase.Next();
    moment.position = PositionAt(phase, roundness);
    moment.positionAhead = PositionAt(ahead - std::floor(ahead), roundness);
    return moment;
}

// From 0 to 1 in the first half of the round, and back in the second.
double Flanger::PositionAt(double phase, double roundness) noexcept {
    const double straight = 1 - std::abs(2 * phase - 1);
    const double round = roundness > 0 ? (1 - std::cos(2 * std::numbers::pi * phase)) / 2 : 0;
    return straight + roundness * (round - straight);
}

// Everything comes later by what the weights need of the sound behind a place, except what is fed back.
float Flanger::Next(Channel& channel, const Moment& moment, float input) noexcept {
    const double delay = moment.initial + moment.change * (channel.isAhead ? moment.positionAhead : moment.position);
    const float fedBack =
        moment.feedback == 0 ? 0 : channel.line.At(TapWeights(std::max(delay, kShortestLoop) - 1)) * moment.feedback;
    channel.line.Write(input + fedBack);
    channel.original.Write(input);
    const float original = moment.waiting == 0 ? channel.original.At(TapWeights::kAhead)
                                               : channel.original.At(TapWeights(moment.waiting + TapWeights::kAhead));
    const float delayed = channel.line.At(TapWeights(delay + TapWeights::kAhead));
    return moment.originalLevel * original + moment.delayedLevel * delayed;
}

} // namespace qoc::components
