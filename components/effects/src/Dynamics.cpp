#include "qoc/components/Dynamics.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/math/Decibels.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestLookAhead = 20; // milliseconds
constexpr int kFewestPoints = 2;

constexpr const char* kModeNames[] = {"$$$/DynamicsUI/Peak=Peak", "$$$/DynamicsUI/RMS=RMS"};
enum { kPeak, kPower };

constexpr const char* kChannelNames[] = {"$$$/DynamicsUI/Loudest=Loudest", "$$$/DynamicsUI/Average=Average",
                                         "$$$/DynamicsUI/EachByItself=Each by Itself"};
enum { kLoudest, kAverage, kEachByItself };

constexpr const char kCurve[] = "curve";

constexpr ParameterRow kRows[] = {
    {.index = kDynamicsMakeUpGain,
     .id = "makeUpGain",
     .name = "$$$/DynamicsUI/MakeUpGainName=Make-Up Gain",
     .unit = "dB",
     .lo = -30,
     .hi = 30,
     .decimals = 1},
    {.index = kDynamicsAttack,
     .id = "attack",
     .name = "$$$/DynamicsUI/AttackName=Attack",
     .unit = "ms",
     .lo = 0.01F,
     .hi = 2000,
     .defaultValue = 10},
    {.index = kDynamicsRelease,
     .id = "release",
     .name = "$$$/DynamicsUI/ReleaseName=Release",
     .unit = "ms",
     .lo = 0.01F,
     .hi = 9000,
     .defaultValue = 100},
    {.index = kDynamicsHold,
     .id = "hold",
     .name = "$$$/DynamicsUI/HoldName=Hold",
     .unit = "ms",
     .hi = 500,
     .decimals = 1},
    {.index = kDynamicsLookAhead,
     .id = "lookAhead",
     .name = "$$$/DynamicsUI/LookAheadName=Look-Ahead Time",
     .unit = "ms",
     .hi = kLongestLookAhead,
     .decimals = 1,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare},
    {.index = kDynamicsRange,
     .id = "range",
     .name = "$$$/DynamicsUI/RangeName=Range",
     .unit = "dB",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 1},
    {.index = kDynamicsMix,
     .id = "mix",
     .name = "$$$/DynamicsUI/MixName=Mix",
     .unit = "%",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 0},
    {.index = kDynamicsKnee,
     .id = "knee",
     .name = "$$$/DynamicsUI/KneeName=Knee",
     .unit = "dB",
     .hi = 24,
     .decimals = 1},
    {.index = kDynamicsSmoothCurve,
     .id = "smoothCurve",
     .name = "$$$/DynamicsUI/SmoothCurve=Smooth Curve",
     .kind = ParameterKind::kSwitch},
    {.index = kDynamicsAutoMakeUp,
     .id = "autoMakeUp",
     .name = "$$$/DynamicsUI/AutoMakeUp=Automatic Make-Up Gain",
     .kind = ParameterKind::kSwitch},
    {.index = kDynamicsDetectorMode,
     .id = "detectorMode",
     .name = "$$$/DynamicsUI/DetectorModeName=Detector Mode",
     .hi = 1,
     .defaultValue = 1,
     .kind = ParameterKind::kChoice,
     .items = kModeNames},
    {.index = kDynamicsDetectorGain,
     .id = "detectorGain",
     .name = "$$$/DynamicsUI/DetectorGainName=Detector Input Gain",
     .unit = "dB",
     .lo = -30,
     .hi = 30,
     .decimals = 1},
    {.index = kDynamicsDetectorAttack,
     .id = "detectorAttack",
     .name = "$$$/DynamicsUI/DetectorAttackName=Detector Attack",
     .unit = "ms",
     .hi = 500,
     .decimals = 1},
    {.index = kDynamicsDetectorRelease,
     .id = "detectorRelease",
     .name = "$$$/DynamicsUI/DetectorReleaseName=Detector Release",
     .unit = "ms",
     .hi = 500,
     .defaultValue = 10,
     .decimals = 1},
    {.index = kDynamicsDetectorChannels,
     .id = "detectorChannels",
     .name = "$$$/DynamicsUI/DetectorChannelsName=Detector Channels",
     .hi = 2,
     .kind = ParameterKind::kChoice,
     .items = kChannelNames},
    {.index = kDynamicsLimitBand,
     .id = "limitBand",
     .name = "$$$/DynamicsUI/LimitBand=Limit Frequency Band",
     .kind = ParameterKind::kSwitch},
    {.index = kDynamicsLowCutoff,
     .id = "lowCutoff",
     .name = "$$$/DynamicsUI/LowCutoffName=Low Cutoff",
     .unit = "Hz",
     .lo = 20,
     .hi = 20000,
     .defaultValue = 20,
     .decimals = 0},
    {.index = kDynamicsHighCutoff,
     .id = "highCutoff",
     .name = "$$$/DynamicsUI/HighCutoffName=High Cutoff",
     .unit = "Hz",
     .lo = 20,
     .hi = 20000,
     .defaultValue = 20000,
     .decimals = 0},
    {.index = kDynamicsListen,
     .id = "listen",
     .name = "$$$/DynamicsUI/Listen=Listen to the Detector's Input",
     .kind = ParameterKind::kSwitch},
    {.index = kDynamicsPointCount,
     .id = "pointCount",
     .name = "$$$/DynamicsUI/PointCountName=Number of Points",
     .lo = kFewestPoints,
     .hi = static_cast<float>(TransferCurve::kMostPoints),
     .defaultValue = kFewestPoints,
     .decimals = 0,
     .flags = kParameterWhole,
     .curve = kCurve},
};

constexpr ParameterRow Level(int index, const char* id, const char* name, float level) {
    return {.index = index,
            .id = id,
            .name = name,
            .unit = "dB",
            .lo = static_cast<float>(Dynamics::kLowestLevel),
            .hi = 0,
            .defaultValue = level,
            .decimals = 1,
            .curve = kCurve};
}

// The first point stands at the lowest level, the others wait at the highest one.
ParameterTable Table() {
    ParameterTable table;
    table.Add(kRows);
    for (int point = 1; point <= static_cast<int>(TransferCurve::kMostPoints); ++point) {
        const int index = kDynamicsFirstPoint + 2 * (point - 1);
        const float level = point == 1 ? static_cast<float>(Dynamics::kLowestLevel) : 0.0F;
        const ParameterRow rows[] = {
            Level(index, "pointInput", "$$$/DynamicsUI/PointInputName=Input Level of Point @0", level),
            Level(index + 1, "pointOutput", "$$$/DynamicsUI/PointOutputName=Output Level of Point @0", level)};
        table.AddRepeated(rows, 1, point);
    }
    return table;
}

} // namespace

Dynamics::Dynamics() : ComponentBase(kDynamicsComponentID, Table()) {
}

Dynamics::~Dynamics() = default;

std::size_t Dynamics::Tail() const noexcept {
    return static_cast<std::size_t>(std::ceil(BandLimit::DecaySamples(GetSampleRate(), BandOfParameters())));
}

BandLimit::Settings Dynamics::BandOfParameters() const noexcept {
    return {IsOn(kDynamicsLimitBand), Natural(kDynamicsLowCutoff), Natural(kDynamicsHighCutoff)};
}

bool Dynamics::GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const {
    if (index != 0 || size == 0) return false;
    const TransferCurve curve = Curve();
    const double range = Natural(kDynamicsRange);
    values.resize(size);
    const double step = size > 1 ? -kLowestLevel / static_cast<double>(size - 1) : 0;
    for (std::size_t i = 0; i < size; ++i) {
        const double level = kLowestLevel + step * static_cast<double>(i);
        values[i] = static_cast<float>(level + std::clamp(curve.GainAt(level), -range, range));
    }
    return true;
}

void Dynamics::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double sampleRate = GetSampleRate();
    const std::size_t channels = GetNumberOfInputChannels();
    fLatency = static_cast<std::size_t>(std::llround(SamplesOf(kDynamicsLookAhead)));
    fChannels.assign(channels, {});
    for (Channel& channel : fChannels) {
        channel.soundLater.Prepare(fLatency);
        channel.bandLater.Prepare(fLatency);
    }
    fFollowers.assign(channels, {});
    for (Follower& follower : fFollowers)
        follower.step.Prepare(sampleRate);
    fBand.Prepare(channels, sampleRate);
    for (SmoothedValue* const value : {&fDetectorGain, &fMakeUp, &fMix, &fListen})
        value->Prepare(sampleRate);
}

void Dynamics::ResetProcessing() noexcept {
    for (Channel& channel : fChannels) {
        channel.soundLater.Reset();
        channel.bandLater.Reset();
    }
    for (Follower& follower : fFollowers)
        follower.Reset();
    fBand.Reset();
}

void Dynamics::ReadParameters(bool settle) noexcept {
    fCurve = Curve();
    fRange = Natural(kDynamicsRange);
    GoOnFromEarlierCurve(settle);
    fAttack = LevelDetector::Remainder(SamplesOf(kDynamicsAttack));
    fRelease = LevelDetector::Remainder(SamplesOf(kDynamicsRelease));
    fHold = static_cast<std::size_t>(SamplesOf(kDynamicsHold));
    fDetector = {Item(kDynamicsDetectorMode) == kPower, LevelDetector::Remainder(SamplesOf(kDynamicsDetectorAttack)),
                 LevelDetector::Remainder(SamplesOf(kDynamicsDetectorRelease))};
    const int before = std::exchange(fDetectorChannels, Item(kDynamicsDetectorChannels));
    if (before != kEachByItself) std::ranges::fill(fFollowers, Follower(fFollowers[0]));
    fBand.Set(BandOfParameters(), settle);
    const double automatic = IsOn(kDynamicsAutoMakeUp) ? -LimitedGain(fCurve.LastInput()) : 0;
    fMakeUp.Set(Natural(kDynamicsMakeUpGain) + automatic, settle);
    fDetectorGain.Set(ToFactor(Natural(kDynamicsDetectorGain)), settle);
    fMix.Set(FractionOfPercent(Natural(kDynamicsMix)), settle);
    fListen.Set(IsOn(kDynamicsListen) ? 1 : 0, settle);
}

// While the band moves each sample has filters of its own.
void Dynamics::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0, count = 0; begin < block.frames; begin += count) {
        count = std::min(block.frames - begin, fBand.IsSettled() ? kMost : 1);
        ProcessRow(block, begin, count);
    }
}

// All channels are taken before any is given: an output may be another's input.
void Dynamics::ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                          std::size_t count) noexcept {
    fDetectorGain.Next(std::span(fDetectorGains).first(count));
    fMakeUp.Next(std::span(fMakeUps).first(count));
    fMix.Next(std::span(fMixes).first(count));
    fListen.Next(std::span(fListens).first(count));
    fBand.Advance();
    for (std::size_t c = 0; c < fChannels.size(); ++c)
        Take(c, block.inputs[c] + begin, count);
    if (IsTogether()) TakeTogether(count);
    for (Follower& follower : std::span(fFollowers).first(IsTogether() ? 1 : fFollowers.size()))
        MakeFactors(follower, count);
    for (std::size_t c = 0; c < fChannels.size(); ++c)
        Give(c, block.outputs[c] + begin, count);
}

void Dynamics::Follower::Reset() noexcept {
    detector = {};
    gain = level = target = 0;
    held = 0;
    step.Settle(0);
}

// A curve that moves while sound goes by moves the gain without a step.
void Dynamics::GoOnFromEarlierCurve(bool settle) noexcept {
    for (Follower& follower : fFollowers) {
        follower.step.Settle(settle ? 0.0F : static_cast<float>(follower.target - LimitedGain(follower.level)));
        follower.step.SetTarget(0);
    }
}

TransferCurve Dynamics::Curve() const noexcept {
    std::array<TransferCurve::Point, TransferCurve::kMostPoints> points;
    const auto count = static_cast<std::size_t>(std::lround(Natural(kDynamicsPointCount)));
    for (std::size_t i = 0; i < count; ++i) {
        const int first = kDynamicsFirstPoint + 2 * static_cast<int>(i);
        points[i] = {Natural(first), Natural(first + 1)};
    }
    return {std::span(points).first(count), {Natural(kDynamicsKnee), IsOn(kDynamicsSmoothCurve)}};
}

double Dynamics::LimitedGain(double level) const noexcept {
    return std::clamp(fCurve.GainAt(level), -fRange, fRange);
}

double Dynamics::SamplesOf(int timeParameter) const noexcept {
    return SecondsOfMilliseconds(Natural(timeParameter)) * GetSampleRate();
}

bool Dynamics::IsTogether() const noexcept {
    return fDetectorChannels != kEachByItself;
}

// Into the rows, and the power for the detector.
void Dynamics::Take(std::size_t channel, const float* input, std::size_t count) noexcept {
    auto& [soundLater, bandLater, sound, band] = fChannels[channel];
    std::transform(input, input + count, sound.begin(), SaneSample);
    fBand.Next(channel, std::span(sound).first(count), band.data());
    FineRow& powers = fFollowers[channel].gains;
    for (std::size_t k = 0; k < count; ++k) {
        const double heard = double{band[k]} * fDetectorGains[k];
        powers[k] = heard * heard;
    }
    soundLater.Process(std::span(sound).first(count));
    bandLater.Process(std::span(band).first(count));
}

// The powers of all channels into the first one's.
void Dynamics::TakeTogether(std::size_t count) noexcept {
    FineRow& together = fFollowers.front().gains;
    const bool isAverage = fDetectorChannels == kAverage;
    for (const Follower& other : std::span(fFollowers).subspan(1)) {
        for (std::size_t k = 0; k < count; ++k)
            together[k] = isAverage ? together[k] + other.gains[k] : std::max(together[k], other.gains[k]);
    }
    if (!isAverage) return;
    for (double& power : std::span(together).first(count))
        power /= static_cast<double>(fFollowers.size());
}

// Of the powers that the follower has.
void Dynamics::MakeFactors(Follower& follower, std::size_t count) const noexcept {
    const std::span<double> gains = std::span(follower.gains).first(count);
    follower.detector.Next(gains, fDetector);
    FindTargets(follower, gains);
    Follow(follower, gains);
    for (std::size_t k = 0; k < count; ++k)
        gains[k] += fMakeUps[k];
    ToFactors(gains);
    for (std::size_t k = 0; k < count; ++k)
        gains[k] = 1 + fMixes[k] * (gains[k] - 1);
}

void Dynamics::FindTargets(Follower& follower, std::span<double> levels) const noexcept {
    follower.level = levels.back();
    fCurve.GainsAt(levels);
    for (double& gain : levels)
        gain = std::clamp(gain, -fRange, fRange);
    if (!follower.step.IsSettled()) {
        for (double& gain : levels)
            gain += follower.step.Next();
    }
    follower.target = levels.back();
}

void Dynamics::Follow(Follower& follower, std::span<double> targets) const noexcept {
    double gain = follower.gain;
    for (double& target : targets) {
        if (target <= gain) {
            gain = target + fAttack * (gain - target);
            follower.held = fHold;
        } else if (follower.held > 0) {
            --follower.held;
        } else {
            gain = target + fRelease * (gain - target);
        }
        target = gain;
    }
    follower.gain = gain;
}

void Dynamics::Give(std::size_t channel, float* output, std::size_t count) noexcept {
    const Channel& present = fChannels[channel];
    FineRow processed;
    std::copy_n(fFollowers[IsTogether() ? 0 : channel].gains.begin(), count, processed.begin());
    fBand.Change(channel, std::span(present.sound).first(count), processed.data());
    for (std::size_t k = 0; k < count; ++k)
        output[k] = static_cast<float>(processed[k] + fListens[k] * (present.band[k] - processed[k]));
}

} // namespace qoc::components
