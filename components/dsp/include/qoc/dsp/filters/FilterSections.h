#pragma once

#include "qoc/components/ScientificFilterSettings.h"
#include "qoc/dsp/filters/StateVariableFilter.h"

#include <array>
#include <complex>
#include <span>

namespace qoc::dsp {

// (high s^2 + band g s + low g^2) / (s^2 + damping g s + g^2) with s = (1 - 1/z) / (1 + 1/z), which is j tan(w / 2) on
// the unit circle. A section of the first order has both of its factors twice: s + g in the numerator too. A value;
// real time safe.
//
// The coefficients of a direct form would not do: those of a filter that is narrow and low lie so near those of two
// integrators that little of the design is left in a double.
struct FilterSection {
    double tuning = 1; // g
    double damping = 2;
    double high = 1;
    double band = 2;
    double low = 1;

    // At w with `frequency` = tan(w / 2).
    std::complex<double> Response(double frequency) const noexcept;
    // In samples; of a zero of the response its limit.
    double GroupDelay(double frequency) const noexcept;
    // tan(w / 2) where the response is 0, with w above 0 and below pi; 0 when there is no such place.
    double Zero() const noexcept;
    // The natural logarithm of the distance of the outer pole from the middle of the unit circle.
    double LogarithmOfPoleRadius() const noexcept;
    StateVariableFilter Step() const noexcept;
};

// A scientific filter as a cascade of second-order sections, ready to run and to be asked for its response. A value;
// real time safe once BesselPoles has been called.
class FilterSections {
public:
    // A band filter of the highest order.
    static constexpr int kMostSections = components::ScientificFilterSettings::kHighestOrder;

    // No sections: what goes in comes out.
    FilterSections() = default;
    // Designs the filter: the poles and zeros of the analogue prototype are moved into the mode (A. G. Constantinides,
    // "Spectral transformations for digital filters", Proc. IEE 117, 1970), paired, and brought to the sample rate
    // (hertz) by the bilinear transform, whose bending of frequencies the edges anticipate. Every section has a gain of
    // 1 where the prototype's 0 has come to lie; the most resonant sections come last, and the two that a pair of the
    // prototype becomes in a band filter stand together. Alone each of them amplifies what lies beyond the other edge
    // of the band by up to the square of the ratio of edge and centre, and together they don't: ten of one kind in a
    // row would go beyond what a double resolves.
    FilterSections(const components::ScientificFilterSettings& settings, double sampleRate) noexcept;

    std::span<const FilterSection> Sections() const noexcept {
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

    void AddPair(const components::ScientificFilterSettings& settings, const components::WarpedEdges& edges,
                 std::complex<double> pole, double zero) noexcept;
    void AddReal(const components::ScientificFilterSettings& settings, const components::WarpedEdges& edges,
                 double pole) noexcept;
    void AddBandPair(const components::ScientificFilterSettings& settings, const components::WarpedEdges& edges,
                     std::complex<double> pole, double zero) noexcept;
    void Add(const AnalogSection& section, double referenceFrequency) noexcept;

    std::array<FilterSection, kMostSections> fSections;
    int fCount = 0;
    double fSampleRate = 1;
};

} // namespace qoc::dsp
