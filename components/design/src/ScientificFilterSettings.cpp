#include "qoc/components/ScientificFilterSettings.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::components {

namespace {

constexpr double kLowestEdge = 0.01; // hertz
constexpr double kForgivenWidth = 1.01;

// Where a low-pass prototype that ends its pass band at 1 rad/s has `prototype` rad/s, after its transformation into
// the mode: on the side of the low edge.
double TransformedFrequency(FilterMode mode, const WarpedEdges& edges, double prototype) noexcept {
    const double width = edges.Width();
    const double centre = edges.CentreSquared();
    switch (mode) {
    case FilterMode::kLowPass: break;
    case FilterMode::kHighPass: return edges.low / prototype;
    case FilterMode::kBandPass: { // prototype = (centre - w^2) / (width w)
        const double b = prototype * width;
        return 2 * centre / (b + std::sqrt(b * b + 4 * centre));
    }
    case FilterMode::kBandStop: { // prototype = width w / (centre - w^2)
        const double c = prototype * centre;
        return 2 * c / (width + std::sqrt(width * width + 4 * prototype * c));
    }
    }
    return edges.low * prototype;
}

} // namespace

ScientificFilterSettings ScientificFilterSettings::Essential() const noexcept {
    const ScientificFilterSettings standard;
    ScientificFilterSettings essential = *this;
    if (!IsBand()) essential.highCutoff = standard.highCutoff;
    if (!UsesPassRipple()) essential.passRipple = standard.passRipple;
    if (!UsesStopAttenuation()) essential.stopAttenuation = standard.stopAttenuation;
    return essential;
}

WarpedEdges::WarpedEdges(const ScientificFilterSettings& settings, double sampleRate) noexcept {
    const auto warped = [&](double hertz) { return std::tan(std::numbers::pi * hertz / sampleRate); };
    const double highest = kHighestEdge * sampleRate;
    if (!settings.IsBand()) {
        low = warped(std::clamp(settings.cutoff, kLowestEdge, highest));
        return;
    }
    const auto [lower, upper] = std::minmax(settings.cutoff, settings.highCutoff);
    const double lowEdge = std::clamp(lower, kLowestEdge, highest / kNarrowestBand);
    low = warped(lowEdge);
    high = warped(std::clamp(upper, lowEdge * kNarrowestBand, highest));
}

// A prototype is loudest at 0, a Chebyshev 1 one also at the zeros of its polynomial.
std::vector<double> PassBandFrequencies(const ScientificFilterSettings& settings, double sampleRate) {
    constexpr int kEvenly = 32;
    std::vector<double> prototypes;
    for (int i = 0; i <= kEvenly; ++i)
        prototypes.push_back(static_cast<double>(i) / kEvenly);
    for (int i = 1; settings.UsesPassRipple() && i <= settings.order / 2; ++i)
        prototypes.push_back(std::cos((2 * i - 1) * std::numbers::pi / (2 * settings.order)));
    const WarpedEdges edges(settings, sampleRate);
    std::vector<double> frequencies;
    const auto add = [&](double warped) {
        if (std::isfinite(warped)) frequencies.push_back(std::atan(warped) * sampleRate / std::numbers::pi);
    };
    for (const double prototype : prototypes) {
        const double low = TransformedFrequency(settings.mode, edges, prototype);
        add(low);
        if (settings.IsBand()) add(edges.CentreSquared() / low);
    }
    return frequencies;
}

// |H|^2 = 1 / (1 + 1 / (e^2 T^2(edge / w))) with e^2 = 1 / (10^(A/10) - 1) is a half at w = 1 where e T(edge) = 1
// (A. V. Oppenheim, R. W. Schafer, "Discrete-Time Signal Processing", appendix B).
double Chebyshev2StopEdge(int order, double stopAttenuation) noexcept {
    const double inverseEpsilon = std::sqrt(std::pow(10.0, stopAttenuation / 10) - 1);
    return std::cosh(std::acosh(std::max(inverseEpsilon, 1.0)) / order);
}

double TransitionBandwidth(const ScientificFilterSettings& settings, double sampleRate) noexcept {
    const WarpedEdges edges(settings, sampleRate);
    const double stop =
        TransformedFrequency(settings.mode, edges, Chebyshev2StopEdge(settings.order, settings.stopAttenuation));
    return std::abs(std::atan(stop) - std::atan(edges.low)) * sampleRate / std::numbers::pi;
}

int OrderForTransitionBandwidth(const ScientificFilterSettings& settings, double sampleRate,
                                double bandwidth) noexcept {
    ScientificFilterSettings tried = settings;
    for (tried.order = 1; tried.order < ScientificFilterSettings::kHighestOrder; ++tried.order) {
        if (TransitionBandwidth(tried, sampleRate) <= bandwidth * kForgivenWidth) break;
    }
    return tried.order;
}

} // namespace qoc::components
