#include "qoc/components/ParametricEQ.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/components/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kMostGain = 20; // decibels, of a band
constexpr float kLowestFrequency = 20;
constexpr float kHighestFrequency = 20000;
constexpr float kLowestQ = 0.1F;
constexpr float kHighestQ = 100;
constexpr float kHighestTold = 120; // decibels
constexpr int kDecibelsPerOrder = 6;

constexpr ParameterRow kCommonRows[] = {
    {.id = "masterGain",
     .name = "$$$/ParametricEQ/MasterGainName=Master Gain",
     .unit = "dB",
     .lo = -30,
     .hi = 30,
     .decimals = 1},
    // What the panel's graph shows.
    {.id = "graphRange",
     .name = "$$$/ParametricEQ/GraphRangeName=Range of the Graph",
     .unit = "dB",
     .lo = 6,
     .hi = 60,
     .defaultValue = 24,
     .decimals = 0,
     .flags = kParameterNotAutomatable},
    {.id = "constantWidth", .name = "$$$/ParametricEQ/ConstantWidth=Constant Width", .kind = ParameterKind::kSwitch},
    {.id = "headroom", .name = "$$$/ParametricEQ/Headroom=Keep Headroom", .kind = ParameterKind::kSwitch},
};

struct BandDefault {
    float frequency;
    bool isOn;
};
// The passes only when asked for.
constexpr BandDefault kBandDefaults[] = {{30, false},  {100, true},  {200, true},   {500, true},   {1000, true},
                                         {2500, true}, {6000, true}, {10000, true}, {18000, false}};

constexpr ParameterRow Enable(bool on) {
    return {.id = "enable",
            .name = "$$$/ParametricEQ/Enable=Band @0",
            .defaultValue = on ? 1.0F : 0.0F,
            .kind = ParameterKind::kSwitch};
}

constexpr ParameterRow Frequency(float hertz) {
    return {.id = "frequency",
            .name = "$$$/ParametricEQ/Frequency=Frequency of Band @0",
            .unit = "Hz",
            .lo = kLowestFrequency,
            .hi = kHighestFrequency,
            .defaultValue = hertz,
            .decimals = 1};
}

constexpr ParameterRow kGainRows[] = {
    {.id = "gain",
     .name = "$$$/ParametricEQ/Gain=Gain of Band @0",
     .unit = "dB",
     .lo = -kMostGain,
     .hi = kMostGain,
     .decimals = 1},
};
constexpr ParameterRow kQRows[] = {
    {.id = "q", .name = "$$$/ParametricEQ/Q=Q of Band @0", .lo = kLowestQ, .hi = kHighestQ, .defaultValue = 1},
};

constexpr ParameterRow Width(float hertz) {
    return {.id = "width",
            .name = "$$$/ParametricEQ/Width=Width of Band @0",
            .unit = "Hz",
            .lo = 1,
            .hi = kHighestFrequency,
            .defaultValue = hertz,
            .decimals = 1};
}

constexpr ParameterRow kSteepRows[] = {
    {.id = "steep", .name = "$$$/ParametricEQ/Steep=Steep Shelf @0", .defaultValue = 1, .kind = ParameterKind::kSwitch},
};
constexpr ParameterRow kSlopeRows[] = {
    {.id = "slope",
     .name = "$$$/ParametricEQ/Slope=Slope of Pass @0",
     .unit = "dB/oct",
     .lo = kDecibelsPerOrder,
     .hi = kDecibelsPerOrder * static_cast<float>(ParametricEQDesign::kMostOrder),
     .defaultValue = 24,
     .decimals = 0},
};
constexpr ParameterRow kToldRows[] = {
    {.id = "highestGain",
     .name = "$$$/ParametricEQ/HighestGain=Highest Gain",
     .unit = "dB",
     .lo = -kHighestTold,
     .hi = kHighestTold,
     .decimals = 1,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

enum Band { kHighPass, kLowShelf, kFirstPeak, kHighShelf = 7, kLowPass };

// The numbers in the names are those of the bands, from 1.
ParameterTable Table() {
    constexpr int kPeakCount = ParametricEQDesign::kPeaks;
    std::vector<ParameterRow> enables;
    std::vector<ParameterRow> frequencies;
    for (const BandDefault& band : kBandDefaults) {
        enables.push_back(Enable(band.isOn));
        frequencies.push_back(Frequency(band.frequency));
    }
    ParameterTable table;
    table.Add(kCommonRows).AddNumbered(enables).AddNumbered(frequencies);
    table.AddRepeated(kGainRows, kPeakCount + 2, kLowShelf + 1).AddRepeated(kQRows, kPeakCount, kFirstPeak + 1);
    for (int band = kFirstPeak; band < kFirstPeak + kPeakCount; ++band) {
        const ParameterRow rows[] = {Width(kBandDefaults[band].frequency)};
        table.AddRepeated(rows, 1, band + 1);
    }
    return std::move(table.AddRepeated(kSteepRows, 2).AddRepeated(kSlopeRows, 2).Add(kToldRows));
}

// A step of the stored float is less than that: anything this near is meant to be 0 dB.
constexpr double kZeroWindow = 2e-5;

double ZeroIfNear(double decibels) noexcept {
    return std::abs(decibels) < kZeroWindow ? 0 : decibels;
}

double Decibels(const ParametricEQDesign::Sections& sections, double sampleRate, double hertz) noexcept {
    const ResponsePoint point(sampleRate, hertz);
    double power = 1;
    for (const BiquadCoefficients& section : sections)
        if (!ParametricEQDesign::IsNeutral(section)) power *= section.MagnitudeSquared(point);
    return 10 * std::log10(power);
}

double Between(double from, double to, double share) noexcept {
    return from + share * (to - from);
}

// Both stable, so what lies between is: the stable coefficients form a triangle in the plane of a1 and a2.
BiquadCoefficients Between(const BiquadCoefficients& from, const BiquadCoefficients& to, double share) noexcept {
    return {Between(from.b0, to.b0, share), Between(from.b1, to.b1, share), Between(from.b2, to.b2, share),
            Between(from.a1, to.a1, share), Between(from.a2, to.a2, share)};
}

bool IsSame(const BiquadCoefficients& a, const BiquadCoefficients& b) noexcept {
    return a.b0 == b.b0 && a.b1 == b.b1 && a.b2 == b.b2 && a.a1 == b.a1 && a.a2 == b.a2;
}

// The distance of the outer pole from the middle of the unit circle.
double PoleRadius(const BiquadCoefficients& section) noexcept {
    const double half = section.a1 / 2;
    const double discriminant = half * half - section.a2;
    return discriminant < 0 ? std::sqrt(section.a2) : std::abs(half) + std::sqrt(discriminant);
}

} // namespace

ParametricEQ::ParametricEQ() : ComponentBase(kParametricEQComponentID, Table()) {
    StoreHighestGain();
}

ParametricEQ::~ParametricEQ() = default;

std::size_t ParametricEQ::Tail() const noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    double radius = 0;
    for (const BiquadCoefficients& section : ParametricEQDesign::Make(SettingsOfParameters(), GetSampleRate()))
        if (!ParametricEQDesign::IsNeutral(section)) radius = std::max(radius, PoleRadius(section));
    return radius > 0 ? static_cast<std::size_t>(std::ceil(std::log(kDecayed) / std::log(radius))) : 0;
}

bool ParametricEQ::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                        std::vector<float>& decibels) const {
    if (count == 0) return false;
    const Sections sections = ParametricEQDesign::Make(SettingsOfParameters(), GetSampleRate());
    const double output = OutputDecibels();
    decibels.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        decibels[i] = static_cast<float>(output + Decibels(sections, GetSampleRate(), axis.HertzAt(i, count)));
    return true;
}

bool ParametricEQ::GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const {
    const double end = std::min(kHighestFrequency, GetSampleRate() / 2);
    return index == 0 && GetMagnitudeResponse(size, {kLowestFrequency, end, true}, values);
}

void ParametricEQ::ParameterHasChanged(int /*index*/) {
    StoreHighestGain();
}

void ParametricEQ::PrepareProcessing(std::size_t maximumBlock) {
    fBiquads.assign(GetNumberOfInputChannels(), {});
    fScratch.resize(maximumBlock);
    fGlide.Prepare(GetSampleRate());
    fGain.Prepare(GetSampleRate());
    StoreHighestGain();
}

void ParametricEQ::ResetProcessing() noexcept {
    for (auto& channel : fBiquads)
        for (Biquad& biquad : channel)
            biquad.Reset();
}

void ParametricEQ::ReadParameters(bool settle) noexcept {
    const Sections sections = ParametricEQDesign::Make(SettingsOfParameters(), GetSampleRate());
    const auto gain = static_cast<float>(std::pow(10.0, OutputDecibels() / 20));
    settle ? fGain.Settle(gain) : fGain.SetTarget(gain);
    if (!settle) return GlideTo(sections);
    fTarget = sections;
    fGlide.Settle(1);
    Glide();
}

void ParametricEQ::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    const std::size_t gliding = std::min(block.frames, std::max(fGlide.Remaining(), fGain.Remaining()));
    ProcessGliding(block, gliding);
    ProcessSettled(block, gliding);
}

ParametricEQDesign::Settings ParametricEQ::SettingsOfParameters() const noexcept {
    const auto frequency = [this](int band) { return Natural(kParametricEQFirstFrequency + band); };
    const auto pass = [&](int band, int slope) -> ParametricEQDesign::Pass {
        const double order = Natural(kParametricEQFirstSlope + slope) / kDecibelsPerOrder;
        return {IsOn(kParametricEQFirstEnable + band), frequency(band), static_cast<int>(std::lround(order))};
    };
    const auto shelf = [&](int band, int steep) -> ParametricEQDesign::Shelf {
        return {frequency(band), GainOf(band), IsOn(kParametricEQFirstSteep + steep)};
    };
    ParametricEQDesign::Settings settings;
    settings.highPass = pass(kHighPass, 0);
    settings.lowShelf = shelf(kLowShelf, 0);
    for (int peak = 0; peak < static_cast<int>(ParametricEQDesign::kPeaks); ++peak) {
        const double hertz = frequency(kFirstPeak + peak);
        const double q = IsOn(kParametricEQConstantWidth) ? hertz / Natural(kParametricEQFirstWidth + peak)
                                                          : Natural(kParametricEQFirstQ + peak);
        settings.peaks[static_cast<std::size_t>(peak)] = {hertz, GainOf(kFirstPeak + peak),
                                                          std::clamp<double>(q, kLowestQ, kHighestQ)};
    }
    settings.highShelf = shelf(kHighShelf, 1);
    settings.lowPass = pass(kLowPass, 1);
    return settings;
}

// Of a shelf or a peak; 0 dB while it is off.
double ParametricEQ::GainOf(int band) const noexcept {
    if (!IsOn(kParametricEQFirstEnable + band)) return 0;
    return ZeroIfNear(Natural(kParametricEQFirstGain + band - kLowShelf));
}

// What is added to the bands' gains.
double ParametricEQ::OutputDecibels() const noexcept {
    const double highest = IsOn(kParametricEQHeadroom) ? std::max(Natural(kParametricEQHighestGain), 0.0F) : 0;
    return ZeroIfNear(Natural(kParametricEQMasterGain) - highest);
}

// Looked for at a dozen places an octave, and at the frequencies of the bands.
void ParametricEQ::StoreHighestGain() {
    constexpr std::size_t kPlaces = 120;
    const double rate = GetSampleRate();
    const Sections sections = ParametricEQDesign::Make(SettingsOfParameters(), rate);
    const kroaudiofilterhost::FrequencyAxis axis{kLowestFrequency, std::min<double>(kHighestFrequency, rate / 2), true};
    double highest = -kHighestTold;
    for (std::size_t i = 0; i < kPlaces; ++i)
        highest = std::max(highest, Decibels(sections, rate, axis.HertzAt(i, kPlaces)));
    for (int band = 0; band < kBands; ++band) {
        const double hertz = std::min<double>(Natural(kParametricEQFirstFrequency + band), axis.end);
        highest = std::max(highest, Decibels(sections, rate, hertz));
    }
    const float stored = GetParameterInfo(kParametricEQHighestGain)->ToNormalised(static_cast<float>(highest));
    if (stored != GetParameterValue(kParametricEQHighestGain)) StoreParameter(kParametricEQHighestGain, stored);
}

void ParametricEQ::GlideTo(const Sections& sections) noexcept {
    if (std::ranges::equal(sections, fTarget, IsSame)) return;
    fStart = fNow;
    fTarget = sections;
    fGlide.Settle(0);
    fGlide.SetTarget(1);
}

void ParametricEQ::Glide() noexcept {
    const double share = fGlide.Next();
    for (std::size_t i = 0; i < fNow.size(); ++i) {
        fNow[i] = share == 1 ? fTarget[i] : Between(fStart[i], fTarget[i], share);
        for (auto& channel : fBiquads)
            channel[i].SetCoefficients(fNow[i]);
    }
    if (fGlide.IsSettled()) ForgetNeutralSections();
}

// From here on they are left out; what they hold is next to nothing, and would be stale when they are needed again.
void ParametricEQ::ForgetNeutralSections() noexcept {
    for (std::size_t i = 0; i < fNow.size(); ++i) {
        if (!ParametricEQDesign::IsNeutral(fNow[i])) continue;
        for (auto& channel : fBiquads)
            channel[i].Reset();
    }
}

// Sample by sample: the first `frames` of the block.
void ParametricEQ::ProcessGliding(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frames) noexcept {
    for (std::size_t frame = 0; frame < frames; ++frame) {
        if (!fGlide.IsSettled()) Glide();
        const float gain = fGain.Next();
        for (std::size_t channel = 0; channel < fBiquads.size(); ++channel) {
            double sample = SaneSample(block.inputs[channel][frame]);
            for (Biquad& biquad : fBiquads[channel])
                sample = biquad.Process(sample);
            block.outputs[channel][frame] = static_cast<float>(sample * gain);
        }
    }
}

// Section by section.
void ParametricEQ::ProcessSettled(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin) noexcept {
    const std::span<double> sound = std::span(fScratch).first(block.frames - begin);
    const double gain = fGain.Target();
    for (std::size_t channel = 0; channel < fBiquads.size(); ++channel) {
        std::transform(block.inputs[channel] + begin, block.inputs[channel] + block.frames, sound.begin(), SaneSample);
        for (Biquad& biquad : fBiquads[channel]) {
            if (ParametricEQDesign::IsNeutral(biquad.Coefficients())) continue;
            Biquad working = biquad;
            std::ranges::transform(sound, sound.begin(), [&](double sample) { return working.Process(sample); });
            biquad = working;
        }
        std::ranges::transform(sound, block.outputs[channel] + begin,
                               [gain](double sample) { return static_cast<float>(sample * gain); });
    }
}

} // namespace qoc::components
