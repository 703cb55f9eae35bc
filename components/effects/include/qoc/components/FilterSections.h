#pragma once

#include "qoc/components/Biquad.h"
#include "qoc/components/ScientificFilterSettings.h"

#include <array>
#include <complex>
#include <span>

namespace qoc::components {

// A scientific filter as a cascade of second-order sections, ready to run and to be asked for its response. A value;
// real time safe once BesselPoles has been called.
class FilterSections {
public:
    // A band filter of the highest order.
    static constexpr int kMostSections = ScientificFilterSettings::kHighestOrder;

    // No sections: what goes in comes out.
    FilterSections() = default;
    // Designs the filter: the poles and zeros of the analogue prototype are moved into the mode (A. G. Constantinides,
    // "Spectral transformations for digital filters", Proc. IEE 117, 1970), paired, and brought to the sample rate
    // (hertz) by the bilinear transform, whose bending of frequencies the edges anticipate. Every section has a gain of
    // 1 where the prototype's 0 has come to lie; the most resonant sections come last.
    FilterSections(const ScientificFilterSettings& settings, double sampleRate) noexcept;

    std::span<const BiquadCoefficients> Sections() const noexcept {
        return {fSections.data(), static_cast<std::size_t>(fCount)};
    }

    // At `hertz`, for the sample rate of the design.
    std::complex<double> Response(double hertz) const noexcept;
    // In seconds. Where the response is 0 its limit.
    double GroupDelay(double hertz) const noexcept;
    // Where the response is 0, in hertz above 0 and below the Nyquist frequency; the span is filled from its start.
    // Returns how many there are.
    std::size_t Zeros(std::span<double, kMostSections> hertz) const noexcept;
    // Samples until an impulse has decayed by 120 dB, by the slowest pole.
    double DecaySamples() const noexcept;

private:
    struct AnalogSection;

    void AddPair(const ScientificFilterSettings& settings, const WarpedEdges& edges, std::complex<double> pole,
                 double zero) noexcept;
    void AddReal(const ScientificFilterSettings& settings, const WarpedEdges& edges, double pole) noexcept;
    void AddBandPair(const ScientificFilterSettings& settings, const WarpedEdges& edges, std::complex<double> pole,
                     double zero) noexcept;
    void Add(const AnalogSection& section, double referenceFrequency) noexcept;

    std::array<BiquadCoefficients, kMostSections> fSections;
    int fCount = 0;
    double fSampleRate = 1;
};

} // namespace qoc::components
