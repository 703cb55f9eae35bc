#include "qoc/dsp/filters/CurveFIR.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace qoc::dsp {

namespace {

constexpr std::size_t kCorrections = 3;
// Silence: windows leave more than that, and there is nothing to be met.
constexpr double kSilent = 1e-4;
// The response is interpolated on a grid twice as fine as the bins, and no coarser than this.
constexpr std::size_t kSmallestGrid = 8192;
constexpr std::size_t kPoints = 6;
// Bins beyond either end, for the points that lie there.
constexpr std::size_t kMargin = kPoints / 2;

// The spectrum with its mirror image below 0 Hz and above half the sample rate.
std::complex<double> BinAt(const CurveFIR::Spectrum& spectrum, std::ptrdiff_t bin) {
    const auto last = static_cast<std::ptrdiff_t>(spectrum.size()) - 1;
    if (bin < 0) return std::conj(std::complex<double>(spectrum[static_cast<std::size_t>(-bin)]));
    if (bin > last) return std::conj(std::complex<double>(spectrum[static_cast<std::size_t>(2 * last - bin)]));
    return spectrum[static_cast<std::size_t>(bin)];
}

std::complex<double> ResponseAt(const CurveFIR::Spectrum& spectrum, const FIRWindow& window, double bin) {
    std::complex<double> sum;
    const auto last = static_cast<std::ptrdiff_t>(std::floor(bin + window.Reach()));
    for (auto k = static_cast<std::ptrdiff_t>(std::ceil(bin - window.Reach())); k <= last; ++k)
        sum += BinAt(spectrum, k) * window.Kernel(bin - static_cast<double>(k));
    return sum;
}

// Lagrange's polynomial through values at -2, -1, 0, 1, 2 and 3, at t from 0 to 1.
std::array<double, kPoints> LagrangeWeights(double t) {
    const double outer = (t + 2) * (t - 3);
    const double middle = (t + 1) * (t - 2);
    const double inner = t * (t - 1);
    return {-(t - 3) * middle * inner / 120, outer * (t - 2) * inner / 24,  -outer * middle * (t - 1) / 12,
            outer * middle * t / 12,         -outer * (t + 1) * inner / 24, (t + 2) * middle * inner / 120};
}

// A change of the response at a place, shared out among the two bins beside it.
struct Splat {
    Splat(double bin, std::size_t last)
        : lower(std::min(static_cast<std::size_t>(bin), last - 1)), toUpper(bin - static_cast<double>(lower)) {}

    // What a unit of it does at its place.
    double Gain(const FIRWindow& window, std::size_t last) const {
        return (1 - toUpper) * Weight(window, lower, last) + toUpper * Weight(window, lower + 1, last);
    }
    // Of a bin together with its mirror images.
    double Weight(const FIRWindow& window, std::size_t bin, std::size_t last) const {
        const double place = static_cast<double>(lower) + toUpper;
        const auto k = static_cast<double>(bin);
        double weight = window.Kernel(place - k);
        if (bin > 0) weight += window.Kernel(place + k);
        if (bin < last) weight += window.Kernel(2 * static_cast<double>(last) - k - place);
        return weight;
    }

    std::size_t lower;
    double toUpper; // share of the upper bin
};

void Add(std::complex<float>& bin, std::complex<double> change, CurveFIR::Kind kind) {
    bin += std::complex<float>(change);
    if (kind == CurveFIR::Kind::kMagnitude) bin = std::max(bin.real(), 0.0F);
}

// Whether the window tells the node apart from the ones beside it and, if it has a phase, from the spectrum's ends.
bool CanBeMet(std::span<const CurveFIR::Node> nodes, std::size_t index, double resolution, double last,
              CurveFIR::Kind kind) {
    const double bin = nodes[index].bin;
    if (std::abs(nodes[index].response) < kSilent) return false;
    if (index > 0 && bin - nodes[index - 1].bin < resolution) return false;
    if (index + 1 < nodes.size() && nodes[index + 1].bin - bin < resolution) return false;
    return kind == CurveFIR::Kind::kMagnitude || (bin > resolution && bin < last - resolution);
}

} // namespace

std::vector<float> CurveFIR::Design(Spectrum spectrum, std::span<const Node> nodes, const FIRWindow& window,
                                    Kind kind) {
    const bool isConstant = std::ranges::all_of(
        spectrum, [&](const std::complex<float>& bin) { return bin == spectrum.front() && bin.imag() == 0; });
    if (isConstant) {
        std::vector<float> fir(window.Size());
        fir[window.Size() / 2] = spectrum.front().real();
        return fir;
    }
    // A real response is real at both ends.
    spectrum.front() = spectrum.front().real();
    spectrum.back() = spectrum.back().real();
    MeetNodes(spectrum, nodes, window, kind);
    return Transformed(std::move(spectrum), window);
}

void CurveFIR::MeetNodes(Spectrum& spectrum, std::span<const Node> nodes, const FIRWindow& window, Kind kind) const {
    const std::size_t last = spectrum.size() - 1;
    // Again, because each correction moves its neighbours a little.
    for (std::size_t i = 0; i < kCorrections * nodes.size(); ++i) {
        const std::size_t index = i % nodes.size();
        if (!CanBeMet(nodes, index, window.Resolution(), static_cast<double>(last), kind)) continue;
        const Node& node = nodes[index];
        const Splat splat(node.bin, last);
        const auto change = (node.response - ResponseAt(spectrum, window, node.bin)) / splat.Gain(window, last);
        Add(spectrum[splat.lower], change * (1 - splat.toUpper), kind);
        Add(spectrum[splat.lower + 1], change * splat.toUpper, kind);
    }
}

std::vector<float> CurveFIR::Transformed(Spectrum spectrum, const FIRWindow& window) {
    const std::size_t size = window.Size();
    if (fTransform == nullptr || fTransform->Size() != size) fTransform = std::make_unique<RealFFT>(size);
    std::vector<float> fir(size);
    fTransform->Inverse(spectrum, fir);
    std::rotate(fir.begin(), fir.begin() + static_cast<std::ptrdiff_t>(size / 2), fir.end());
    std::ranges::transform(fir, window.Values(), fir.begin(), std::multiplies<>());
    return fir;
}

void FIRResponse::Update(std::span<const float> fir) {
    const std::size_t size = std::max(2 * fir.size(), kSmallestGrid);
    if (fTransform == nullptr || fTransform->Size() != size) fTransform = std::make_unique<RealFFT>(size);
    fPadded.assign(size, 0.0F);
    const auto half = static_cast<std::ptrdiff_t>(fir.size() / 2);
    std::copy(fir.begin() + half, fir.end(), fPadded.begin());
    std::copy(fir.begin(), fir.begin() + half, fPadded.end() - half);
    const std::size_t bins = fTransform->Bins();
    fSpectrum.resize(bins + 2 * kMargin);
    fTransform->Forward(fPadded, std::span(fSpectrum).subspan(kMargin, bins));
    for (std::size_t i = 1; i <= kMargin; ++i) {
        fSpectrum[kMargin - i] = std::conj(fSpectrum[kMargin + i]);
        fSpectrum[kMargin + bins - 1 + i] = std::conj(fSpectrum[kMargin + bins - 1 - i]);
    }
}

std::complex<double> FIRResponse::At(double place) const noexcept {
    const double bin = std::clamp(place, 0.0, 1.0) * static_cast<double>(fTransform->Bins() - 1);
    const auto lower = static_cast<std::size_t>(bin);
    const std::array<double, kPoints> weights = LagrangeWeights(bin - static_cast<double>(lower));
    const std::complex<float>* const first = fSpectrum.data() + lower + kMargin - kPoints / 2 + 1;
    double real = 0;
    double imaginary = 0;
    for (std::size_t i = 0; i < kPoints; ++i) {
        real += weights[i] * first[i].real();
        imaginary += weights[i] * first[i].imag();
    }
    return {real, imaginary};
}

} // namespace qoc::dsp
