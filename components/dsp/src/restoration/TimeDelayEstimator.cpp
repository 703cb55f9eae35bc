#include "qoc/dsp/restoration/TimeDelayEstimator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

namespace qoc::dsp {

namespace {

// Without the care for infinite values that the operators of complex numbers take.
template <typename T>
std::complex<T> Times(const std::complex<T>& a, const std::complex<T>& b) noexcept {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}
template <typename T>
std::complex<T> TimesConjugate(const std::complex<T>& a, const std::complex<T>& b) noexcept {
    return Times(a, std::conj(b));
}

constexpr double kEnvelopeFall = 0.8; // of powers, a bin

// How much two frames under Hann windows, `late` (0...1) of a frame apart, have in common of steady sound.
double CommonPart(double late) noexcept {
    const double angle = 2 * std::numbers::pi * late;
    return (1 - late) * (2 + std::cos(angle)) / 3 + std::sin(angle) / (2 * std::numbers::pi);
}

} // namespace

void TimeDelayEstimator::Prepare(std::size_t size) {
    fTransform.emplace(size);
    const std::size_t bins = fTransform->Bins();
    fCross.resize(bins);
    fReferencePower.resize(bins);
    fOtherPower.resize(bins);
    fEnvelope.resize(bins);
    fWhite.resize(bins);
    const std::size_t padded = (bins + kLanes - 1) / kLanes * kLanes;
    fSteady.resize(bins);
    fSteadyReal.assign(padded, 0.0);
    fSteadyImaginary.assign(padded, 0.0);
    fCorrelation.resize(size);
    fSteadyCorrelation.resize(size);
    fCommonParts.resize(size / 2 + 1);
    for (std::size_t lag = 0; lag < fCommonParts.size(); ++lag)
        fCommonParts[lag] = static_cast<float>(1 / CommonPart(static_cast<double>(lag) / static_cast<double>(size)));
    Reset();
}

void TimeDelayEstimator::Reset() noexcept {
    std::ranges::fill(fCross, std::complex<float>());
    std::ranges::fill(fReferencePower, 0.0F);
    std::ranges::fill(fOtherPower, 0.0F);
    fOrigin = 0;
    fDelay = 0;
    fLikeness = {};
}

double TimeDelayEstimator::LongestDelay() const noexcept {
    return std::min(fFrame.longest, static_cast<double>(fCorrelation.size()) / 4);
}

double TimeDelayEstimator::AngularStep() const noexcept {
    return 2 * std::numbers::pi / static_cast<double>(fCorrelation.size());
}

void TimeDelayEstimator::Begin(const Frame& frame) noexcept {
    fFrame = frame;
}

void TimeDelayEstimator::Pass(std::size_t pass, RealFFT::Part part) noexcept {
    const auto bins = StepRange::Of(part.index, part.count, fCross.size());
    if (pass > 6 && pass < 7 + kMostSlopes) return Improve(bins);
    switch (pass) {
    case 0: return Add(fFrame, part);
    case 1: return FindStrongest(bins);
    case 2: return Whiten(bins);
    case 3: return fTransform->Inverse(fWhite, fCorrelation, part);
    case 4: return fTransform->Inverse(fSteady, fSteadyCorrelation, part);
    case 5: return FindHighest(LagsOf(part));
    case 6: return FindPeakLag(LagsOf(part));
    case 7 + kMostSlopes: return AddSlope(bins);
    case 8 + kMostSlopes: return MoveOrigin(bins);
    default: return Compare(bins);
    }
}

void TimeDelayEstimator::Add(const Frame& frame, RealFFT::Part part) noexcept {
    const auto [begin, end] = StepRange::Of(part.index, part.count, fCross.size());
    for (std::size_t bin = begin; bin < end; ++bin) {
        const std::complex<float> reference = frame.reference[bin];
        const std::complex<float> other = frame.other[bin];
        fCross[bin] = fCross[bin] * frame.kept + TimesConjugate(other, reference);
        fReferencePower[bin] = fReferencePower[bin] * frame.kept + std::norm(reference);
        fOtherPower[bin] = fOtherPower[bin] * frame.kept + std::norm(other);
    }
}

double TimeDelayEstimator::CostOf(std::size_t pass) noexcept {
    constexpr double kSlope = 3;
    if (pass > 6 && pass < 8 + kMostSlopes) return kSlope;
    constexpr double kFirst[] = {4, 8, 20, 2, 2, 4, 4};
    if (pass < std::size(kFirst)) return kFirst[pass];
    return pass + 1 < kPasses ? 8 : 15;
}

float TimeDelayEstimator::LevelRatio() const noexcept {
    const double reference = std::accumulate(fReferencePower.begin(), fReferencePower.end(), 0.0);
    const double other = std::accumulate(fOtherPower.begin(), fOtherPower.end(), 0.0);
    return reference > 0 && other > 0 ? static_cast<float>(std::sqrt(reference / other)) : 1.0F;
}

// The envelope of the powers falls by no more than a decibel a bin towards half the rate.
void TimeDelayEstimator::FindStrongest(StepRange bins) noexcept {
    if (bins.begin == 0) fStrongest = fPassing = 0;
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        const double power = std::sqrt(PowerOf(bin));
        fPassing = std::max(power, fPassing * kEnvelopeFall);
        fStrongest = std::max(fStrongest, power);
        fEnvelope[bin] = static_cast<float>(fPassing);
    }
}

// Leaves the phase difference, as far as it has been the same over the frames: of all bins alike, and weighted by how
// much of the envelope is there. From half the rate down, so that the envelope falls no faster that way either.
void TimeDelayEstimator::Whiten(StepRange bins) noexcept {
    constexpr double kLeastPower = 1e-7; // of the strongest bin's
    if (bins.begin == 0) fWeight = fPassing = 0;
    for (std::size_t turn = bins.begin; turn < bins.end; ++turn) {
        const std::size_t bin = fWhite.size() - 1 - turn;
        const double power = std::sqrt(PowerOf(bin));
        fPassing = std::max(double{fEnvelope[bin]}, fPassing * kEnvelopeFall);
        // Both ends are real and tell no delay.
        const bool isUsed = bin != 0 && turn != 0 && power > fStrongest * kLeastPower;
        const double weight = isUsed ? std::sqrt(power / fPassing) : 0;
        fWhite[bin] = isUsed ? fCross[bin] / static_cast<float>(power) : std::complex<float>();
        fSteady[bin] = fWhite[bin] * static_cast<float>(weight);
        fSteadyReal[bin] = fSteady[bin].real();
        fSteadyImaginary[bin] = fSteady[bin].imag();
        fWeight += weight;
    }
}

StepRange TimeDelayEstimator::LagsOf(RealFFT::Part part) const noexcept {
    return StepRange::Of(part.index, part.count, static_cast<std::size_t>(2 * Reach() + 1));
}

// What frames have in common falls with the lag between them.
float TimeDelayEstimator::MagnitudeAt(const std::vector<float>& correlation, std::size_t lag) const noexcept {
    const auto size = static_cast<std::ptrdiff_t>(correlation.size());
    const std::ptrdiff_t later = static_cast<std::ptrdiff_t>(lag) - Reach() - fOrigin;
    return std::abs(correlation[static_cast<std::size_t>((later + size) % size)]) *
           fCommonParts[static_cast<std::size_t>(std::abs(later))];
}

void TimeDelayEstimator::FindHighest(StepRange lags) noexcept {
    if (lags.begin == 0) fHighest = 0;
    for (std::size_t lag = lags.begin; lag < lags.end; ++lag)
        fHighest = std::max(fHighest, MagnitudeAt(fSteadyCorrelation, lag));
}

// Beside a steady partial lies what the window lets through of it, which has the partial's phase and tells no delay:
// there the weighted correlation knows better, but for whole periods. Which of those it is, the beginnings of notes
// tell, which lie between the partials.
void TimeDelayEstimator::FindPeakLag(StepRange lags) noexcept {
    constexpr float kNearlyBest = 0.85F;
    if (lags.begin == 0) {
        fSearch = {.isDone = fWeight == 0};
        fHighestAmong = -1;
    }
    for (std::size_t lag = lags.begin; lag < lags.end; ++lag) {
        if (MagnitudeAt(fSteadyCorrelation, lag) < kNearlyBest * fHighest) continue;
        const float magnitude = MagnitudeAt(fCorrelation, lag);
        if (magnitude <= fHighestAmong) continue;
        fHighestAmong = magnitude;
        fSearch.delay = static_cast<double>(static_cast<std::ptrdiff_t>(lag) - Reach() - fOrigin);
    }
}

void TimeDelayEstimator::Improve(StepRange bins) noexcept {
    if (fSearch.isDone) return;
    AddSlope(bins);
    if (IsLast(bins)) Refine();
}

// The slope at the search's delay: bins beside each other go on in lanes of their own.
void TimeDelayEstimator::AddSlope(StepRange bins) noexcept {
    const double step = AngularStep();
    const double angle = step * fSearch.delay;
    SlopeSums sums = fSlopeSums;
    if (bins.begin == 0) {
        sums = {};
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            sums.cosine[lane] = std::cos(angle * static_cast<double>(lane));
            sums.sine[lane] = std::sin(angle * static_cast<double>(lane));
        }
    }
    const double cosine = std::cos(angle * kLanes);
    const double sine = std::sin(angle * kLanes);
    const std::size_t end = IsLast(bins) ? fSteadyReal.size() : bins.end / kLanes * kLanes;
    for (std::size_t bin = bins.begin / kLanes * kLanes; bin < end; bin += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            const double white = fSteadyReal[bin + lane];
            const double imaginary = fSteadyImaginary[bin + lane];
            const double angular = step * static_cast<double>(bin + lane);
            const double real = white * sums.cosine[lane] - imaginary * sums.sine[lane];
            sums.value[lane] += real;
            sums.first[lane] -= angular * (white * sums.sine[lane] + imaginary * sums.cosine[lane]);
            sums.second[lane] -= angular * angular * real;
            const double turned = sums.cosine[lane] * cosine - sums.sine[lane] * sine;
            sums.sine[lane] = sums.cosine[lane] * sine + sums.sine[lane] * cosine;
            sums.cosine[lane] = turned;
        }
    }
    fSlopeSums = sums;
    if (IsLast(bins)) FinishSlope();
}

void TimeDelayEstimator::FinishSlope() noexcept {
    const auto sum = [](const Lanes& lanes) { return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]); };
    fSlope = {sum(fSlopeSums.value), sum(fSlopeSums.first), sum(fSlopeSums.second)};
}

void TimeDelayEstimator::Refine() noexcept {
    constexpr double kNear = 1e-6; // samples
    if (fSearch.sign == 0) {
        fSearch.sign = fSlope.value < 0 ? -1 : 1;
        fSearch.lo = fSlope.first * fSearch.sign > 0 ? fSearch.delay : fSearch.delay - 1;
        fSearch.hi = fSearch.lo + 1;
    } else {
        (fSlope.first * fSearch.sign > 0 ? fSearch.lo : fSearch.hi) = fSearch.delay;
    }
    if (fSearch.hi - fSearch.lo <= kNear) {
        fSearch.isDone = true;
        return;
    }
    const double newton = fSearch.delay - fSlope.first / fSlope.second;
    const bool isPeak = fSlope.second * fSearch.sign < 0 && newton > fSearch.lo && newton < fSearch.hi;
    const double next = isPeak ? newton : (fSearch.lo + fSearch.hi) / 2;
    fSearch.isDone = std::abs(next - fSearch.delay) < kNear;
    fSearch.delay = next;
}

// Of sounds that have nothing in common the peak is a few times 1 / sqrt(bins).
void TimeDelayEstimator::TakeDelay() noexcept {
    constexpr double kLeastPeak = 0.2;
    fNextOrigin = fOrigin;
    if (fWeight == 0 || std::abs(fSlope.value) < kLeastPeak * fWeight) return;
    const double reach = LongestDelay();
    fDelay = std::clamp(fSearch.delay + static_cast<double>(fOrigin), -reach, reach);
    fNextOrigin = std::lround(fDelay);
}

void TimeDelayEstimator::MoveOrigin(StepRange bins) noexcept {
    if (bins.begin == 0) {
        TakeDelay();
        fPhase = 1;
    }
    if (fNextOrigin == fOrigin) return;
    const std::complex<double> turn = std::polar(1.0, AngularStep() * static_cast<double>(fNextOrigin - fOrigin));
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        fCross[bin] = Times(fCross[bin], std::complex<float>(fPhase));
        fPhase = Times(fPhase, turn);
    }
    if (IsLast(bins)) fOrigin = fNextOrigin;
}

void TimeDelayEstimator::Compare(StepRange bins) noexcept {
    if (bins.begin == 0) fSums = {};
    const double origin = AngularStep() * static_cast<double>(fOrigin);
    const double delay = fFrame.takesDelayOut ? AngularStep() * fDelay : 0;
    const std::complex<double> aligned = std::polar(1.0, delay - origin);
    const std::complex<double> untreated = std::polar(1.0, -origin);
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        const std::complex<double> cross(fCross[bin]);
        if (bin > 0) {
            fSums.band += Times(cross, fSums.alignedPhase);
            fSums.inPhase += Times(cross, fSums.untreatedPhase).real();
            fSums.reference += fReferencePower[bin];
            fSums.other += fOtherPower[bin];
        }
        fSums.alignedPhase = Times(fSums.alignedPhase, aligned);
        fSums.untreatedPhase = Times(fSums.untreatedPhase, untreated);
        if (bin + 1 < fSums.end && bin + 1 < fCross.size()) continue;
        fSums.common += std::abs(fSums.band);
        fSums.bands += std::sqrt(fSums.reference * fSums.other);
        fSums.allReference += std::exchange(fSums.reference, 0);
        fSums.allOther += std::exchange(fSums.other, 0);
        fSums.band = 0;
        fSums.end *= 2;
    }
    if (IsLast(bins)) FinishComparing();
}

void TimeDelayEstimator::FinishComparing() noexcept {
    fLikeness = {};
    if (!(fSums.bands > 0)) return;
    fLikeness = {.untreated = fSums.inPhase / std::sqrt(fSums.allReference * fSums.allOther),
                 .treated = fSums.common / fSums.bands};
}

} // namespace qoc::dsp
