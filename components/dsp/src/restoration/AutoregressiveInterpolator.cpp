#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"

#include "qoc/dsp/math/UnrolledSum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

namespace qoc::dsp {

namespace {

// Neighbours that are worked on at once.
constexpr std::size_t kLanes = 2;
using Lanes __attribute__((vector_size(kLanes * sizeof(double)))) = double;

Lanes Load(const double* from) noexcept {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof(lanes));
    return lanes;
}

void Store(double* to, Lanes lanes) noexcept {
    std::memcpy(to, &lanes, sizeof(lanes));
}

} // namespace

void AutoregressiveInterpolator::Prepare(std::size_t mostUnknown, std::size_t largestOrder) {
    fProducts.assign(largestOrder + 1, 0.0);
    fBand.assign(mostUnknown * (largestOrder + 1), 0.0);
    fValues.assign(mostUnknown, 0.0);
    fBefore.assign(mostUnknown, 0.0);
}

void AutoregressiveInterpolator::Restore(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                                         std::span<double> sound) noexcept {
    Begin(coefficients, unknown, sound);
    while (!IsDone())
        Work();
}

bool AutoregressiveInterpolator::RestoreUnbounded(std::span<const double> coefficients,
                                                  std::span<const std::size_t> unknown,
                                                  std::span<double> sound) noexcept {
    Begin(coefficients, unknown, sound);
    fIsBounded = false;
    while (!IsDone())
        Work();
    return fIsSolvable;
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
    for (std::size_t lag = 0; lag < fWidth; ++lag) {
        double sum = 0;
        for (std::size_t k = 0; k + lag < fWidth; ++k)
            sum += coefficients[k] * coefficients[k + lag];
        fProducts[lag] = sum;
    }
    for (std::size_t i = 0; i < unknown.size(); ++i)
        fBefore[i] = std::exchange(sound[unknown[i]], 0);
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
    constexpr double kProductCost = 1;   // a coefficient
    constexpr double kFactorCost = 0.12; // two coefficients
    constexpr double kBoundCost = 0.3;   // a coefficient
    constexpr double kStoreCost = 2;
    const auto count = static_cast<double>(width);
    switch (stage) {
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

void AutoregressiveInterpolator::SetUp(std::size_t index) noexcept {
    double* const column = Column(index);
    std::fill_n(column, fWidth, 0.0);
    const std::size_t here = fUnknown[index];
    const std::size_t end = std::min(fUnknown.size(), index + fWidth);
    for (std::size_t j = index; j < end && fUnknown[j] - here < fWidth; ++j)
        column[j - index] = fProducts[fUnknown[j] - here];
    const double* const middle = fSound.data() + here;
    const auto around = [&](std::size_t lag) { return fProducts[lag] * (*(middle - lag) + middle[lag]); };
    fValues[index] = -UnrolledSum<double>(1, fWidth, around);
}

// Cholesky's factorisation, column by column. False when the matrix is not positive, which only numbers out of all
// proportion can cause.
bool AutoregressiveInterpolator::Factorise(std::size_t index) noexcept {
    SubtractEarlier(index);
    double* const column = Column(index);
    if (!(column[0] > 0)) return false;
    const double scale = 1 / std::sqrt(column[0]);
    for (std::size_t k = 0; k < fWidth; ++k)
        column[k] *= scale;
    return true;
}

// What the columns before it leave of a column: kTogether of them at a time, so that it is read and written less often.
void AutoregressiveInterpolator::SubtractEarlier(std::size_t index) noexcept {
    constexpr std::size_t kTogether = 4;
    double* const column = Column(index);
    std::size_t first = index >= fWidth ? index - fWidth + 1 : 0;
    for (; first + kTogether <= index; first += kTogether) {
        std::array<const double*, kTogether> rows; // of those columns, from this one's diagonal on
        for (std::size_t k = 0; k < kTogether; ++k)
            rows[k] = Column(first + k) + (index - first - k);
        const auto [a, b, c, d] = std::array{*rows[0], *rows[1], *rows[2], *rows[3]};
        if (a == 0 && b == 0 && c == 0 && d == 0) continue;
        const std::size_t length = fWidth - (index - first);
        std::size_t i = 0;
        for (; i + kLanes <= length; i += kLanes)
            Store(column + i, Load(column + i) - (a * Load(rows[0] + i) + b * Load(rows[1] + i) +
                                                  c * Load(rows[2] + i) + d * Load(rows[3] + i)));
        for (; i < length; ++i)
            column[i] -= a * rows[0][i] + b * rows[1][i] + c * rows[2][i] + d * rows[3][i];
        // The later a column begins, the farther it reaches.
        column[length] -= b * rows[1][length] + c * rows[2][length] + d * rows[3][length];
        column[length + 1] -= c * rows[2][length + 1] + d * rows[3][length + 1];
        column[length + 2] -= d * rows[3][length + 2];
    }
    for (; first < index; ++first) {
        const double* const row = Column(first) + (index - first);
        for (std::size_t i = 0; i < fWidth - (index - first); ++i)
            column[i] -= *row * row[i];
    }
}

void AutoregressiveInterpolator::SolveForward(std::size_t index) noexcept {
    const double* const column = Column(index);
    fValues[index] /= column[0];
    for (std::size_t k = 1; k < std::min(fWidth, fUnknown.size() - index); ++k)
        fValues[index + k] -= column[k] * fValues[index];
}

void AutoregressiveInterpolator::SolveBack(std::size_t index) noexcept {
    const double* const column = Column(index);
    const double* const later = fValues.data() + index;
    const std::size_t length = std::min(fWidth, fUnknown.size() - index);
    const auto sum = UnrolledSum<double>(1, length, [&](std::size_t k) { return column[k] * later[k]; });
    fValues[index] = (fValues[index] - sum) / column[0];
}

} // namespace qoc::dsp
