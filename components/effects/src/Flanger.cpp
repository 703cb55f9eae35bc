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
    const auto longest =
        static_cast<std::size_t>(std::ceil(SecondsOfMilliseconds(kLongestDelay) * rate)) + Latency() + TapRow::kMost;
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
    for (std::size_t begin = 0; begin < block.frames;) {
        const std::size_t count = std::min(block.frames - begin, RowLength());
        ProcessRow(block, begin, count);
        begin += count;
    }
}

// So many samples that none is fed back to another of them.
std::size_t Flanger::RowLength() const noexcept {
    if (!IsFedBack()) return TapRow::kMost;
    const double shortest = std::min(fInitial.LeastAhead(), fFinal.LeastAhead());
    const auto whole = static_cast<std::size_t>(std::max(kShortestLoop, shortest));
    return std::min(TapRow::kMost, whole - TapWeights::kAhead);
}

// Everything comes later by what the weights need of the sound behind a place, except what is fed back.
void Flanger::ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                         std::size_t count) noexcept {
    SetSweeps(count);
    // All are taken before any is given: an output may be another's input.
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        Write(fChannels[i], block.inputs[i] + begin, count);
    Row originalLevel;
    Row delayedLevel;
    fOriginalLevel.Next(std::span(originalLevel).first(count));
    fDelayedLevel.Next(std::span(delayedLevel).first(count));
    const auto age = static_cast<std::ptrdiff_t>(count) - 1 + TapWeights::kAhead;
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        const Channel& channel = fChannels[i];
        Row original;
        Row delayed;
        ReadOriginal(channel, original, count);
        fSweeps[channel.isAhead ? 1 : 0].taps.Read(channel.line, age, delayed.data());
        float* const output = block.outputs[i] + begin;
        for (std::size_t k = 0; k < count; ++k)
            output[k] = originalLevel[k] * original[k] + delayedLevel[k] * delayed[k];
    }
}

// Of the channels that are in step, and of those ahead.
void Flanger::SetSweeps(std::size_t count) noexcept {
    const auto first = [count](auto& row) { return std::span(row).first(count); };
    fIsFedBack = IsFedBack();
    fFeedback.Next(first(fFeedbacks));
    fInitial.Next(first(fInitials));
    fFinal.Next(first(fFinals));
    fRoundness.Next(first(fRoundnesses));
    fIsWaiting = !fWaiting.IsSettled() || fWaiting.Target() != 0;
    if (fIsWaiting) SetOriginalTaps(count);

    TapRow::Delays phases;
    TapRow::Delays sines;
    TapRow::Delays cosines;
    fOscillator.Phases(first(phases));
    fOscillator.Next(first(sines), first(cosines));
    SetSweep(fSweeps[0], first(phases), first(cosines));

    const bool isPhaseStill = fPhase.IsSettled();
    Row ahead;
    fPhase.Next(first(ahead));
    Oscillator::Value turn = Oscillator::At(ahead.front());
    for (std::size_t k = 0; k < count; ++k) {
        if (!isPhaseStill) turn = Oscillator::At(ahead[k]);
        cosines[k] = cosines[k] * turn.cosine - sines[k] * turn.sine;
        phases[k] += ahead[k];
        phases[k] -= phases[k] >= 1 ? 1 : 0;
    }
    SetSweep(fSweeps[1], first(phases), first(cosines));
}

// The sweep goes from 0 to 1 in the first half of the round, and back in the second.
void Flanger::SetSweep(Sweep& sweep, std::span<const double> phases, std::span<const double> cosines) noexcept {
    const std::size_t count = phases.size();
    TapRow::Delays delays;
    TapRow::Delays loop;
    bool isLongEnough = true;
    for (std::size_t k = 0; k < count; ++k) {
        const double straight = 1 - std::abs(2 * phases[k] - 1);
        const double round = (1 - cosines[k]) / 2;
        const double position = straight + fRoundnesses[k] * (round - straight);
        // Between two floats there is nothing below 0.
        delays[k] = std::max(0.0, fInitials[k] + (double{fFinals[k]} - fInitials[k]) * position);
        loop[k] = std::max(kShortestLoop, delays[k]);
        isLongEnough = isLongEnough && delays[k] >= kShortestLoop;
    }
    sweep.isLongEnough = isLongEnough;
    sweep.taps.Set(std::span(delays).first(count), true);
    if (fIsFedBack && !isLongEnough) sweep.loopTaps.Set(std::span(loop).first(count), true);
}

void Flanger::SetOriginalTaps(std::size_t count) noexcept {
    Row waiting;
    fWaiting.Next(std::span(waiting).first(count));
    TapRow::Delays delays;
    std::copy_n(waiting.begin(), count, delays.begin());
    fOriginalTaps.Set(std::span(delays).first(count), true);
}

void Flanger::Write(Channel& channel, const float* input, std::size_t count) noexcept {
    Row sound;
    std::transform(input, input + count, sound.begin(), SaneSample);
    channel.original.Write(std::span(sound).first(count));
    if (fIsFedBack) {
        const Sweep& sweep = fSweeps[channel.isAhead ? 1 : 0];
        Row fedBack;
        (sweep.isLongEnough ? sweep.taps : sweep.loopTaps).Read(channel.line, -1, fedBack.data());
        for (std::size_t k = 0; k < count; ++k)
            sound[k] += fFeedbacks[k] * fedBack[k];
    }
    channel.line.Write(std::span(sound).first(count));
}

// As late as the other, which waits for what its weights need.
void Flanger::ReadOriginal(const Channel& channel, Row& sound, std::size_t count) const noexcept {
    const std::size_t age = count - 1 + TapWeights::kAhead;
    if (fIsWaiting) {
        fOriginalTaps.Read(channel.original, static_cast<std::ptrdiff_t>(age), sound.data());
    } else {
        for (std::size_t k = 0; k < count; ++k)
            sound[k] = channel.original.At(age - k);
    }
}

} // namespace qoc::components
