#include "qoc/components/GraphicEQ.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/dsp/math/Decibels.h"

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
    {.index = kGraphicEQRange,
     .id = "range",
     .name = "$$$/GraphicEQ/Range=Range",
     .unit = "dB",
     .lo = 1.5F,
     .hi = 2 * kMostGain,
     .defaultValue = 30,
     .decimals = 1},
    {.index = kGraphicEQAccuracy,
     .id = "accuracy",
     .name = "$$$/GraphicEQ/Accuracy=Accuracy",
     .unit = "$$$/GraphicEQ/Passes=passes",
     .hi = kMostPasses,
     .defaultValue = 4,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterWhole},
    {.index = kGraphicEQMasterGain,
     .id = "masterGain",
     .name = "$$$/GraphicEQ/MasterGain=Master Gain",
     .unit = "dB",
     .lo = -kMostGain,
     .hi = kMostGain,
     .decimals = 1},
};

constexpr ParameterRow kGainRows[] = {
    {.index = kGraphicEQFirstGain,
     .id = "gain",
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
    return static_cast<std::size_t>(std::ceil(BiquadCoefficients::DecaySamples(fDesigned, kDecayed)));
}

bool GraphicEQ::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                     std::vector<float>& decibels) const {
    if (count == 0) return false;
    decibels.resize(count);
    std::ranges::transform(axis.AllHertz(count), decibels.begin(),
                           [this](double hertz) { return static_cast<float>(DecibelsAt(hertz)); });
    return true;
}

void GraphicEQ::OnParametersChanged(ParameterIndices changed) {
    const auto isMasterGain = [](int index) { return index == kGraphicEQMasterGain; };
    if (std::ranges::all_of(changed, isMasterGain)) {
        StoreHighestGain();
        return;
    }
    Redesign();
    const bool isPrepared = fTarget != nullptr;
    if (isPrepared) fHandOver.Offer(std::make_unique<Sections>(fDesigned));
}

void GraphicEQ::PrepareProcessing(std::size_t /*maximumBlock*/) {
    fHandOver.Clear();
    fDesign.reset();
    Redesign();
    fTarget = std::make_unique<Sections>(fDesigned);
    fBands.Prepare(GetSampleRate(), GetNumberOfInputChannels(), fCentres.size());
    fMaster.Prepare(GetSampleRate());
}

void GraphicEQ::ResetProcessing() noexcept {
    TakeSections(true);
    fBands.Reset();
}

void GraphicEQ::ReadParameters(bool settle) noexcept {
    fMaster.Set(MasterGain(), settle);
}

void GraphicEQ::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    TakeSections(false);
    fBands.Process(block, fMaster);
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
    TellParameter(HighestGainIndex(), highest);
}

double GraphicEQ::DecibelsAt(double hertz) const noexcept {
    const double bands = BiquadCoefficients::MagnitudeSquared(fDesigned, {GetSampleRate(), hertz});
    return 10 * std::log10(MasterGain() * MasterGain() * bands);
}

double GraphicEQ::MasterGain() const noexcept {
    return ToFactor(Natural(kGraphicEQMasterGain));
}

void GraphicEQ::TakeSections(bool settle) noexcept {
    auto offered = fHandOver.Take();
    if (offered == nullptr && !settle) return;
    if (offered != nullptr) fHandOver.GiveBack(std::exchange(fTarget, std::move(offered)));
    fBands.Set(*fTarget, settle);
}

} // namespace qoc::components
