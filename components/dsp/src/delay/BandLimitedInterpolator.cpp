#include "qoc/dsp/delay/BandLimitedInterpolator.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <utility>

namespace qoc::dsp {

namespace {

using std::numbers::pi;

// Above the promised one, since Kaiser's formula is an approximation and images add up.
constexpr double kMargin = 2; // dB

using Lanes __attribute__((vector_size(16))) = float;
using LaneMask __attribute__((vector_size(16))) = std::int32_t;

constexpr std::size_t kDegree = 7;
using Polynomial = std::array<Lanes, kDegree + 1>; // from the constant on, the same in all lanes

Lanes Load(const float* values) noexcept {
    Lanes lanes;
    std::memcpy(&lanes, values, sizeof(lanes));
    return lanes;
}

float Sum(const Lanes& lanes) noexcept {
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

Lanes ValueAt(const Polynomial& polynomial, const Lanes& x) noexcept {
    Lanes sum = polynomial[kDegree];
    for (std::size_t power = kDegree; power-- > 0;)
        sum = sum * x + polynomial[power];
    return sum;
}

// Modified Bessel function of the first kind and order 0 of sqrt(4 x) (Abramowitz and Stegun, 9.6.12).
double BesselI0OfRoot(double x) noexcept {
    double sum = 1;
    double term = 1;
    for (int k = 1; term > 1e-15 * sum; ++k) {
        term *= x / (static_cast<double>(k) * k);
        sum += term;
    }
    return sum;
}

// Kaiser's window as a polynomial of 1 - (place / half width)^2, with an error below 1e-6: its Chebyshev series by the
// values at Chebyshev's nodes, written out.
Polynomial WindowOf(double beta) noexcept {
    using Series = std::array<double, kDegree + 1>;
    constexpr double kCount = kDegree + 1;
    const auto nodeAngle = [](std::size_t i) { return pi * (static_cast<double>(i) + 0.5) / kCount; };
    Series window{};
    Series before{};
    Series present{1};
    for (std::size_t order = 0; order <= kDegree; ++order) {
        const double times = order == 0 ? 1 : 2;
        double share = 0;
        for (std::size_t i = 0; i <= kDegree; ++i) {
            const double node = (1 + std::cos(nodeAngle(i))) / 2;
            const double value = BesselI0OfRoot(beta * beta / 4 * node) / BesselI0OfRoot(beta * beta / 4);
            share += value * std::cos(static_cast<double>(order) * nodeAngle(i)) * times / kCount;
        }
        // T(n + 1) = 2 (2 x - 1) T(n) - T(n - 1), and half of that for the first.
        Series next{};
        for (std::size_t i = 0; i <= kDegree; ++i) {
            window[i] += share * present[i];
            next[i] = times * ((i > 0 ? 2 * present[i - 1] : 0) - present[i]) - before[i];
        }
        before = std::exchange(present, next);
    }
    Polynomial polynomial{};
    std::ranges::transform(window, polynomial.begin(),
                           [](double value) { return Lanes{} + static_cast<float>(value); });
    return polynomial;
}

// sin(x) / x and cos(x) for |x| up to pi / 2, by their series.
double Sinc(double x) noexcept {
    const double u = x * x;
    return 1 + u * (-1.0 / 6 + u * (1.0 / 120 + u * (-1.0 / 5040 + u * (1.0 / 362880 + u * (-1.0 / 39916800)))));
}
double Cosine(double x) noexcept {
    const double u = x * x;
    return 1 + u * (-1.0 / 2 + u * (1.0 / 24 + u * (-1.0 / 720 +
                                                    u * (1.0 / 40320 + u * (-1.0 / 3628800 + u * (1.0 / 479001600))))));
}

} // namespace

struct BandLimitedInterpolator::Kernel {
    // The width of the transition band is Kaiser's, as a share of the rate.
    Kernel(int width, double decibels) noexcept
        : halfWidth(width), cutoff(1 - (decibels + kMargin - 7.95) / (14.36 * 2 * width)),
          window(WindowOf(0.1102 * (decibels + kMargin - 8.7))) {}

    double halfWidth; // samples
    double cutoff;    // the middle of the transition band, as a share of half the rate
    Polynomial window;
};

// Two sums in turns, so that one addition need not wait for the other.
float BandLimitedInterpolator::Weights::Apply(const float* sound) const noexcept {
    const auto product = [&](std::size_t i) { return Load(fValues.data() + i) * Load(sound + i); };
    Lanes even{};
    Lanes odd{};
    std::size_t i = 0;
    for (; i + kLanes < fCount; i += 2 * kLanes) {
        even += product(i);
        odd += product(i + kLanes);
    }
    if (i < fCount) even += product(i);
    return fScale * Sum(even + odd);
}

BandLimitedInterpolator::BandLimitedInterpolator() : fRowsFor(kPlaces + 1), fRows(fRowsFor.size() * Weights::kMost) {
    Reset();
}

void BandLimitedInterpolator::Reset() noexcept {
    fKernel = nullptr;
    Set(Precision::kHigh, 1);
}

void BandLimitedInterpolator::Set(Precision precision, double speed) noexcept {
    const Kernel& kernel = KernelOf(precision);
    const double stretch = std::clamp(speed, 1.0, kHighestSpeed);
    fIsSteady = &kernel == fKernel && stretch == fStretch;
    if (fIsSteady) return;
    ++fTable;
    fKernel = &kernel;
    fStretch = stretch;
    const double halfWidth = kernel.halfWidth * stretch;
    fPerWidth = static_cast<float>(1 / halfWidth);
    fFirst = 1 - std::ceil(halfWidth);
    fCount = (static_cast<std::size_t>(2 - 2 * fFirst) + kLanes - 1) / kLanes * kLanes;
    fAngle = pi * kernel.cutoff / stretch;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const double angle = fAngle * (fFirst + static_cast<double>(lane) - 0.5);
        fLaneSines[lane] = static_cast<float>(std::sin(angle));
        fLaneCosines[lane] = static_cast<float>(std::cos(angle));
    }
    fTurnSine = static_cast<float>(std::sin(fAngle * kLanes));
    fTurnCosine = static_cast<float>(std::cos(fAngle * kLanes));
}

void BandLimitedInterpolator::Compute(double fraction, Weights& weights) noexcept {
    weights.fFirst = static_cast<std::ptrdiff_t>(fFirst);
    weights.fCount = fCount;
    if (!fIsSteady) {
        ComputeAt(fraction, weights);
        return;
    }
    const double place = fraction * kPlaces;
    const auto before = static_cast<std::size_t>(place);
    const float* const one = Row(before);
    const float* const other = Row(before + 1);
    const auto share = static_cast<float>(place - static_cast<double>(before));
    for (std::size_t i = 0; i < weights.fCount; i += kLanes) {
        const Lanes values = Load(one + i) + share * (Load(other + i) - Load(one + i));
        std::memcpy(weights.fValues.data() + i, &values, sizeof(values));
    }
    weights.fScale = 1;
}

const float* BandLimitedInterpolator::Row(std::size_t place) noexcept {
    float* const row = fRows.data() + place * Weights::kMost;
    if (std::exchange(fRowsFor[place], fTable) == fTable) return row;
    fMade.fCount = fCount;
    ComputeAt(static_cast<double>(place) / kPlaces, fMade);
    std::transform(fMade.fValues.begin(), fMade.fValues.begin() + static_cast<std::ptrdiff_t>(fMade.fCount), row,
                   [this](float value) { return value * fMade.fScale; });
    return row;
}

void BandLimitedInterpolator::ComputeAt(double fraction, Weights& weights) const noexcept {
    Fill(fraction, weights);

    // Next to the place itself, and at it, the quotient of two small numbers is taken from its series.
    const double nearest = fraction < 0.5 ? 0 : 1;
    const float part = static_cast<float>(nearest - fraction) * fPerWidth;
    const Lanes window = ValueAt(fKernel->window, Lanes{} + (1 - part * part));
    weights.fValues[static_cast<std::size_t>(nearest - fFirst)] =
        static_cast<float>(Sinc(fAngle * (nearest - fraction))) * window[0];

    // A constant stays what it is wherever it is read.
    Lanes sum{};
    for (std::size_t i = 0; i < weights.fCount; i += kLanes)
        sum += Load(weights.fValues.data() + i);
    weights.fScale = 1 / Sum(sum);
}

// The sine is turned on from register to register, from the angles of a place half way between two samples on.
void BandLimitedInterpolator::Fill(double fraction, Weights& weights) const noexcept {
    const double back = fAngle * (fraction - 0.5);
    const auto sine = static_cast<float>(back * Sinc(back) / fAngle);
    const auto cosine = static_cast<float>(Cosine(back) / fAngle);
    Lanes sines = Load(fLaneSines.data()) * cosine - Load(fLaneCosines.data()) * sine;
    Lanes cosines = Load(fLaneCosines.data()) * cosine + Load(fLaneSines.data()) * sine;
    // Whole numbers, so that their distance from the place is exact near it.
    Lanes samples = Lanes{0, 1, 2, 3} + static_cast<float>(fFirst);
    const auto offset = static_cast<float>(fraction);
    const float perWidth = fPerWidth; // copies, which no weight changes
    const float turnSine = fTurnSine;
    const float turnCosine = fTurnCosine;
    for (std::size_t i = 0; i < weights.fCount; i += kLanes) {
        const Lanes place = samples - offset;
        const Lanes part = place * perWidth;
        const Lanes x = 1 - part * part;
        const Lanes weight = sines / place * ValueAt(fKernel->window, x);
        const LaneMask isInside = x >= 0;
        const LaneMask held = isInside & std::bit_cast<LaneMask>(weight);
        std::memcpy(weights.fValues.data() + i, &held, sizeof(held));
        const Lanes turned = sines * turnCosine + cosines * turnSine;
        cosines = cosines * turnCosine - sines * turnSine;
        sines = turned;
        samples += static_cast<float>(kLanes);
    }
}

const BandLimitedInterpolator::Kernel& BandLimitedInterpolator::KernelOf(Precision precision) noexcept {
    static const std::array<Kernel, 3> sKernels = {Kernel(8, 60), Kernel(16, 75), Kernel(32, 90)};
    return sKernels[static_cast<std::size_t>(precision)];
}

} // namespace qoc::dsp
