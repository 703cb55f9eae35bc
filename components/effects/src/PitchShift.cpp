#include "qoc/components/PitchShift.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLowestSplicingFrequency = 10; // hertz

constexpr const char* kPrecisions[] = {"$$$/PitchShift/Low=Low", "$$$/PitchShift/Medium=Medium",
                                       "$$$/PitchShift/High=High"};

constexpr ParameterRow kRows[] = {
    {.id = "ratio",
     .name = "$$$/PitchShift/Ratio=Ratio",
     .lo = SpliceStretcher::kLowestRatio,
     .hi = SpliceStretcher::kHighestRatio,
     .defaultValue = 1,
     .decimals = 4,
     .scale = ParameterScale::kLogarithmic},
    {.id = "precision",
     .name = "$$$/PitchShift/Precision=Precision",
     .hi = 2,
     .defaultValue = 2,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .items = kPrecisions},
    {.id = "splicing",
     .name = "$$$/PitchShift/SplicingFrequency=Splicing Frequency",
     .unit = "Hz",
     .lo = kLowestSplicingFrequency,
     .hi = 200,
     .defaultValue = 52,
     .decimals = 1,
     .scale = ParameterScale::kLogarithmic},
    {.id = "overlap",
     .name = "$$$/PitchShift/Overlapping=Overlapping",
     .unit = "%",
     .lo = 0,
     .hi = 50,
     .defaultValue = 21.5,
     .decimals = 1},
    {.id = "defaults",
     .name = "$$$/PitchShift/UseDefaultSettings=Use Default Settings",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};

constexpr double kPercent = 100;
// The interpolator's reach at the highest speed, in stretched samples, and in frames at the lowest.
constexpr std::int64_t kReach = 2 * SampleInterpolator::kLargestHalfWidth + 2;
constexpr std::int64_t kChunk = SpliceStretcher::kChunk;

using Kind = SampleInterpolator::Kind;
constexpr std::array<Kind, 3> kKinds = {Kind::kSinc8, Kind::kSinc16, Kind::kSinc32}; // by precision

// In four sums, which need not wait for each other.
float Product(std::span<const float> weights, const float* sound) noexcept {
    std::array<float, 4> sums{};
    std::size_t i = 0;
    for (; i + sums.size() <= weights.size(); i += sums.size()) {
        for (std::size_t lane = 0; lane < sums.size(); ++lane)
            sums[lane] += weights[i + lane] * sound[i + lane];
    }
    for (; i < weights.size(); ++i)
        sums[0] += weights[i] * sound[i];
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

} // namespace

PitchShift::PitchShift() : ComponentBase(kPitchShiftComponentID, std::move(ParameterTable().Add(kRows))) {
}

PitchShift::~PitchShift() = default;

void PitchShift::ParameterHasChanged(int index) {
    const bool isSplicing = index >= kPitchShiftSplicingFrequency && index <= kPitchShiftUseDefaultSettings;
    const bool isPrepared = fLatency > 0;
    if (isSplicing && isPrepared) fHandOver.Offer(MakeStretcher());
}

void PitchShift::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double sampleRate = GetSampleRate();
    const auto longest = static_cast<std::size_t>(std::ceil(sampleRate / kLowestSplicingFrequency));
    fLatency = SpliceStretcher::LongestDelay(sampleRate, longest) + kReach;
    const std::size_t kept = std::bit_ceil(fLatency + 2 * kReach + 4 * kChunk);
    fClock.Prepare(kept);
    fHistory.Prepare(GetNumberOfInputChannels(), kept);
    for (SmoothedValue* value : {&fRatio, &fWet, &fFade})
        value->Prepare(sampleRate);
    fHandOver.Clear();
    fStretcher = MakeStretcher();
}

void PitchShift::ResetProcessing() noexcept {
    if (auto offered = fHandOver.Take()) fStretcher = std::move(offered);
    fFormer.reset();
    fFade.Settle(1);
    fClock.Reset();
    fHistory.Reset();
    fStretcher->Start(0, fClock);
}

void PitchShift::ReadParameters(bool settle) noexcept {
    const float ratio = Natural(kPitchShiftRatio);
    settle ? fRatio.Settle(ratio) : fRatio.SetTarget(ratio);
    if (settle) fWet.Settle(ratio == 1.0F ? 0.0F : 1.0F);
    const int precision = Item(kPitchShiftPrecision);
    fKind = kKinds[static_cast<std::size_t>(precision)];
    fQuickSeek = precision == 0;
    fStretcher->SetQuickSeek(fQuickSeek);
}

void PitchShift::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0; begin < block.frames;) {
        if (fClock.Now() % kChunk == 0) TakeStretcher();
        const auto rest = static_cast<std::size_t>(kChunk - fClock.Now() % kChunk);
        const std::size_t frames = std::min(block.frames - begin, rest);
        ProcessPart(block, begin, frames);
        begin += frames;
    }
}

std::unique_ptr<SpliceStretcher> PitchShift::MakeStretcher() const {
    SpliceLengths lengths;
    if (!IsOn(kPitchShiftUseDefaultSettings)) {
        const double sequence = GetSampleRate() / double{Natural(kPitchShiftSplicingFrequency)};
        lengths.sequence = std::max<std::size_t>(1, static_cast<std::size_t>(std::llround(sequence)));
        lengths.overlap = static_cast<std::size_t>(std::llround(sequence * Natural(kPitchShiftOverlapping) / kPercent));
    }
    return std::make_unique<SpliceStretcher>(GetNumberOfInputChannels(), GetSampleRate(), lengths);
}

void PitchShift::TakeStretcher() noexcept {
    if (fFormer != nullptr) return;
    auto offered = fHandOver.Take();
    if (offered == nullptr) return;
    fFormer = std::exchange(fStretcher, std::move(offered));
    const std::int64_t fed = fFormer->Now();
    const std::int64_t needed = fClock.Now() - static_cast<std::int64_t>(fLatency) - kReach;
    fStretcher->SetQuickSeek(fQuickSeek);
    fStretcher->Start(std::max<std::int64_t>(0, needed / kChunk - 1) * kChunk, fClock);
    while (fStretcher->Now() < fed)
        fStretcher->Feed(fHistory, fClock);
    fFade.Settle(0);
    fFade.SetTarget(1);
}

void PitchShift::ProcessPart(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                             std::size_t frames) noexcept {
    const std::int64_t start = fClock.Now();
    fHistory.Write(block.inputs, begin, frames);
    for (std::size_t i = 0; i < frames; ++i)
        fClock.Push(fRatio.Next());
    if (fClock.Now() % kChunk == 0) {
        fStretcher->Feed(fHistory, fClock);
        if (fFormer != nullptr) fFormer->Feed(fHistory, fClock);
    }
    for (std::size_t i = 0; i < frames; ++i)
        Write(block, begin + i, start + static_cast<std::int64_t>(i) - static_cast<std::int64_t>(fLatency));
    if (fFormer != nullptr && fFade.IsSettled()) fHandOver.GiveBack(std::move(fFormer));
}

void PitchShift::Write(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame,
                       std::int64_t source) noexcept {
    const float fade = fFade.Next();
    if (source < 0) {
        for (float* output : block.outputs)
            output[frame] = 0;
        return;
    }
    const float ratio = fClock.RatioAt(source);
    fWet.SetTarget(ratio == 1.0F ? 0.0F : 1.0F);
    const float wet = fWet.Next();
    const double place = fClock.PositionAt(source);
    const double whole = std::floor(place);
    if (wet > 0) fInterpolator.Compute(fKind, place - whole, ratio, static_cast<double>(kReach), fWeights);
    const std::int64_t first = static_cast<std::int64_t>(whole) + fWeights.first;
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        float sound = *fHistory.At(channel, source);
        if (wet > 0) {
            float shifted = ReadStretched(*fStretcher, channel, first);
            if (fFormer != nullptr) shifted += (1 - fade) * (ReadStretched(*fFormer, channel, first) - shifted);
            sound = wet == 1 ? shifted : sound + wet * (shifted - sound);
        }
        block.outputs[channel][frame] = sound;
    }
}

float PitchShift::ReadStretched(const SpliceStretcher& stretcher, std::size_t channel,
                                std::int64_t position) const noexcept {
    return Product(std::span(fWeights.values).first(fWeights.count), stretcher.At(channel, position));
}

} // namespace qoc::components
