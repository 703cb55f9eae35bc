#include "qoc/components/ScientificFilter.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/filters/BesselPoles.h"
#include "qoc/dsp/math/Decibels.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kFamilies[] = {
    "$$$/ScientificFilter/Bessel=Bessel", "$$$/ScientificFilter/Butterworth=Butterworth",
    "$$$/ScientificFilter/Chebyshev1=Chebyshev 1", "$$$/ScientificFilter/Chebyshev2=Chebyshev 2"};
constexpr const char* kModes[] = {"$$$/ScientificFilter/LowPass=Low Pass", "$$$/ScientificFilter/HighPass=High Pass",
                                  "$$$/ScientificFilter/BandPass=Band Pass", "$$$/ScientificFilter/BandStop=Band Stop"};
constexpr const char* kViews[] = {"$$$/ScientificFilter/Magnitude=Magnitude", "$$$/ScientificFilter/Phase=Phase",
                                  "$$$/ScientificFilter/GroupDelay=Group Delay"};

constexpr float kLowestCutoff = 1; // hertz
constexpr float kHighestCutoff = 96000;

constexpr ParameterRow kRows[] = {
    {.index = kSFType,
     .id = "type",
     .name = "$$$/ScientificFilter/Type=Type",
     .hi = 3,
     .defaultValue = 1,
     .kind = ParameterKind::kChoice,
     .items = kFamilies},
    {.index = kSFMode,
     .id = "mode",
     .name = "$$$/ScientificFilter/Mode=Mode",
     .hi = 3,
     .defaultValue = 0,
     .kind = ParameterKind::kChoice,
     .items = kModes},
    {.index = kSFOrder,
     .id = "order",
     .name = "$$$/ScientificFilter/Order=Order",
     .lo = 1,
     .hi = ScientificFilterSettings::kHighestOrder,
     .defaultValue = 4,
     .decimals = 0,
     .flags = kParameterWhole},
    {.index = kSFCutoff,
     .id = "cutoff",
     .name = "$$$/ScientificFilter/Cutoff=Cutoff",
     .unit = "Hz",
     .lo = kLowestCutoff,
     .hi = kHighestCutoff,
     .defaultValue = 1000,
     .decimals = 1,
     .scale = ParameterScale::kLogarithmic},
    {.index = kSFHighCutoff,
     .id = "highcutoff",
     .name = "$$$/ScientificFilter/HighCutoff=High Cutoff",
     .unit = "Hz",
     .lo = kLowestCutoff,
     .hi = kHighestCutoff,
     .defaultValue = 4000,
     .decimals = 1,
     .scale = ParameterScale::kLogarithmic},
    {.index = kSFTransitionBandwidth,
     .id = "transition",
     .name = "$$$/ScientificFilter/TransitionBandwidth=Transition Bandwidth",
     .unit = "Hz",
     .lo = 0.01F,
     .hi = kHighestCutoff,
     .defaultValue = 1000,
     .decimals = 1,
     .scale = ParameterScale::kLogarithmic,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
    {.index = kSFPassRipple,
     .id = "ripple",
     .name = "$$$/ScientificFilter/PassRipple=Pass Ripple",
     .unit = "dB",
     .lo = 0.01F,
     .hi = 12,
     .defaultValue = 1},
    {.index = kSFStopAttenuation,
     .id = "attenuation",
     .name = "$$$/ScientificFilter/StopAttenuation=Stop Attenuation",
     .unit = "dB",
     .lo = 10,
     .hi = 140,
     .defaultValue = 60,
     .decimals = 1},
    {.index = kSFMasterGain,
     .id = "gain",
     .name = "$$$/ScientificFilter/MasterGain=Master Gain",
     .unit = "dB",
     .lo = -36,
     .hi = 36,
     .defaultValue = 0,
     .decimals = 1},
    {.index = kSFView,
     .id = "view",
     .name = "$$$/ScientificFilter/View=View",
     .hi = 2,
     .defaultValue = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable,
     .items = kViews},
    {.index = kSFLogarithmicAxis,
     .id = "logaxis",
     .name = "$$$/ScientificFilter/LogarithmicAxis=Logarithmic Axis",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable},
    {.index = kSFLevelRange,
     .id = "levelrange",
     .name = "$$$/ScientificFilter/LevelRange=Level Range",
     .unit = "dB",
     .lo = 6,
     .hi = 240,
     .defaultValue = 96,
     .decimals = 0,
     .flags = kParameterNotAutomatable},
    // As parts of the Nyquist frequency.
    {.index = kSFViewStart,
     .id = "viewstart",
     .name = "$$$/ScientificFilter/ViewStart=View Start",
     .defaultValue = 0,
     .decimals = 4,
     .flags = kParameterNotAutomatable},
    {.index = kSFViewEnd,
     .id = "viewend",
     .name = "$$$/ScientificFilter/ViewEnd=View End",
     .defaultValue = 1,
     .decimals = 4,
     .flags = kParameterNotAutomatable},
};

constexpr float kSeenLevel = 0.5F;  // dB between two places of a curve, that are seen
constexpr float kSeenPart = 0.01F;  // the same, of the longest group delay
constexpr std::size_t kPiece = 256; // frames
constexpr double kUnheardSeconds = 0.01;
constexpr double kFadeSeconds = 0.02;
constexpr double kLongestTail = 30; // seconds

float ToDecibels(std::complex<double> response) noexcept {
    return std::max(static_cast<float>(10 * std::log10(std::norm(response))), ScientificFilter::kLowestLevel);
}

// The first place of an ascending axis at or above a frequency; `count` if there is none.
std::size_t FirstPlaceFrom(double hertz, const kroaudiofilterhost::FrequencyAxis& axis, std::size_t count) {
    std::size_t low = 0;
    std::size_t high = count;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (axis.HertzAt(middle, count) < hertz) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

// What rises between two places of a curve high enough to be seen is told of at the nearer one.
void ShowPeaks(std::vector<float>& shown, const std::vector<float>& sampled,
               const kroaudiofilterhost::FrequencyAxis& axis, const std::vector<double>& frequencies,
               const std::function<float(double)>& valueAt, float seen) {
    for (const double hertz : frequencies) {
        const std::size_t upper = FirstPlaceFrom(hertz, axis, sampled.size());
        if (upper == 0 || upper == sampled.size()) continue;
        const float value = valueAt(hertz);
        if (!(value > std::max(sampled[upper - 1], sampled[upper]) + seen)) continue;
        float& place = shown[axis.PlaceOf(hertz, shown.size())];
        place = std::max(place, value);
    }
}

void ShowZeros(std::vector<float>& shown, const kroaudiofilterhost::FrequencyAxis& axis,
               const FilterSections& sections) {
    std::array<double, FilterSections::kMostSections> zeros{};
    for (const double zero : std::span(zeros).first(sections.Zeros(zeros))) {
        if (const std::size_t place = FirstPlaceFrom(zero, axis, shown.size()); place > 0 && place < shown.size())
            shown[place] = ScientificFilter::kLowestLevel;
    }
}

// What would ring in the filter for ever counts as silence: no numbers, and more than 120 dB over full scale.
double Sane(float sample) noexcept {
    constexpr float kLoudest = 1e6F;
    return std::abs(sample) <= kLoudest ? sample : 0.0;
}

// Without a kink at either end.
double FadeAt(double part) noexcept {
    return 0.5 - 0.5 * std::cos(std::numbers::pi * part);
}

} // namespace

ScientificFilter::ScientificFilter()
    : ComponentBase(kScientificFilterComponentID, std::move(ParameterTable().Add(kRows))) {
    BesselPoles(1); // computes them all, here where there is time
    StoreTransitionBandwidth();
}

ScientificFilter::~ScientificFilter() = default;

bool ScientificFilter::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                            std::vector<float>& decibels) const {
    if (count == 0) return false;
    decibels = fMagnitude.Get(*this, axis, count, [&] { return ComputeMagnitude(count, axis); });
    return true;
}

std::vector<float> ScientificFilter::ComputeMagnitude(std::size_t count,
                                                      const kroaudiofilterhost::FrequencyAxis& axis) const {
    const FilterSections sections = Design();
    const double gain = ToFactor(Natural(kSFMasterGain));
    const auto levelAt = [&](double hertz) { return ToDecibels(gain * sections.Response(hertz)); };
    std::vector<float> sampled(count);
    std::ranges::transform(axis.AllHertz(count), sampled.begin(), levelAt);
    std::vector<float> decibels = sampled;
    ShowZeros(decibels, axis, sections);
    // Last: between two places with a zero each a narrow band is what matters.
    ShowPeaks(decibels, sampled, axis, PassBandFrequencies(Settings(), GetSampleRate()), levelAt, kSeenLevel);
    return decibels;
}

bool ScientificFilter::GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const {
    constexpr double kDegrees = 180 / std::numbers::pi;
    const kroaudiofilterhost::FrequencyAxis axis = ShownAxis();
    if (index == kMagnitudeCurve) return GetMagnitudeResponse(size, axis, values);
    if (size == 0 || (index != kPhaseCurve && index != kGroupDelayCurve)) return false;
    const FilterSections sections = Design();
    const auto valueAt = [&](double hertz) {
        return static_cast<float>(index == kPhaseCurve ? std::arg(sections.Response(hertz)) * kDegrees
                                                       : MillisecondsOfSeconds(sections.GroupDelay(hertz)));
    };
    values.resize(size);
    for (std::size_t i = 0; i < size; ++i)
        values[i] = valueAt(axis.HertzAt(i, size));
    if (index == kGroupDelayCurve)
        ShowPeaks(values, std::vector(values), axis, PassBandFrequencies(Settings(), GetSampleRate()), valueAt,
                  kSeenPart * std::ranges::max(values));
    return true;
}

std::size_t ScientificFilter::Tail() const noexcept {
    return static_cast<std::size_t>(std::min(Design().DecaySamples(), kLongestTail * GetSampleRate()));
}

void ScientificFilter::OnParametersChanged(ParameterIndices /*changed*/) {
    StoreTransitionBandwidth();
}

void ScientificFilter::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double rate = GetSampleRate();
    for (SectionCascade* const cascade : {&fCascade, &fNextCascade})
        cascade->Prepare(GetNumberOfInputChannels(), FilterSections::kMostSections);
    fGain.Prepare(rate);
    fFadeStart = static_cast<std::size_t>(std::lround(kUnheardSeconds * rate));
    fFadeEnd = fFadeStart + static_cast<std::size_t>(std::lround(kFadeSeconds * rate));
    for (std::vector<double>* const sounds : {&fSound, &fNextSound, &fFades})
        sounds->resize(kPiece);
    fGains.resize(kPiece);
    StoreTransitionBandwidth();
}

void ScientificFilter::ReadParameters(bool settle) noexcept {
    fWanted = Settings().Essential();
    const auto gain = static_cast<float>(ToFactor(Natural(kSFMasterGain)));
    if (!settle) {
        fGain.SetTarget(gain);
        if (!IsFading() && !(fWanted == fPresent)) StartFade();
        return;
    }
    fGain.Settle(gain);
    fPresent = fWanted;
    fFadePosition = fFadeEnd;
    fCascade.SetSections(FilterSections(fPresent, GetSampleRate()).Sections());
}

void ScientificFilter::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    std::size_t frames = 0;
    for (std::size_t begin = 0; begin < block.frames; begin += frames) {
        frames = std::min(kPiece, block.frames - begin);
        if (IsFading()) frames = std::min(frames, fFadeEnd - fFadePosition);
        FillRamps(frames);
        ProcessPiece(block, begin, frames);
        if (!IsFading()) continue;
        fFadePosition += frames;
        if (!IsFading()) EndFade();
    }
}

ScientificFilterSettings ScientificFilter::Settings() const noexcept {
    ScientificFilterSettings settings;
    settings.family = static_cast<FilterFamily>(Item(kSFType));
    settings.mode = static_cast<FilterMode>(Item(kSFMode));
    settings.order = static_cast<int>(std::lround(Natural(kSFOrder)));
    settings.cutoff = Natural(kSFCutoff);
    settings.highCutoff = Natural(kSFHighCutoff);
    settings.passRipple = Natural(kSFPassRipple);
    settings.stopAttenuation = Natural(kSFStopAttenuation);
    return settings;
}

FilterSections ScientificFilter::Design() const noexcept {
    return {Settings(), GetSampleRate()};
}

kroaudiofilterhost::FrequencyAxis ScientificFilter::ShownAxis() const noexcept {
    const double nyquist = GetSampleRate() * 0.5;
    kroaudiofilterhost::FrequencyAxis axis{std::max(Natural(kSFViewStart) * nyquist, kLowestShown),
                                           Natural(kSFViewEnd) * nyquist, IsOn(kSFLogarithmicAxis)};
    if (!(axis.start < axis.end)) {
        axis.start = kLowestShown;
        axis.end = nyquist;
    }
    return axis;
}

void ScientificFilter::StoreTransitionBandwidth() noexcept {
    TellParameter(kSFTransitionBandwidth, TransitionBandwidth(Settings(), GetSampleRate()));
}

void ScientificFilter::StartFade() noexcept {
    fPresent = fWanted;
    fFadePosition = 0;
    fNextCascade.SetSections(FilterSections(fPresent, GetSampleRate()).Sections());
}

void ScientificFilter::EndFade() noexcept {
    std::swap(fCascade, fNextCascade);
    if (!(fWanted == fPresent)) StartFade();
}

void ScientificFilter::FillRamps(std::size_t frames) noexcept {
    for (std::size_t i = 0; i < frames; ++i)
        fGains[i] = fGain.Next();
    if (!IsFading()) return;
    const auto length = static_cast<double>(fFadeEnd - fFadeStart);
    for (std::size_t i = 0; i < frames; ++i) {
        const std::size_t position = fFadePosition + i;
        fFades[i] = position < fFadeStart ? 0 : FadeAt(static_cast<double>(position - fFadeStart) / length);
    }
}

void ScientificFilter::ProcessPiece(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                                    std::size_t frames) noexcept {
    const auto sound = std::span(fSound).first(frames);
    const auto nextSound = std::span(fNextSound).first(frames);
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        std::transform(block.inputs[channel] + begin, block.inputs[channel] + begin + frames, sound.begin(), Sane);
        if (IsFading()) {
            std::ranges::copy(sound, nextSound.begin());
            fNextCascade.Process(channel, nextSound);
        }
        fCascade.Process(channel, sound);
        float* const output = block.outputs[channel] + begin;
        for (std::size_t i = 0; i < frames; ++i) {
            if (IsFading()) sound[i] += fFades[i] * (nextSound[i] - sound[i]);
            output[i] = static_cast<float>(sound[i] * fGains[i]);
        }
    }
}

} // namespace qoc::components
