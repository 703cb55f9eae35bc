#include "qoc/dsp/pitch/PitchDetector.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace qoc::dsp {

namespace {

// The paper's absolute threshold: the part of the power that may be aperiodic.
constexpr double kThreshold = 0.15;
// At a multiple of the period a voice has drifted further.
constexpr double kThresholdOverPeriods = 2.0 * kThreshold;
// Mean square below which there is nothing to be heard: -80 dB.
constexpr double kSilence = 1e-8;

// How many lags on either side of a dip take part in its measurement: enough to average noise out, few enough for the
// dip to be a parabola.
std::size_t Reach(double period) {
    constexpr double kPartOfPeriod = 1.0 / 64;
    return static_cast<std::size_t>(std::max(1.0, period * kPartOfPeriod));
}

} // namespace

PitchDetector::PitchDetector(std::size_t frameSize)
    : fWindow(frameSize / 2), fFFT(frameSize), fFrame(frameSize), fHead(frameSize), fCorrelation(frameSize),
      fFrameSpectrum(fFFT.Bins()), fHeadSpectrum(fFFT.Bins()), fDifference(fWindow), fNormalised(fWindow) {
}

std::optional<DetectedPitch> PitchDetector::Detect(std::span<const float> frame, double sampleRate) noexcept {
    if (!TakeFrame(frame)) return std::nullopt;
    Correlate();
    ComputeDifference();
    Normalise();
    const auto shortestLag = static_cast<std::size_t>(std::max(2.0, sampleRate / kHighestPitch));
    const std::optional<std::size_t> dip = FindDip(shortestLag);
    if (!dip) return std::nullopt;
    return RefineOverPeriods(Interpolate(*dip, Reach(static_cast<double>(*dip))));
}

bool PitchDetector::TakeFrame(std::span<const float> frame) noexcept {
    const double mean = std::accumulate(frame.begin(), frame.end(), 0.0) / static_cast<double>(frame.size());
    double power = 0;
    for (std::size_t i = 0; i < frame.size(); ++i) {
        fFrame[i] = static_cast<float>(frame[frame.size() - 1 - i] - mean);
        power += double{fFrame[i]} * fFrame[i];
    }
    std::copy_n(fFrame.begin(), fWindow, fHead.begin());
    // The upper bound is what squares in single precision can hold.
    constexpr double kLoudest = 1e20;
    const double meanSquare = power / static_cast<double>(frame.size());
    return meanSquare > kSilence && meanSquare < kLoudest;
}

void PitchDetector::Correlate() noexcept {
    fFFT.Forward(fFrame, fFrameSpectrum);
    fFFT.Forward(fHead, fHeadSpectrum);
    for (std::size_t bin = 0; bin < fFrameSpectrum.size(); ++bin) {
        const std::complex<float> a = fFrameSpectrum[bin];
        const std::complex<float> b = fHeadSpectrum[bin];
        // a * conj(b), spelt out: the operator checks for infinities on the way.
        fFrameSpectrum[bin] = {a.real() * b.real() + a.imag() * b.imag(), a.imag() * b.real() - a.real() * b.imag()};
    }
    fFFT.Inverse(fFrameSpectrum, fCorrelation);
}

// d(lag) = sum (x[j] - x[j + lag])^2 = the power of both windows less twice their correlation.
void PitchDetector::ComputeDifference() noexcept {
    double power = 0;
    for (std::size_t i = 0; i < fWindow; ++i)
        power += double{fFrame[i]} * fFrame[i];
    double shiftedPower = power;
    for (std::size_t lag = 0; lag < fWindow; ++lag) {
        fDifference[lag] = std::max(0.0, power + shiftedPower - 2.0 * fCorrelation[lag]);
        const double in = fFrame[lag + fWindow];
        const double out = fFrame[lag];
        shiftedPower += in * in - out * out;
    }
}

void PitchDetector::Normalise() noexcept {
    fNormalised[0] = 1.0;
    double sum = 0;
    for (std::size_t lag = 1; lag < fWindow; ++lag) {
        sum += fDifference[lag];
        fNormalised[lag] = sum > 0 ? fDifference[lag] * static_cast<double>(lag) / sum : 1.0;
    }
}

// The first dip below the threshold is the period; deeper ones behind it are its multiples.
std::optional<std::size_t> PitchDetector::FindDip(std::size_t shortestLag) const noexcept {
    const auto isBelow = [](double difference) { return difference < kThreshold; };
    for (auto begin = fNormalised.begin() + static_cast<std::ptrdiff_t>(shortestLag);;) {
        begin = std::find_if(begin, fNormalised.end(), isBelow);
        if (begin == fNormalised.end()) return std::nullopt;
        const auto end = std::find_if_not(begin, fNormalised.end(), isBelow);
        const auto first = static_cast<std::size_t>(begin - fNormalised.begin());
        if (const auto dip = DipWithin(first, first + static_cast<std::size_t>(end - begin))) return dip;
        begin = end;
    }
}

DetectedPitch PitchDetector::RefineOverPeriods(double period) const noexcept {
    const std::size_t reach = Reach(period);
    double lag = period;
    for (double count = 2; period * count + static_cast<double>(2 * reach) < static_cast<double>(fWindow); count *= 2) {
        const auto guess = static_cast<std::size_t>(std::lround(period * count));
        const std::optional<std::size_t> dip = DipWithin(guess - reach, guess + reach + 1);
        if (!dip || fNormalised[*dip] >= kThresholdOverPeriods) break;
        lag = Interpolate(*dip, reach);
        period = lag / count;
    }
    return {period, static_cast<double>(FrameSize()) - (static_cast<double>(fWindow) + lag) / 2};
}

// The lowest of the lags, if its neighbours on both sides are higher.
std::optional<std::size_t> PitchDetector::DipWithin(std::size_t begin, std::size_t end) const noexcept {
    const auto first = fDifference.begin();
    const auto lowest =
        std::min_element(first + static_cast<std::ptrdiff_t>(begin), first + static_cast<std::ptrdiff_t>(end));
    const auto lag = static_cast<std::size_t>(lowest - first);
    if (lag == 0 || lag + 1 >= fWindow) return std::nullopt;
    const bool isDip = fDifference[lag] <= fDifference[lag - 1] && fDifference[lag] <= fDifference[lag + 1];
    return isDip ? std::optional(lag) : std::nullopt;
}

// The minimum of the parabola that fits the lags around the dip best (least squares). It is laid through the difference
// function rather than the normalised one, whose slope would pull it aside.
double PitchDetector::Interpolate(std::size_t dip, std::size_t reach) const noexcept {
    const auto sides = static_cast<int>(std::min({reach, dip, fWindow - 1 - dip}));
    double sum = 0;
    double sumX = 0;
    double sumXX = 0;
    double squares = 0;
    double fourthPowers = 0;
    for (int x = -sides; x <= sides; ++x) {
        const double value = fDifference[dip + static_cast<std::size_t>(x)];
        const double square = double(x) * x;
        sum += value;
        sumX += x * value;
        sumXX += square * value;
        squares += square;
        fourthPowers += square * square;
    }
    const double count = 2 * sides + 1;
    const double slope = sumX / squares;
    const double curvature = (count * sumXX - squares * sum) / (count * fourthPowers - squares * squares);
    if (!(curvature > 0)) return static_cast<double>(dip);
    return static_cast<double>(dip) + std::clamp(-0.5 * slope / curvature, double(-sides), double(sides));
}

} // namespace qoc::dsp
