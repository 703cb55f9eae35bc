#include "qoc/dsp/filters/BandGain.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace qoc::dsp {

namespace {

// The damping of the two pairs of poles of a Butterworth filter of the fourth order: 2 cos(pi / 8), 2 cos(3 pi / 8).
constexpr double kDamping[] = {1.8477590650225735, 0.7653668647301796};

} // namespace

void BandGain::Prepare(std::size_t channels) {
    fMemories.assign(channels, {});
}

void BandGain::Reset() noexcept {
    std::ranges::fill(fMemories, Memory());
}

// The integrator 1 / s of a filter that begins at 0 Hz becomes width s / (s^2 + middle^2), which is solved with
// trapezoidal integrators.
void BandGain::SetBand(double sampleRate, double low, double high) noexcept {
    const double lower = std::tan(std::numbers::pi * low / sampleRate);
    const double upper = std::max(std::tan(std::numbers::pi * high / sampleRate), kNarrowest * lower);
    fMiddle = std::sqrt(lower * upper);
    fBandFromBand = 1 / (1 + lower * upper);
    fBandFromLow = fMiddle * fBandFromBand;
    fFromInput = (upper - lower) * fBandFromBand;
    for (std::size_t section = 0; section < kSections; ++section)
        fSolved[section] = 1 / (1 + fFromInput * (fFromInput + kDamping[section]));
}

// (s^2 + k r s + r^2) / (s^2 + k s + 1), of which both together have the gain r^4 at s = 0.
double BandGain::Process(std::size_t channel, double sample, double gain) noexcept {
    const double r = std::sqrt(std::sqrt(gain));
    for (std::size_t section = 0; section < kSections; ++section) {
        auto& [first, second] = fMemories[channel].resonators[section];
        const double known = Known(second);
        const double band = (fFromInput * (sample - known) + Known(first)) * fSolved[section];
        const double low = fFromInput * band + known;
        Remember(first, band);
        Remember(second, low);
        sample += (r - 1) * kDamping[section] * band + (r * r - 1) * low;
    }
    return sample;
}

// By the slowest poles: those of the less damped section, p, become the solutions of s^2 - p width s + middle^2 = 0,
// and (1 + s) / (1 - s).
double BandGain::DecaySamples(double sampleRate, double low, double high) noexcept {
    const double lower = std::tan(std::numbers::pi * low / sampleRate);
    const double upper = std::max(std::tan(std::numbers::pi * high / sampleRate), kNarrowest * lower);
    const std::complex<double> pole = std::polar(1.0, std::acos(-kDamping[1] / 2));
    const std::complex<double> half = (upper - lower) / 2 * pole;
    const std::complex<double> root = std::sqrt(half * half - lower * upper);
    double slowest = 1; // loss in a sample, as a logarithm
    for (const std::complex<double>& s : {half + root, half - root})
        slowest = std::min(slowest, -std::log1p(4 * s.real() / std::norm(1.0 - s)) / 2);
    return std::log(1e5) / slowest;
}

// What of its output does not depend on the present input.
double BandGain::Known(const Resonator& resonator) const noexcept {
    return fBandFromBand * resonator.band - fBandFromLow * resonator.low;
}

void BandGain::Remember(Resonator& resonator, double output) const noexcept {
    resonator.band = 2 * output - resonator.band;
    resonator.low += 2 * fMiddle * output;
}

} // namespace qoc::dsp
