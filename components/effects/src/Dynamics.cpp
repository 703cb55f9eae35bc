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
        channel.sound.resize(fLatency + 1);
        channel.band.resize(fLatency + 1);
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
        std::ranges::fill(channel.sound, 0.0F);
        std::ranges::fill(channel.band, 0.0F);
    }
    for (Follower& follower : fFollowers)
        follower.Reset();
    fBand.Reset();
    fPosition = 0;
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

void Dynamics::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    const std::size_t size = fLatency + 1;
    for (std::size_t frame = 0; frame < block.frames; ++frame) {
        Take(block, frame);
        const double makeUp = fMakeUp.Next();
        const double mix = fMix.Next();
        const double listen = fListen.Next();
        const bool isTogether = fDetectorChannels != kEachByItself;
        const auto gainFor = [&](Follower& follower, double power) {
            return 1 + mix * (ToFactor(NextGain(follower, power) + makeUp) - 1);
        };
        const double common = isTogether ? gainFor(fFollowers[0], CommonPower()) : 1;
        fPosition = (fPosition + 1) % size;
        for (std::size_t c = 0; c < fChannels.size(); ++c) {
            const Channel& channel = fChannels[c];
            const double gain = isTogether ? common : gainFor(fFollowers[c], channel.power);
            const double processed = fBand.Changed(c, channel.sound[fPosition], gain);
            block.outputs[c][frame] = static_cast<float>(processed + listen * (channel.band[fPosition] - processed));
        }
    }
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

double Dynamics::CommonPower() const noexcept {
    double largest = 0;
    double sum = 0;
    for (const Channel& channel : fChannels) {
        largest = std::max(largest, channel.power);
        sum += channel.power;
    }
    return fDetectorChannels == kAverage ? sum / static_cast<double>(fChannels.size()) : largest;
}

double Dynamics::NextGain(Follower& follower, double power) noexcept {
    follower.level = follower.detector.Next(power, fDetector);
    follower.target = LimitedGain(follower.level) + follower.step.Next();
    const double target = follower.target;
    if (target <= follower.gain) {
        follower.gain = target + fAttack * (follower.gain - target);
        follower.held = fHold;
    } else if (follower.held > 0) {
        --follower.held;
    } else {
        follower.gain = target + fRelease * (follower.gain - target);
    }
    return follower.gain;
}

// Into the rings, and the power for the detector.
void Dynamics::Take(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame) noexcept {
    const double gain = fDetectorGain.Next();
    fBand.Advance();
    for (std::size_t c = 0; c < fChannels.size(); ++c) {
        Channel& channel = fChannels[c];
        const float sound = SaneSample(block.inputs[c][frame]);
        const float band = fBand.Next(c, sound);
        channel.sound[fPosition] = sound;
        channel.band[fPosition] = band;
        channel.power = (band * gain) * (band * gain);
    }
}

} // namespace qoc::components
