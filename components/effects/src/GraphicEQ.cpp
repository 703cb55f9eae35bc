#include "qoc/components/GraphicEQ.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/SaneSample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kMostGain = 30; // decibels
constexpr float kMostPasses = 8;
constexpr float kHighestTold = 120; // decibels

constexpr ParameterRow kCommonRows[] = {
    {.id = "range",
     .name = "$$$/GraphicEQ/Range=Range",
     .unit = "dB",
     .lo = 1.5F,
     .hi = 2 * kMostGain,
     .defaultValue = 30,
     .decimals = 1},
    {.id = "accuracy",
     .name = "$$$/GraphicEQ/Accuracy=Accuracy",
     .unit = "$$$/GraphicEQ/Passes=passes",
     .hi = kMostPasses,
     .defaultValue = 4,
     .decimals = 0,
     .flags = kParameterNotAutomatable},
    {.id = "masterGain",
     .name = "$$$/GraphicEQ/MasterGain=Master Gain",
     .unit = "dB",
     .lo = -kMostGain,
     .hi = kMostGain,
     .decimals = 1},
    {},
};

constexpr ParameterRow kGainRows[] = {
    {.id = "gain",
     .name = "$$$/GraphicEQ/Gain=Gain of Band @0",
     .unit = "dB",
     .lo = -kMostGain,
     .hi = kMostGain,
     .decimals = 1},
};

constexpr ParameterRow kToldRows[] = {
    {.id = "highestGain",
     .name = "$$$/GraphicEQ/HighestGain=Highest Gain",
     .unit = "dB",
     .lo = -kHighestTold,
     .hi = kHighestTold,
     .decimals = 1,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

const char16_t* ComponentIDOf(GraphicEQ::Bands bands) {
    switch (bands) {
    case GraphicEQ::Bands::kOctave: return kGraphicEQ10BandsComponentID;
    case GraphicEQ::Bands::kHalfOctave: return kGraphicEQ20BandsComponentID;
    case GraphicEQ::Bands::kThirdOctave: break;
    }
    return kGraphicEQ30BandsComponentID;
}

template <std::size_t kCount>
std::array<double, kCount> Geometric(double start, double ratio) {
    std::array<double, kCount> values{};
    for (std::size_t i = 0; i < kCount; ++i)
        values[i] = start * std::pow(ratio, static_cast<double>(i));
    return values;
}

// A step of the stored float is less than that: anything this near is meant to be 0 dB.
constexpr double kZeroWindow = 2e-5;

double ZeroIfNear(double decibels) noexcept {
    return std::abs(decibels) < kZeroWindow ? 0 : decibels;
}

bool IsNeutral(const BiquadCoefficients& section) noexcept {
    return section.b0 == 1 && section.b1 == section.a1 && section.b2 == section.a2;
}

// The distance of the outer pole from the middle of the unit circle.
double PoleRadius(const BiquadCoefficients& section) noexcept {
    const double half = section.a1 / 2;
    const double discriminant = half * half - section.a2;
    return discriminant < 0 ? std::sqrt(section.a2) : std::abs(half) + std::sqrt(discriminant);
}

double Between(double from, double to, double share) noexcept {
    return from + share * (to - from);
}

// Both stable, so what lies between is: the stable coefficients form a triangle in the plane of a1 and a2.
BiquadCoefficients Between(const BiquadCoefficients& from, const BiquadCoefficients& to, double share) noexcept {
    return {Between(from.b0, to.b0, share), Between(from.b1, to.b1, share), Between(from.b2, to.b2, share),
            Between(from.a1, to.a1, share), Between(from.a2, to.a2, share)};
}

} // namespace

GraphicEQ::GraphicEQ(Bands bands)
    : ComponentBase(ComponentIDOf(bands), std::move(ParameterTable()
                                                        .Add(kCommonRows)
                                                        .AddRepeated(kGainRows, static_cast<int>(Centres(bands).size()))
                                                        .Add(kToldRows))),
      fCentres(Centres(bands)) {
    Redesign();
}

GraphicEQ::~GraphicEQ() = default;

std::span<const double> GraphicEQ::Centres(Bands bands) {
    static const auto sOctaves = Geometric<10>(31.25, 2);
    static const auto sHalfOctaves = Geometric<20>(31.25 / std::sqrt(2.0), std::sqrt(2.0));
    // IEC 61260-1: tenths of a decade around 1 kHz.
    static const auto sThirdOctaves = Geometric<30>(1000 * std::pow(10.0, -1.6), std::pow(10.0, 0.1));
    switch (bands) {
    case Bands::kOctave: return sOctaves;
    case Bands::kHalfOctave: return sHalfOctaves;
    case Bands::kThirdOctave: break;
    }
    return sThirdOctaves;
}

std::size_t GraphicEQ::Tail() const noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    double radius = 0;
    for (const BiquadCoefficients& section : fDesigned) {
        if (!IsNeutral(section)) radius = std::max(radius, PoleRadius(section));
    }
    return radius > 0 ? static_cast<std::size_t>(std::ceil(std::log(kDecayed) / std::log(radius))) : 0;
}

bool GraphicEQ::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                     std::vector<float>& decibels) const {
    if (count == 0) return false;
    decibels.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        decibels[i] = static_cast<float>(DecibelsAt(axis.HertzAt(i, count)));
    return true;
}

void GraphicEQ::ParameterHasChanged(int index) {
    if (index == kGraphicEQMasterGain) {
        StoreHighestGain();
        return;
    }
    Redesign();
    const bool isPrepared = fTarget != nullptr;
    if (isPrepared) fHandOver.Offer(std::make_unique<Sections>(fDesigned));
}

void GraphicEQ::PrepareProcessing(std::size_t maximumBlock) {
    fHandOver.Clear();
    fDesign.reset();
    Redesign();
    fTarget = std::make_unique<Sections>(fDesigned);
    fBiquads.assign(GetNumberOfInputChannels(), std::vector<Biquad>(fCentres.size()));
    fStart = fNow = fDesigned;
    fScratch.resize(maximumBlock);
    fGlide.Prepare(GetSampleRate());
    fMaster.Prepare(GetSampleRate());
}

void GraphicEQ::ResetProcessing() noexcept {
    if (auto offered = fHandOver.Take()) fHandOver.GiveBack(std::exchange(fTarget, std::move(offered)));
    fGlide.Settle(1);
    fNow = *fTarget;
    fIsFlat = std::ranges::all_of(fNow, IsNeutral);
    for (std::vector<Biquad>& channel : fBiquads) {
        for (std::size_t i = 0; i < channel.size(); ++i) {
            channel[i].SetCoefficients(fNow[i]);
            channel[i].Reset();
        }
    }
}

void GraphicEQ::ReadParameters(bool settle) noexcept {
    const auto gain = static_cast<float>(MasterGain());
    settle ? fMaster.Settle(gain) : fMaster.SetTarget(gain);
}

void GraphicEQ::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    TakeSections();
    const std::size_t gliding = std::min(block.frames, std::max(fGlide.Remaining(), fMaster.Remaining()));
    ProcessGliding(block, gliding);
    ProcessSettled(block, gliding);
}

void GraphicEQ::Redesign() {
    if (fDesign == nullptr) fDesign = std::make_unique<GraphicEQDesign>(fCentres, GetSampleRate());
    const double limit = Natural(kGraphicEQRange) / 2;
    std::vector<double> gains(fCentres.size());
    for (std::size_t i = 0; i < gains.size(); ++i) {
        const double gain = Natural(kGraphicEQFirstGain + static_cast<int>(i));
        gains[i] = ZeroIfNear(std::clamp(gain, -limit, limit));
    }
    fDesigned = fDesign->Solve(gains, static_cast<int>(std::lround(Natural(kGraphicEQAccuracy))));
    StoreHighestGain();
}

// Looked for at four places a band.
void GraphicEQ::StoreHighestGain() {
    constexpr std::size_t kPlacesPerBand = 4;
    constexpr double kLowest = 10; // hertz
    const std::size_t count = kPlacesPerBand * fCentres.size();
    const kroaudiofilterhost::FrequencyAxis axis{kLowest, GetSampleRate() / 2, true};
    double highest = -kHighestTold;
    for (std::size_t i = 0; i < count; ++i)
        highest = std::max(highest, DecibelsAt(axis.HertzAt(i, count)));
    const int index = HighestGainIndex();
    const float stored = GetParameterInfo(index)->ToNormalised(static_cast<float>(highest));
    if (stored != GetParameterValue(index)) StoreParameter(index, stored);
}

double GraphicEQ::DecibelsAt(double hertz) const noexcept {
    const ResponsePoint point(GetSampleRate(), hertz);
    double power = MasterGain() * MasterGain();
    for (const BiquadCoefficients& section : fDesigned)
        power *= section.MagnitudeSquared(point);
    return 10 * std::log10(power);
}

double GraphicEQ::MasterGain() const noexcept {
    return std::pow(10.0, ZeroIfNear(Natural(kGraphicEQMasterGain)) / 20);
}

void GraphicEQ::TakeSections() noexcept {
    auto offered = fHandOver.Take();
    if (offered == nullptr) return;
    fHandOver.GiveBack(std::exchange(fTarget, std::move(offered)));
    fStart = fNow;
    fGlide.Settle(0);
    fGlide.SetTarget(1);
    fIsFlat = fIsFlat && std::ranges::all_of(*fTarget, IsNeutral);
}

void GraphicEQ::Glide() noexcept {
    const double share = fGlide.Next();
    for (std::size_t i = 0; i < fNow.size(); ++i) {
        fNow[i] = share == 1 ? (*fTarget)[i] : Between(fStart[i], (*fTarget)[i], share);
        for (std::vector<Biquad>& channel : fBiquads)
            channel[i].SetCoefficients(fNow[i]);
    }
}

// Sample by sample: the first `frames` of the block.
void GraphicEQ::ProcessGliding(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frames) noexcept {
    for (std::size_t frame = 0; frame < frames; ++frame) {
        if (!fGlide.IsSettled()) Glide();
        const float master = fMaster.Next();
        for (std::size_t channel = 0; channel < fBiquads.size(); ++channel) {
            double sample = SaneSample(block.inputs[channel][frame]);
            for (Biquad& biquad : fBiquads[channel])
                sample = biquad.Process(sample);
            block.outputs[channel][frame] = static_cast<float>(sample * master);
        }
    }
}

// Section by section.
void GraphicEQ::ProcessSettled(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin) noexcept {
    const std::span<double> sound = std::span(fScratch).first(block.frames - begin);
    const double master = fMaster.Target();
    for (std::size_t channel = 0; channel < fBiquads.size(); ++channel) {
        std::transform(block.inputs[channel] + begin, block.inputs[channel] + block.frames, sound.begin(), SaneSample);
        for (Biquad& biquad : fBiquads[channel]) {
            if (fIsFlat) break;
            Biquad working = biquad;
            std::ranges::transform(sound, sound.begin(), [&](double sample) { return working.Process(sample); });
            biquad = working;
        }
        std::ranges::transform(sound, block.outputs[channel] + begin,
                               [master](double sample) { return static_cast<float>(sample * master); });
    }
}

} // namespace qoc::components
