#include "qoc/components/Notch.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

// The half hertz belongs to the stored form.
constexpr ParameterRow Frequency(int index, float hertz) {
    return {.index = index,
            .id = "frequency",
            .name = "$$$/Notch/Frequency=Frequency @0",
            .unit = "Hz",
            .lo = 0.5F,
            .defaultValue = hertz,
            .decimals = 1,
            .scale = ParameterScale::kNyquist};
}

// Mains hum of 60 Hz and its harmonics.
constexpr ParameterRow kFrequencyRows[] = {
    Frequency(kNotchFirstFrequency, 60),      Frequency(kNotchFirstFrequency + 1, 120),
    Frequency(kNotchFirstFrequency + 2, 180), Frequency(kNotchFirstFrequency + 3, 240),
    Frequency(kNotchFirstFrequency + 4, 300), Frequency(kNotchFirstFrequency + 5, 360)};

constexpr float kLargestGain = 96; // dB, either way
constexpr float kDefaultGain = -36;

constexpr ParameterRow kGainRows[] = {
    {.index = kNotchFirstGain,
     .id = "gain",
     .name = "$$$/Notch/Gain=Gain @0",
     .unit = "dB",
     .lo = -kLargestGain,
     .hi = kLargestGain,
     .defaultValue = kDefaultGain,
     .decimals = 1},
};

constexpr ParameterRow Enable(int index, bool on) {
    return {.index = index,
            .id = "enable",
            .name = "$$$/Notch/Enable=Notch @0",
            .defaultValue = on ? 1.0F : 0.0F,
            .kind = ParameterKind::kSwitch};
}

// Only the fundamental is taken away until the user asks for more.
constexpr ParameterRow kEnableRows[] = {Enable(kNotchFirstEnable, true),      Enable(kNotchFirstEnable + 1, false),
                                        Enable(kNotchFirstEnable + 2, false), Enable(kNotchFirstEnable + 3, false),
                                        Enable(kNotchFirstEnable + 4, false), Enable(kNotchFirstEnable + 5, false)};

constexpr const char* kWidthNames[] = {"$$$/NotchFilterUI/Narrow=Narrow", "$$$/NotchFilterUI/VeryNarrow=Very Narrow",
                                       "$$$/NotchFilterUI/SuperNarrow=Super Narrow"};
// Frequency / width for each of them. At 60 Hz: 6, 2 and 0.6 Hz wide, ringing down by 60 dB in 0.4, 1.1 and 3.7 s.
constexpr float kQualities[] = {10, 30, 100};

constexpr ParameterRow kCommonRows[] = {
    {.index = kNotchFixGain,
     .id = "fixgain",
     .name = "$$$/Notch/FixGain=Fixed Gain",
     .unit = "dB",
     .lo = -kLargestGain,
     .hi = kLargestGain,
     .defaultValue = kDefaultGain,
     .decimals = 1},
    {.index = kNotchWidth,
     .id = "width",
     .name = "$$$/Notch/NotchWidth=Notch Width",
     .hi = 2,
     .kind = ParameterKind::kChoice,
     .items = kWidthNames},
    {.index = kNotchFixGainEnable,
     .id = "fixgainenable",
     .name = "$$$/Notch/FixGainTo=Fix Gain",
     .kind = ParameterKind::kSwitch},
    {.index = kNotchUltraQuiet,
     .id = "ultraquiet",
     .name = "$$$/NotchFilterUI/UltraQuiet=Ultra Quiet",
     .kind = ParameterKind::kSwitch},
    // The frequencies that the panel's graph shows.
    {.index = kNotchViewStart,
     .id = "viewstart",
     .name = "$$$/Notch/ViewStart=View Start",
     .unit = "Hz",
     .lo = 0.5F,
     .defaultValue = 20,
     .decimals = 1,
     .scale = ParameterScale::kNyquist,
     .flags = kParameterNotAutomatable},
    {.index = kNotchViewEnd,
     .id = "viewend",
     .name = "$$$/Notch/ViewEnd=View End",
     .unit = "Hz",
     .lo = 0.5F,
     .defaultValue = 22050,
     .decimals = 1,
     .scale = ParameterScale::kNyquist,
     .flags = kParameterNotAutomatable},
};

// Hertz, and as far below half of the sample rate: there a section rings as long as it does at its mirror frequency.
constexpr float kLowestFrequency = 20;
constexpr float kLargestInput = 1e6F; // sum of all boosts, 576 dB, stays within a float
constexpr std::size_t kChunk = 64;    // frames

float ToGain(float decibels) noexcept {
    return static_cast<float>(std::pow(10.0, decibels / 20.0));
}

// Not-a-number compares false.
float Cleaned(float sample) noexcept {
    return std::abs(sample) <= kLargestInput ? sample : 0.0F;
}

// The sections' common response.
class Cascade {
public:
    explicit Cascade(double sampleRate) : fSampleRate(sampleRate) {}

    void Add(const NotchSection::Setting& setting) {
        fFilters[fCount++] = NotchSection::ToBiquad(fSampleRate, setting);
    }
    float DecibelsAt(double hertz) const {
        const std::span filters = std::span(fFilters).first(fCount);
        return static_cast<float>(10 * std::log10(BiquadCoefficients::MagnitudeSquared(filters, {fSampleRate, hertz})));
    }

private:
    double fSampleRate;
    std::array<BiquadCoefficients, Notch::kSections> fFilters;
    std::size_t fCount = 0;
};

// One register of channels, which all do the same.
template <class Real>
struct LanesOf {
    static constexpr std::size_t kBytes = 16;
    static constexpr std::size_t kCount = kBytes / sizeof(Real);
    using Type __attribute__((vector_size(kBytes))) = Real;
};

} // namespace

// A section's coefficients for each frame of a chunk; a stride of 0 repeats the first.
template <class Real>
struct Notch::Run {
    struct Coefficients {
        Real tuning;
        Real feedback;
        Real input;
        Real mix;
    };

    void Fill(NotchSection& filter, std::size_t frames) noexcept {
        stride = filter.IsSettled() ? 0 : 1;
        for (std::size_t i = 0; i < (stride == 0 ? 1 : frames); ++i) {
            const NotchSection::Coefficients& next = filter.Next();
            coefficients[i] = {static_cast<Real>(next.tuning), static_cast<Real>(next.feedback),
                               static_cast<Real>(next.input), static_cast<Real>(next.mix)};
        }
    }

    std::array<Coefficients, kChunk> coefficients;
    std::size_t stride;
    std::size_t section;
};

Notch::Notch()
    : ComponentBase(kNotchComponentID, std::move(ParameterTable()
                                                     .AddNumbered(kFrequencyRows)
                                                     .AddRepeated(kGainRows, kSections)
                                                     .AddNumbered(kEnableRows)
                                                     .Add(kCommonRows))) {
}

Notch::~Notch() = default;

bool Notch::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                 std::vector<float>& decibels) const {
    if (count == 0) return false;
    decibels = fResponse.Get(*this, axis, count, [&] { return ComputeResponse(count, axis); });
    return true;
}

std::size_t Notch::Tail() const noexcept {
    constexpr double kDecayed = 1e-3; // 60 dB
    std::array<BiquadCoefficients, kSections> sections;
    for (int i = 0; i < kSections; ++i) {
        if (IsHeard(i)) sections[static_cast<std::size_t>(i)] = NotchSection::ToBiquad(GetSampleRate(), SettingOf(i));
    }
    return static_cast<std::size_t>(std::ceil(BiquadCoefficients::DecaySamples(sections, kDecayed)));
}

void Notch::PrepareProcessing(std::size_t /*maximumBlock*/) {
    for (NotchSection& section : fSections)
        section.Prepare(GetSampleRate());
}

void Notch::ResetProcessing() noexcept {
    for (int section = 0; section < kSections; ++section)
        ForgetSound(section);
}

void Notch::ReadParameters(bool settle) noexcept {
    for (int i = 0; i < kSections; ++i) {
        NotchSection& section = fSections[static_cast<std::size_t>(i)];
        if (section.IsNeutral()) ForgetSound(i);
        section.Set(SettingOf(i), settle);
    }
    fIsDouble = IsOn(kNotchUltraQuiet) || NeedsDouble();
}

void Notch::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0; begin < block.frames; begin += kChunk) {
        const std::size_t frames = std::min(kChunk, block.frames - begin);
        if (IsNeutral()) {
            for (std::size_t c = 0; c < block.outputs.size(); ++c) {
                if (block.inputs[c] != block.outputs[c])
                    std::copy_n(block.inputs[c] + begin, frames, block.outputs[c] + begin);
            }
        } else if (fIsDouble) {
            ProcessChunk<double>(block, begin, frames);
        } else {
            ProcessChunk<float>(block, begin, frames);
        }
    }
}

std::vector<float> Notch::ComputeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis) const {
    Cascade cascade(GetSampleRate());
    for (int i = 0; i < kSections; ++i)
        if (IsHeard(i)) cascade.Add(SettingOf(i));
    std::vector<float> decibels(count);
    std::ranges::transform(axis.AllHertz(count), decibels.begin(),
                           [&](double hertz) { return cascade.DecibelsAt(hertz); });
    for (int i = 0; i < kSections; ++i) {
        const float centre = SettingOf(i).frequency;
        const std::size_t place = axis.PlaceOf(centre, count);
        if (IsHeard(i) && place < count) decibels[place] = cascade.DecibelsAt(centre);
    }
    return decibels;
}

NotchSection::Setting Notch::SettingOf(int section) const noexcept {
    NotchSection::Setting setting;
    setting.frequency =
        std::clamp(Natural(kNotchFirstFrequency + section), kLowestFrequency, GetSampleRate() / 2 - kLowestFrequency);
    setting.q = kQualities[Item(kNotchWidth)];
    const int gainIndex = IsOn(kNotchFixGainEnable) ? static_cast<int>(kNotchFixGain) : kNotchFirstGain + section;
    if (IsOn(kNotchFirstEnable + section)) setting.gain = ToGain(Natural(gainIndex));
    return setting;
}

bool Notch::IsHeard(int section) const noexcept {
    return SettingOf(section).gain != 1;
}

bool Notch::IsNeutral() const noexcept {
    return std::ranges::all_of(fSections, &NotchSection::IsNeutral);
}

// While sections move they stay in double precision: they may yet be on their way from or to where it is needed.
bool Notch::NeedsDouble() const noexcept {
    const bool isMoving = !std::ranges::all_of(fSections, &NotchSection::IsSettled);
    return (fIsDouble && isMoving) || std::ranges::any_of(fSections, &NotchSection::NeedsDouble);
}

void Notch::ForgetSound(int section) noexcept {
    for (auto& channel : fStates)
        channel[static_cast<std::size_t>(section)] = {};
}

template <class Real>
void Notch::ProcessChunk(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                         std::size_t frames) noexcept {
    std::array<Run<Real>, kSections> runs;
    std::size_t runCount = 0;
    for (std::size_t section = 0; section < fSections.size(); ++section) {
        if (fSections[section].IsNeutral()) continue;
        runs[runCount].section = section;
        runs[runCount++].Fill(fSections[section], frames);
    }
    for (std::size_t channel = 0; channel < block.outputs.size(); channel += LanesOf<Real>::kCount)
        ProcessLanes<Real>(block, channel, begin, frames, runs.data(), runCount);
}

// All sections work on a sample before the next comes, so that the processor can overlap them.
template <class Real>
void Notch::ProcessLanes(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t firstChannel, std::size_t begin,
                         std::size_t frames, const Run<Real>* runs, std::size_t runCount) noexcept {
    using Lanes = typename LanesOf<Real>::Type;
    const std::size_t channels = std::min(LanesOf<Real>::kCount, block.outputs.size() - firstChannel);
    Lanes sound[kChunk] = {};
    Lanes first[kSections] = {};
    Lanes second[kSections] = {};
    for (std::size_t lane = 0; lane < channels; ++lane) {
        const float* const input = block.inputs[firstChannel + lane] + begin;
        for (std::size_t i = 0; i < frames; ++i)
            sound[i][lane] = static_cast<Real>(Cleaned(input[i]));
        for (std::size_t run = 0; run < runCount; ++run) {
            const State& state = fStates[firstChannel + lane][runs[run].section];
            first[run][lane] = static_cast<Real>(state.first);
            second[run][lane] = static_cast<Real>(state.second);
        }
    }
    for (std::size_t i = 0; i < frames; ++i) {
        Lanes x = sound[i];
        for (std::size_t run = 0; run < runCount; ++run) {
            const auto& c = runs[run].coefficients[i * runs[run].stride];
            const Lanes band = first[run] + c.input * (x - second[run] - c.feedback * first[run]);
            const Lanes low = second[run] + c.tuning * band;
            first[run] = band + band - first[run];
            second[run] = low + low - second[run];
            x += c.mix * band;
        }
        sound[i] = x;
    }
    for (std::size_t lane = 0; lane < channels; ++lane) {
        float* const output = block.outputs[firstChannel + lane] + begin;
        for (std::size_t i = 0; i < frames; ++i)
            output[i] = static_cast<float>(sound[i][lane]);
        for (std::size_t run = 0; run < runCount; ++run)
            fStates[firstChannel + lane][runs[run].section] = {static_cast<double>(first[run][lane]),
                                                               static_cast<double>(second[run][lane])};
    }
}

} // namespace qoc::components
