#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Fills in samples that are lost so that a linear prediction's errors become as small as they can: the least squares
// interpolation of Janssen, Veldhuis and Vries, "Adaptive interpolation of discrete-time signals that can be modeled as
// autoregressive processes" (1986). Its equations are banded; the band is as wide as the order of the prediction. What
// it fills in stays within the reach of the sound around, whatever the prediction. Owned by the effect that uses it;
// nothing but Prepare allocates.
class AutoregressiveInterpolator {
public:
    // For frames with up to so many lost samples, and predictions of up to that order. Allocates.
    void Prepare(std::size_t mostUnknown, std::size_t largestOrder);

    // Replaces the samples of `sound` at the places `unknown`: ascending, at most as many as prepared, none of them
    // among the first or last samples of the sound, as many as the order. `coefficients` as LinearPrediction tells
    // them. Where numbers are out of all proportion, the sound stays.
    void Restore(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                 std::span<double> sound) noexcept;

    // The same for those who know better bounds: what it fills in may lie anywhere. False when the sound stayed.
    bool RestoreUnbounded(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                          std::span<double> sound) noexcept;

private:
    void SetUp(std::span<const double> coefficients, std::span<const std::size_t> unknown,
               std::span<double> sound) noexcept;
    bool Factorise(std::size_t count) noexcept;
    void SubtractEarlier(std::size_t index) noexcept;
    void Solve(std::size_t count) noexcept;
    void Bound(std::span<const std::size_t> unknown, std::span<double> sound) const noexcept;
    void BoundGap(std::span<const std::size_t> unknown, std::span<const std::size_t> gap,
                  std::span<double> sound) const noexcept;
    // Column `index` of the band's lower half, from the diagonal on; zeros behind the last row.
    double* Column(std::size_t index) noexcept { return fBand.data() + index * fWidth; }

    std::size_t fWidth = 1; // order + 1
    std::vector<double> fProducts;
    std::vector<double> fBand;
    std::vector<double> fValues;
    std::vector<double> fBefore;
};

} // namespace qoc::dsp
