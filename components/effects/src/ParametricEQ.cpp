#include "qoc/components/ParametricEQ.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/math/Decibels.h"

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
    {.index = kParametricEQMasterGain,
     .id = "masterGain",
     .name = "$$$/ParametricEQ/MasterGainName=Master Gain",
     .unit = "dB",
     .lo = -30,
     .hi = 30,
     .decimals = 1},
    // What the panel's graph shows.
    {.index = kParametricEQGraphRange,
     .id = "graphRange",
     .name = "$$$/ParametricEQ/GraphRangeName=Range of the Graph",
     .unit = "dB",
     .lo = 6,
     .hi = 60,
     .defaultValue = 24,
     .decimals = 0,
     .flags = kParameterNotAutomatable},
    {.index = kParametricEQConstantWidth,
     .id = "constantWidth",
     .name = "$$$/ParametricEQ/ConstantWidth=Constant Width",
     .kind = ParameterKind::kSwitch},
    {.index = kParametricEQHeadroom,
     .id = "headroom",
     .name = "$$$/ParametricEQ/Headroom=Keep Headroom",
     .kind = ParameterKind::kSwitch},
};

struct BandDefault {
    float frequency;
    bool isOn;
};
// The passes only when asked for.
constexpr BandDefault kBandDefaults[] = {{30, false},  {100, true},  {200, true},   {500, true},   {1000, true},
                                         {2500, true}, {6000, true}, {10000, true}, {18000, false}};

constexpr ParameterRow Enable(int index, bool on) {
    return {.index = index,
            .id = "enable",
            .name = "$$$/ParametricEQ/Enable=Band @0",
            .defaultValue = on ? 1.0F : 0.0F,
            .kind = ParameterKind::kSwitch};
}

constexpr ParameterRow Frequency(int index, float hertz) {
    return {.index = index,
            .id = "frequency",
            .name = "$$$/ParametricEQ/Frequency=Frequency of Band @0",
            .unit = "Hz",
            .lo = kLowestFrequency,
            .hi = kHighestFrequency,
            .defaultValue = hertz,
            .decimals = 1};
}

constexpr ParameterRow kGainRows[] = {
    {.index = kParametricEQFirstGain,
     .id = "gain",
     .name = "$$$/ParametricEQ/Gain=Gain of Band @0",
     .unit = "dB",
     .lo = -kMostGain,
     .hi = kMostGain,
     .decimals = 1},
};
constexpr ParameterRow kQRows[] = {
    {.index = kParametricEQFirstQ,
     .id = "q",
     .name = "$$$/ParametricEQ/Q=Q of Band @0",
     .lo = kLowestQ,
     .hi = kHighestQ,
     .defaultValue = 1},
};

constexpr ParameterRow Width(int index, float hertz) {
    return {.index = index,
            .id = "width",
            .name = "$$$/ParametricEQ/Width=Width of Band @0",
            .unit = "Hz",
            .lo = 1,
            .hi = kHighestFrequency,
            .defaultValue = hertz,
            .decimals = 1};
}

constexpr ParameterRow kSteepRows[] = {
    {.index = kParametricEQFirstSteep,
     .id = "steep",
     .name = "$$$/ParametricEQ/Steep=Steep Shelf @0",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};
constexpr ParameterRow kSlopeRows[] = {
    {.index = kParametricEQFirstSlope,
     .id = "slope",
     .name = "$$$/ParametricEQ/Slope=Slope of Pass @0",
     .unit = "dB/oct",
     .lo = kDecibelsPerOrder,
     .hi = kDecibelsPerOrder * static_cast<float>(ParametricEQDesign::kMostOrder),
     .defaultValue = 24,
     .decimals = 0},
};
constexpr ParameterRow kToldRows[] = {
    {.index = kParametricEQHighestGain,
     .id = "highestGain",
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
    int band = 0;
    for (const auto& [frequency, isOn] : kBandDefaults) {
        enables.push_back(Enable(kParametricEQFirstEnable + band, isOn));
        frequencies.push_back(Frequency(kParametricEQFirstFrequency + band, frequency));
        ++band;
    }
    ParameterTable table;
    table.Add(kCommonRows).AddNumbered(enables).AddNumbered(frequencies);
    table.AddRepeated(kGainRows, kPeakCount + 2, kLowShelf + 1).AddRepeated(kQRows, kPeakCount, kFirstPeak + 1);
    for (int peak = 0; peak < kPeakCount; ++peak) {
        const ParameterRow rows[] = {Width(kParametricEQFirstWidth + peak, kBandDefaults[kFirstPeak + peak].frequency)};
        table.AddRepeated(rows, 1, kFirstPeak + peak + 1);
    }
    return std::move(table.AddRepeated(kSteepRows, 2).AddRepeated(kSlopeRows, 2).Add(kToldRows));
}

double Decibels(const ParametricEQDesign::Sections& sections, double sampleRate, double hertz) noexcept {
    return 10 * std::log10(BiquadCoefficients::MagnitudeSquared(sections, {sampleRate, hertz}));
}

} // namespace

ParametricEQ::ParametricEQ() : ComponentBase(kParametricEQComponentID, Table()) {
    StoreHighestGain();
}

ParametricEQ::~ParametricEQ() = default;

std::size_t ParametricEQ::Tail() const noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    const Sections sections = ParametricEQDesign::Make(SettingsOfParameters(), GetSampleRate());
    return static_cast<std::size_t>(std::ceil(BiquadCoefficients::DecaySamples(sections, kDecayed)));
}

bool ParametricEQ::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                        std::vector<float>& decibels) const {
    if (count == 0) return false;
    const Sections sections = ParametricEQDesign::Make(SettingsOfParameters(), GetSampleRate());
    const double output = OutputDecibels();
    decibels.resize(count);
    std::ranges::transform(axis.AllHertz(count), decibels.begin(), [&](double hertz) {
        return static_cast<float>(output + Decibels(sections, GetSampleRate(), hertz));
    });
    return true;
}

bool ParametricEQ::GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const {
    const double end = std::min(kHighestFrequency, GetSampleRate() / 2);
    return index == 0 && GetMagnitudeResponse(size, {kLowestFrequency, end, true}, values);
}

void ParametricEQ::OnParametersChanged(ParameterIndices /*changed*/) {
    StoreHighestGain();
}

void ParametricEQ::PrepareProcessing(std::size_t /*maximumBlock*/) {
    fBands.Prepare(GetSampleRate(), GetNumberOfInputChannels(), ParametricEQDesign::kSections);
    fGain.Prepare(GetSampleRate());
    StoreHighestGain();
}

void ParametricEQ::ResetProcessing() noexcept {
    fBands.Reset();
}

void ParametricEQ::ReadParameters(bool settle) noexcept {
    fBands.Set(fDesign.Update(SettingsOfParameters(), GetSampleRate()), settle);
    fGain.Set(ToFactor(OutputDecibels()), settle);
}

void ParametricEQ::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fBands.Process(block, fGain);
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
    const Sections& sections = fToldDesign.Update(SettingsOfParameters(), rate);
    const kroaudiofilterhost::FrequencyAxis axis{kLowestFrequency, std::min<double>(kHighestFrequency, rate / 2), true};
    double highest = -kHighestTold;
    for (std::size_t i = 0; i < kPlaces; ++i)
        highest = std::max(highest, Decibels(sections, rate, axis.HertzAt(i, kPlaces)));
    for (int band = 0; band < kBands; ++band) {
        const double hertz = std::min<double>(Natural(kParametricEQFirstFrequency + band), axis.end);
        highest = std::max(highest, Decibels(sections, rate, hertz));
    }
    TellParameter(kParametricEQHighestGain, highest);
}

} // namespace qoc::components
