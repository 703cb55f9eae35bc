#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"

#include "qoc/dsp/math/DotProduct.h"
#include "restoration/BandColumns.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::dsp {

void AutoregressiveInterpolator::Prepare(std::size_t mostUnknown, std::size_t largestOrder) {
    fProducts.assign(2 * largestOrder + 1, 0.0);
    fBand.assign(mostUnknown * BandStride(largestOrder + 1), 0.0);
    fValues.assign(mostUnknown, 0.0);
    fBefore.assign(mostUnknown, 0.0);
}

void AutoregressiveInterpolator::Restore(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                                         std::span<double> sound) noexcept {
    Begin(coefficients, unknown, sound);
    while (!IsDone())
        Work();
}

void AutoregressiveInterpolator::Begin(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                                       std::span<double> sound) noexcept {
    fUnknown = unknown;
    fSound = sound;
    fStage = unknown.empty() ? Stage::kDone : Stage::kSetUp;
    fPlace = 0;
    fIsBounded = true;
    fIsSolvable = !unknown.empty();
    fWidth = coefficients.size();
    fStride = BandStride(fWidth);
    for (std::size_t lag = 0; lag < fWidth; ++lag) {
        double sum = 0;
        for (std::size_t k = 0; k + lag < fWidth; ++k)
            sum += coefficients[k] * coefficients[k + lag];
        fProducts[fWidth - 1 + lag] = fProducts[fWidth - 1 - lag] = sum;
    }
    for (std::size_t i = 0; i < unknown.size(); ++i)
        fBefore[i] = std::exchange(sound[unknown[i]], 0);
}

void AutoregressiveInterpolator::BeginUnbounded(std::span<const double> coefficients,
                                                std::span<const std::size_t> unknown,
                                                std::span<double> sound) noexcept {
    Begin(coefficients, unknown, sound);
    fIsBounded = false;
}

// A few unknown samples at a time.
double AutoregressiveInterpolator::Work() noexcept {
    if (IsDone()) return 0;
    constexpr std::size_t kTogether = 8;
    const double cost = kTogether * PieceCost(fStage, fWidth);
    for (std::size_t end = fPlace + kTogether; !IsDone() && fPlace < std::min(end, fUnknown.size());)
        Do();
    if (IsDone() || fPlace < fUnknown.size()) return cost;
    fPlace = 0;
    fStage = static_cast<Stage>(static_cast<int>(fStage) + 1);
    if (fStage == Stage::kBound && !fIsBounded) fStage = Stage::kDone;
    return cost;
}

double AutoregressiveInterpolator::CostLeft() const noexcept {
    double cost = 0;
    for (Stage stage = fStage; stage != Stage::kDone; stage = static_cast<Stage>(static_cast<int>(stage) + 1))
        cost += PieceCost(stage, fWidth) * static_cast<double>(fUnknown.size() - (stage == fStage ? fPlace : 0));
    return cost;
}

double AutoregressiveInterpolator::CostOf(std::size_t unknown, std::size_t order) const noexcept {
    double cost = 0;
    for (Stage stage = Stage::kSetUp; stage != Stage::kDone; stage = static_cast<Stage>(static_cast<int>(stage) + 1))
        cost += PieceCost(stage, order + 1) * static_cast<double>(unknown);
    return cost;
}

// Of one unknown sample, in nanoseconds, about.
double AutoregressiveInterpolator::PieceCost(Stage stage, std::size_t width) const noexcept {
    constexpr double kSetUpCost = 0.7;    // a coefficient
    constexpr double kProductCost = 0.3;  // a coefficient
    constexpr double kFactorCost = 0.045; // two coefficients
    constexpr double kBoundCost = 0.5;    // a coefficient
    constexpr double kStoreCost = 2;
    const auto count = static_cast<double>(width);
    switch (stage) {
    case Stage::kSetUp: return kSetUpCost * count;
    case Stage::kFactorise: return kFactorCost * count * count;
    case Stage::kStore: return kStoreCost;
    case Stage::kBound: return kBoundCost * count;
    default: return kProductCost * count;
    }
}

void AutoregressiveInterpolator::Do() noexcept {
    switch (fStage) {
    case Stage::kSetUp: return SetUp(fPlace++);
    case Stage::kFactorise:
        if (Factorise(fPlace++)) return;
        fIsSolvable = false;
        return StoreValues();
    case Stage::kSolveForward: return SolveForward(fPlace++);
    case Stage::kSolveBack: return SolveBack(fUnknown.size() - ++fPlace);
    case Stage::kStore: return StoreValues();
    case Stage::kBound: return BoundNextGap();
    case Stage::kDone: return;
    }
}

// Numbers out of all proportion leave the sound as it was.
void AutoregressiveInterpolator::StoreValues() noexcept {
    for (std::size_t i = 0; i < fUnknown.size(); ++i)
        fSound[fUnknown[i]] = fIsSolvable ? fValues[i] : fBefore[i];
    fPlace = fUnknown.size();
    if (!fIsSolvable) fStage = Stage::kDone;
}

void AutoregressiveInterpolator::BoundNextGap() noexcept {
    const std::size_t first = fPlace++;
    while (fPlace < fUnknown.size() && fUnknown[fPlace] == fUnknown[fPlace - 1] + 1)
        ++fPlace;
    BoundGap(fUnknown.subspan(first, fPlace - first));
}

// Within what the samples around swing between, and half as much again to either side: a model of a resonance may
// want more when something else than the sound stands beside the gap.
void AutoregressiveInterpolator::BoundGap(std::span<const std::size_t> gap) noexcept {
    constexpr double kRoom = 0.5;
    constexpr std::size_t kGapsAround = 2;
    const std::size_t reach = fWidth - 1 + kGapsAround * gap.size();
    const std::size_t end = std::min(fSound.size(), gap.back() + 1 + reach);
    double lo = fSound[gap.front() - 1];
    double hi = lo;
    const std::size_t begin = gap.front() - std::min(gap.front(), reach);
    auto next = std::ranges::lower_bound(fUnknown, begin); // that is unknown
    for (std::size_t i = begin; i < end; ++i) {
        if (next != fUnknown.end() && *next == i) {
            ++next;
            continue;
        }
        lo = std::min(lo, fSound[i]);
        hi = std::max(hi, fSound[i]);
    }
    const double room = kRoom * (hi - lo);
    for (const std::size_t place : gap)
        fSound[place] = std::clamp(fSound[place], lo - room, hi + room);
}

// What is unknown is 0 in the sound until then.
void AutoregressiveInterpolator::SetUp(std::size_t index) noexcept {
    double* const column = Column(index);
    std::fill_n(column, fStride, 0.0);
    const std::size_t here = fUnknown[index];
    const double* const products = fProducts.data() + fWidth - 1; // from lag 0 on
    const std::size_t end = std::min(fUnknown.size(), index + fWidth);
    for (std::size_t j = index; j < end && fUnknown[j] - here < fWidth; ++j)
        column[j - index] = products[fUnknown[j] - here];
    fValues[index] = -DotProduct(fProducts.data(), fSound.data() + here - (fWidth - 1), 2 * fWidth - 1);
}

// Cholesky's factorisation, column by column. False when the matrix is not positive, which only numbers out of all
// proportion can cause.
bool AutoregressiveInterpolator::Factorise(std::size_t index) noexcept {
    SubtractEarlierColumns(fBand.data(), fWidth, index);
    double* const column = Column(index);
    if (!(column[0] > 0)) return false;
    const double scale = 1 / std::sqrt(column[0]);
    for (std::size_t k = 0; k < fWidth; ++k)
        column[k] *= scale;
    return true;
}

void AutoregressiveInterpolator::SolveForward(std::size_t index) noexcept {
    const double* const column = Column(index);
    double* const values = fValues.data() + index;
    *values /= column[0];
    SubtractScaled(column + 1, *values, values + 1, std::min(fWidth, fUnknown.size() - index) - 1);
}

void AutoregressiveInterpolator::SolveBack(std::size_t index) noexcept {
    const double* const column = Column(index);
    double* const values = fValues.data() + index;
    const std::size_t later = std::min(fWidth, fUnknown.size() - index) - 1;
    *values = (*values - DotProduct(column + 1, values + 1, later)) / column[0];
}

} // namespace qoc::dsp
