#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"

#include "qoc/dsp/math/UnrolledSum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

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
    if (RestoreUnbounded(coefficients, unknown, sound)) Bound(unknown, sound);
}

bool AutoregressiveInterpolator::RestoreUnbounded(std::span<const double> coefficients,
                                                  std::span<const std::size_t> unknown,
                                                  std::span<double> sound) noexcept {
    if (unknown.empty()) return false;
    for (std::size_t i = 0; i < unknown.size(); ++i)
        fBefore[i] = sound[unknown[i]];
    SetUp(coefficients, unknown, sound);
    const bool isSolvable = Factorise(unknown.size());
    if (isSolvable) Solve(unknown.size());
    for (std::size_t i = 0; i < unknown.size(); ++i)
        sound[unknown[i]] = isSolvable ? fValues[i] : fBefore[i];
    return isSolvable;
}

void AutoregressiveInterpolator::Bound(std::span<const std::size_t> unknown, std::span<double> sound) const noexcept {
    for (std::size_t first = 0, next = 0; first < unknown.size(); first = next) {
        next = first + 1;
        while (next < unknown.size() && unknown[next] == unknown[next - 1] + 1)
            ++next;
        BoundGap(unknown, unknown.subspan(first, next - first), sound);
    }
}

// Within what the samples around swing between, and half as much again to either side: a model of a resonance may
// want more when something else than the sound stands beside the gap.
void AutoregressiveInterpolator::BoundGap(std::span<const std::size_t> unknown, std::span<const std::size_t> gap,
                                          std::span<double> sound) const noexcept {
    constexpr double kRoom = 0.5;
    constexpr std::size_t kGapsAround = 2;
    const std::size_t reach = fWidth - 1 + kGapsAround * gap.size();
    const std::size_t end = std::min(sound.size(), gap.back() + 1 + reach);
    double lo = sound[gap.front() - 1];
    double hi = lo;
    for (std::size_t i = gap.front() - std::min(gap.front(), reach); i < end; ++i) {
        if (std::ranges::binary_search(unknown, i)) continue;
        lo = std::min(lo, sound[i]);
        hi = std::max(hi, sound[i]);
    }
    const double room = kRoom * (hi - lo);
    for (const std::size_t place : gap)
        sound[place] = std::clamp(sound[place], lo - room, hi + room);
}

void AutoregressiveInterpolator::SetUp(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                                       std::span<double> sound) noexcept {
    fWidth = coefficients.size();
    for (std::size_t lag = 0; lag < fWidth; ++lag) {
        double sum = 0;
        for (std::size_t k = 0; k + lag < fWidth; ++k)
            sum += coefficients[k] * coefficients[k + lag];
        fProducts[lag] = sum;
    }
    for (const std::size_t place : unknown)
        sound[place] = 0;
    for (std::size_t i = 0; i < unknown.size(); ++i) {
        double* const column = Column(i);
        std::fill_n(column, fWidth, 0.0);
        for (std::size_t j = i; j < std::min(unknown.size(), i + fWidth) && unknown[j] - unknown[i] < fWidth; ++j)
            column[j - i] = fProducts[unknown[j] - unknown[i]];
        const double* const middle = sound.data() + unknown[i];
        const auto around = [&](std::size_t lag) { return fProducts[lag] * (*(middle - lag) + middle[lag]); };
        fValues[i] = -UnrolledSum<double>(1, fWidth, around);
    }
}

// Cholesky's factorisation, column by column. False when the matrix is not positive, which only numbers out of all
// proportion can cause.
bool AutoregressiveInterpolator::Factorise(std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        SubtractEarlier(i);
        double* const column = Column(i);
        if (!(column[0] > 0)) return false;
        const double scale = 1 / std::sqrt(column[0]);
        for (std::size_t k = 0; k < fWidth; ++k)
            column[k] *= scale;
    }
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

void AutoregressiveInterpolator::Solve(std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const double* const column = Column(i);
        fValues[i] /= column[0];
        for (std::size_t k = 1; k < std::min(fWidth, count - i); ++k)
            fValues[i + k] -= column[k] * fValues[i];
    }
    for (std::size_t i = count; i-- > 0;) {
        const double* const column = Column(i);
        const double* const later = fValues.data() + i;
        const std::size_t length = std::min(fWidth, count - i);
        fValues[i] =
            (fValues[i] - UnrolledSum<double>(1, length, [&](std::size_t k) { return column[k] * later[k]; })) /
            column[0];
    }
}

} // namespace qoc::dsp
