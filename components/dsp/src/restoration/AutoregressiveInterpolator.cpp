#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"

#include "qoc/dsp/math/DotProduct.h"
#include "restoration/BandColumns.h"
#include "restoration/PredictionErrors.h"

#include <algorithm>
#include <utility>

namespace qoc::dsp {

void AutoregressiveInterpolator::Prepare(std::size_t mostUnknown, std::size_t largestOrder) {
    fProducts.assign(2 * largestOrder + 1, 0.0);
    fPlaces.assign(mostUnknown, {});
    fShare = 1;
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
    FindProducts(coefficients);
    PlaceColumns();
    for (std::size_t i = 0; i < unknown.size(); ++i)
        fBefore[i] = std::exchange(sound[unknown[i]], 0);
}

void AutoregressiveInterpolator::FindProducts(std::span<const double> coefficients) noexcept {
    for (std::size_t lag = 0; lag < fWidth; ++lag) {
        double sum = 0;
        for (std::size_t k = 0; k + lag < fWidth; ++k)
            sum += coefficients[k] * coefficients[k + lag];
        fProducts[fWidth - 1 + lag] = fProducts[fWidth - 1 - lag] = sum;
    }
}

// The equations of a gap that stands alone are the first ones of any longer gap that does: they all share the columns
// of the longest.
void AutoregressiveInterpolator::PlaceColumns() noexcept {
    std::size_t longest = 0; // where it begins
    std::size_t length = 0;
    for (std::size_t begin = 0, end = 0; begin < fUnknown.size(); begin = end) {
        end = EndOfGap(begin);
        if (!IsAlone(begin, end) || end - begin <= length) continue;
        longest = begin;
        length = end - begin;
    }
    fColumns = length;
    for (std::size_t begin = 0, end = 0; begin < fUnknown.size(); begin = end) {
        end = EndOfGap(begin);
        const bool isAlone = IsAlone(begin, end);
        const std::size_t last = isAlone ? end : fUnknown.size();
        for (std::size_t i = begin; i < end; ++i)
            fPlaces[i] = {isAlone ? longest + (i - begin) : i, std::min(last, i + fWidth)};
        fColumns += isAlone ? 0 : end - begin;
    }
    fFactorised = 0;
    fFirstColumn = 0;
    if (!fUnknown.empty()) fShare = static_cast<double>(fColumns) / static_cast<double>(fUnknown.size());
}

std::size_t AutoregressiveInterpolator::EndOfGap(std::size_t index) const noexcept {
    do
        ++index;
    while (index < fUnknown.size() && fUnknown[index] == fUnknown[index - 1] + 1);
    return index;
}

// No error that an unknown sample takes part in has one of another gap in it.
bool AutoregressiveInterpolator::IsAlone(std::size_t index, std::size_t end) const noexcept {
    const bool isFirst = index == 0 || fUnknown[index] - fUnknown[index - 1] >= fWidth;
    return isFirst && (end == fUnknown.size() || fUnknown[end] - fUnknown[end - 1] >= fWidth);
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
    constexpr double kTogether = 8;
    const double most = kTogether * PieceCost(fStage, fWidth);
    double cost = 0;
    while (!IsDone() && fPlace < fUnknown.size() && cost < most)
        cost += Do();
    if (IsDone() || fPlace < fUnknown.size()) return cost;
    fPlace = 0;
    fStage = static_cast<Stage>(static_cast<int>(fStage) + 1);
    if (fStage == Stage::kBound && !fIsBounded) fStage = Stage::kDone;
    return cost;
}

double AutoregressiveInterpolator::CostLeft() const noexcept {
    double cost = 0;
    for (Stage stage = fStage; stage != Stage::kDone; stage = static_cast<Stage>(static_cast<int>(stage) + 1)) {
        const std::size_t all = stage == Stage::kFactorise ? fColumns : fUnknown.size();
        const std::size_t done = stage != fStage ? 0 : stage == Stage::kFactorise ? fFactorised : fPlace;
        cost += PieceCost(stage, fWidth) * static_cast<double>(all - done);
    }
    return cost;
}

// As many columns are shared as the last time.
double AutoregressiveInterpolator::CostOf(std::size_t unknown, std::size_t order) const noexcept {
    double cost = 0;
    for (Stage stage = Stage::kSetUp; stage != Stage::kDone; stage = static_cast<Stage>(static_cast<int>(stage) + 1))
        cost += PieceCost(stage, order + 1) * (stage == Stage::kFactorise ? fShare : 1) * static_cast<double>(unknown);
    return cost;
}

// Of one unknown sample, or column, in nanoseconds, about.
double AutoregressiveInterpolator::PieceCost(Stage stage, std::size_t width) const noexcept {
    constexpr double kSetUpCost = 0.4;    // a coefficient
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

double AutoregressiveInterpolator::Do() noexcept {
    switch (fStage) {
    case Stage::kSetUp: return SetUp();
    case Stage::kFactorise: return Factorise();
    case Stage::kSolveForward: SolveForward(fPlace++); break;
    case Stage::kSolveBack: SolveBack(fUnknown.size() - ++fPlace); break;
    case Stage::kStore: StoreValues(); break;
    case Stage::kBound: BoundNextGap(); break;
    case Stage::kDone: break;
    }
    return PieceCost(fStage, fWidth);
}

// Numbers out of all proportion leave the sound as it was.
void AutoregressiveInterpolator::StoreValues() noexcept {
    for (std::size_t i = 0; i < fUnknown.size(); ++i)
        fSound[fUnknown[i]] = fIsSolvable ? fValues[i] : fBefore[i];
    fPlace = fUnknown.size();
    if (!fIsSolvable) fStage = Stage::kDone;
}

void AutoregressiveInterpolator::BoundNextGap() noexcept {
    const std::size_t first = std::exchange(fPlace, EndOfGap(fPlace));
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

// Of several samples of a gap. What is unknown is 0 in the sound until it is known.
double AutoregressiveInterpolator::SetUp() noexcept {
    constexpr std::size_t kMost = 16;
    const std::size_t begin = fPlace;
    while (fPlace < fUnknown.size() && fPlace < begin + kMost && fUnknown[fPlace] - fUnknown[begin] == fPlace - begin)
        SetUpColumn(fPlace++);
    double* const values = fValues.data() + begin;
    const double* const sound = fSound.data() + fUnknown[begin] - (fWidth - 1);
    ComputePredictionErrors(std::span(fProducts).first(2 * fWidth - 1), sound, values, 0, fPlace - begin, 1);
    for (std::size_t i = 0; i < fPlace - begin; ++i)
        values[i] = -values[i];
    return PieceCost(Stage::kSetUp, fWidth) * static_cast<double>(fPlace - begin);
}

void AutoregressiveInterpolator::SetUpColumn(std::size_t index) noexcept {
    if (!HasOwnColumn(index)) return;
    double* const column = Column(index);
    std::fill_n(column, fStride, 0.0);
    const double* const products = fProducts.data() + fWidth - 1; // from lag 0 on
    for (std::size_t j = index; j < fPlaces[index].end && fUnknown[j] - fUnknown[index] < fWidth; ++j)
        column[j - index] = products[fUnknown[j] - fUnknown[index]];
}

// Cholesky's factorisation, column by column. The matrix is positive, or numbers are out of all proportion.
double AutoregressiveInterpolator::Factorise() noexcept {
    constexpr double kNothing = 1; // nanoseconds
    const std::size_t index = fPlace++;
    if (!HasOwnColumn(index)) {
        fFirstColumn = fPlace;
        return kNothing;
    }
    ++fFactorised;
    fIsSolvable = FactoriseColumn(fBand.data(), fWidth, fFirstColumn, index);
    if (!fIsSolvable) StoreValues();
    return PieceCost(Stage::kFactorise, fWidth);
}

void AutoregressiveInterpolator::SolveForward(std::size_t index) noexcept {
    const auto [place, end] = fPlaces[index];
    const double* const column = Column(place);
    double* const values = fValues.data() + index;
    *values /= column[0];
    SubtractScaled(column + 1, *values, values + 1, end - index - 1);
}

void AutoregressiveInterpolator::SolveBack(std::size_t index) noexcept {
    const auto [place, end] = fPlaces[index];
    const double* const column = Column(place);
    double* const values = fValues.data() + index;
    *values = (*values - DotProduct(column + 1, values + 1, end - index - 1)) / column[0];
}

} // namespace qoc::dsp
