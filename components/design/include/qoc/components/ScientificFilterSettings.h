#pragma once

#include <cstdint>
#include <vector>

namespace qoc::components {

// The items of the scientific filter's type and mode parameters, in their order.
enum class FilterFamily : std::uint8_t { kBessel, kButterworth, kChebyshev1, kChebyshev2 };
enum class FilterMode : std::uint8_t { kLowPass, kHighPass, kBandPass, kBandStop };

// What the scientific filter is asked for, in natural units. A cutoff is where a Bessel, Butterworth or Chebyshev 2
// filter has lost half of its power (3.01 dB), and where the loss of a Chebyshev 1 filter exceeds its ripple. Values
// beyond what a sample rate allows are held within it where they are used.
struct ScientificFilterSettings {
    FilterFamily family = FilterFamily::kButterworth;
    FilterMode mode = FilterMode::kLowPass;
    int order = 4;               // of the low-pass prototype, 1...kHighestOrder; a band filter has twice as many poles
    double cutoff = 1000;        // hertz; the lower one of a band filter
    double highCutoff = 4000;    // hertz; of band filters
    double passRipple = 1;       // dB, Chebyshev 1
    double stopAttenuation = 60; // dB, Chebyshev 2

    static constexpr int kHighestOrder = 20;

    bool IsBand() const noexcept { return mode == FilterMode::kBandPass || mode == FilterMode::kBandStop; }
    bool UsesPassRipple() const noexcept { return family == FilterFamily::kChebyshev1; }
    bool UsesStopAttenuation() const noexcept { return family == FilterFamily::kChebyshev2; }
    // The same with what the type and mode do not use at fixed values, so that equal ones sound equal.
    ScientificFilterSettings Essential() const noexcept;

    friend bool operator==(const ScientificFilterSettings&, const ScientificFilterSettings&) = default;
};

// The edges of the pass band (of the stop band of a band stop) as the bilinear transform bends them: w = tan(pi f /
// fs). Low below high; `high` is 0 unless there is a band.
struct WarpedEdges {
    double low = 0;
    double high = 0;

    // The narrowest band, as a ratio, and the highest edge, as a part of the sample rate.
    static constexpr double kNarrowestBand = 1.001;
    static constexpr double kHighestEdge = 0.499;

    WarpedEdges(const ScientificFilterSettings& settings, double sampleRate) noexcept;

    double CentreSquared() const noexcept { return low * high; }
    double Width() const noexcept { return high - low; }
};

// Frequencies all over the pass band, in hertz, among them those where it is loudest: where a curve through few places
// has to look for what lies between them.
std::vector<double> PassBandFrequencies(const ScientificFilterSettings& settings, double sampleRate);

// For a Chebyshev 2 filter that ends its pass band at 1 rad/s with a loss of 3.01 dB: the frequency from which on it
// attenuates by `stopAttenuation` dB or more.
double Chebyshev2StopEdge(int order, double stopAttenuation) noexcept;

// From the cutoff (the lower one of a band filter) to where the stop band of a Chebyshev 2 filter with these settings
// begins, in hertz: upwards in a low-pass and a band stop, downwards in a high-pass and a band pass.
double TransitionBandwidth(const ScientificFilterSettings& settings, double sampleRate) noexcept;
// The lowest order whose transition is no wider than `bandwidth` hertz (a hundredth is forgiven, since widths are shown
// rounded); the highest order if none is that narrow.
int OrderForTransitionBandwidth(const ScientificFilterSettings& settings, double sampleRate, double bandwidth) noexcept;

} // namespace qoc::components
