#include "qoc/components/CurveFilter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr double kShortestFade = 0.005; // seconds, half a frame
constexpr std::size_t kHopsPerSize = 8;
constexpr std::size_t kLongestHop = 4096;
constexpr std::size_t kFramesPerPart = 2; // a part is as long as a frame: two hops
constexpr double kPartCost = 0.1;         // of multiplying one, in transforms
constexpr float kSilentPower = 1e-20F;    // -200 dB, the lowest that is told

// Half frames long enough for a fade, short enough for the work to be spread evenly.
std::size_t HopFor(std::size_t size, double sampleRate) {
    const auto shortest = std::bit_ceil(static_cast<std::size_t>(kShortestFade * sampleRate));
    return std::max(shortest, std::min(size / kHopsPerSize, kLongestHop));
}

std::vector<float> HannFrame(std::size_t size) {
    std::vector<float> window(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size);
        window[i] = static_cast<float>(0.5 - 0.5 * std::cos(angle));
    }
    return window;
}

} // namespace

CurveFilter::CurveFilter(const char16_t* componentID, const Rows& rows, const Indices& indices, CurveFIR::Kind kind)
    : ComponentBase(componentID, std::move(ParameterTable()
                                               .Add(rows.common)
                                               .AddRepeated(rows.first, 1)
                                               .AddRepeated(rows.others, static_cast<int>(kMostPoints) - 1, 2))),
      fIndices(indices), fKind(kind) {
}

CurveFilter::~CurveFilter() = default;

bool CurveFilter::GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                                       std::vector<float>& decibels) const {
    if (count == 0) return false;
    decibels = fShown.Get(*this, axis, count, [&] { return ComputeResponse(count, axis); });
    return true;
}

std::vector<float> CurveFilter::ComputeResponse(std::size_t count,
                                                const kroaudiofilterhost::FrequencyAxis& axis) const {
    if (fFIR.empty() || (fIsStale && !IsOn(fIndices.updating))) Redesign();
    if (!fHasResponse) fResponse.Update(fFIR);
    fHasResponse = true;
    std::vector<float> decibels(count);
    std::ranges::transform(axis.AllHertz(count), decibels.begin(), [this](double hertz) {
        const auto power = static_cast<float>(std::norm(fResponse.At(hertz / Nyquist())));
        return 10 * std::log10(std::max(power, kSilentPower));
    });
    return decibels;
}

std::size_t CurveFilter::CountOf(float stored) noexcept {
    return static_cast<std::size_t>(std::clamp(stored, 0.0F, 1.0F) * static_cast<float>(kMostPoints));
}

double CurveFilter::StoredFrequency(std::size_t point) const noexcept {
    const float stored = StoredParameter(static_cast<std::size_t>(fIndices.firstPoint) + 2 * point);
    return std::clamp(stored, 0.0F, 1.0F);
}

double CurveFilter::StoredValue(std::size_t point) const noexcept {
    const float stored = StoredParameter(static_cast<std::size_t>(fIndices.firstPoint) + 2 * point + 1);
    return std::clamp(stored, 0.0F, 1.0F);
}

void CurveFilter::OnParametersChanged(ParameterIndices changed) {
    fIsStale = fIsStale || std::ranges::any_of(changed, [this](int index) { return IsHeard(index); });
    if (!fIsStale || !IsPrepared() || IsOn(fIndices.updating)) return;
    Redesign();
    fHandOver.Offer(MakePartitions(fFIR));
}

void CurveFilter::PrepareProcessing(std::size_t /*maximumBlock*/) {
    fSize = ChosenSize();
    const std::size_t hop = HopFor(fSize, GetSampleRate());
    const std::size_t frame = kFramesPerPart * hop;
    fPartitionTransform = std::make_unique<RealFFT>(2 * frame);
    fHandOver.Clear();
    Redesign();
    fFilter = MakePartitions(fFIR);
    fIdentity = MakePartitions(std::vector<float>{0, 1});
    fKept = kFramesPerPart * (fFilter->Count() - 1) + 1;
    fSum.assign(FilterPartitions::SplitSize(fPartitionTransform->Bins()), 0.0F);
    fPast.assign(GetNumberOfInputChannels() * fKept * fSum.size(), 0.0F);
    fSteps = PacedSteps::CountFor(hop);
    const double cost = kPartCost * static_cast<double>(GetNumberOfInputChannels() * (fFilter->Count() + 1));
    fStream.Prepare(GetNumberOfInputChannels(), {.transform = 2 * frame, .frame = frame, .hop = hop},
                    std::array{OverlapAdd::Work{.steps = fSteps, .cost = cost}}, HannFrame(frame));
}

void CurveFilter::ResetProcessing() noexcept {
    if (auto offered = fHandOver.Take()) fFilter = std::move(offered);
    fStream.Reset();
    std::ranges::fill(fPast, 0.0F);
}

void CurveFilter::ReadParameters(bool /*settle*/) noexcept {
    fOnlyChannel = OnlyChannel();
}

void CurveFilter::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fStream.Process(block, *this);
}

void CurveFilter::BeginFrame() noexcept {
    if (auto offered = fHandOver.Take()) fHandOver.GiveBack(std::exchange(fFilter, std::move(offered)));
    fFrame = (fFrame + 1) % fKept;
    fTakenOnlyChannel = fOnlyChannel;
}

void CurveFilter::ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept {
    const StepRange bins = FilterPartitions::BinsOf(step, fSteps, fPartitionTransform->Bins());
    for (std::size_t channel = 0; channel < spectra.size(); ++channel)
        Convolve(channel, spectra[channel], bins);
}

void CurveFilter::Convolve(std::size_t channel, Spectrum spectrum, StepRange bins) noexcept {
    FilterPartitions::Split(spectrum, bins, Past(channel, 0));
    for (std::size_t half = 0; half < fSum.size(); half += fSum.size() / 2)
        std::fill_n(fSum.begin() + static_cast<std::ptrdiff_t>(half + bins.begin), bins.end - bins.begin, 0.0F);
    const FilterPartitions& filter = fTakenOnlyChannel.value_or(channel) == channel ? *fFilter : *fIdentity;
    for (std::size_t part = 0; part < filter.Count(); ++part)
        filter.MultiplyAdd(part, bins, Past(channel, kFramesPerPart * part), fSum);
    FilterPartitions::Join(fSum, bins, spectrum);
}

// The spectrum of so many frames ago.
std::span<float> CurveFilter::Past(std::size_t channel, std::size_t frames) noexcept {
    const std::size_t place = (fFrame + fKept - frames) % fKept;
    return std::span(fPast).subspan((channel * fKept + place) * fSum.size(), fSum.size());
}

bool CurveFilter::IsHeard(int index) const noexcept {
    if (index < fIndices.firstPoint) return Shapes(index);
    return static_cast<std::size_t>(index - fIndices.firstPoint) / 2 < PointCount();
}

void CurveFilter::Redesign() const {
    const std::size_t chosen = ChosenSize();
    fFIR = DesignFIR(IsPrepared() ? std::min(chosen, fSize) : chosen);
    fIsStale = false;
    fHasResponse = false;
    fShown.Forget();
}

// For the present parameters, its middle at size / 2.
std::vector<float> CurveFilter::DesignFIR(std::size_t size) const {
    const FrequencyCurve curve = ReadCurve();
    const std::size_t last = size / 2;
    const std::vector<double> values = curve.Sample(last + 1, Nyquist());
    CurveFIR::Spectrum spectrum(last + 1);
    std::ranges::transform(values, spectrum.begin(),
                           [this](double value) { return std::complex<float>(ResponseOf(value)); });
    std::vector<CurveFIR::Node> nodes;
    for (const FrequencyCurve::Point& point : curve.Points())
        nodes.push_back({point.hertz / Nyquist() * static_cast<double>(last), ResponseOf(point.value)});
    return fDesigner.Design(std::move(spectrum), nodes, Window(size), fKind);
}

// The middle of the response goes where the latency has it, whatever its size.
std::unique_ptr<FilterPartitions> CurveFilter::MakePartitions(std::span<const float> fir) const {
    return std::make_unique<FilterPartitions>(fir, fSize / 2 - fir.size() / 2, *fPartitionTransform);
}

} // namespace qoc::components
