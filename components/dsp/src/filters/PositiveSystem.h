#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace qoc::dsp {

// Normal equations, of `Most` unknowns at the most. A value; real time safe.
template <std::size_t Most>
class PositiveSystem {
public:
    explicit PositiveSystem(std::size_t size) noexcept : fSize(size) {}

    double& Diagonal(std::size_t i) noexcept { return fMatrix[i][i]; }
    double& Right(std::size_t i) noexcept { return fRight[i]; }
    // One equation row . x = value of an overdetermined system, into the normal equations.
    void Add(const std::array<double, Most>& row, double value, double weight) noexcept {
        for (std::size_t i = 0; i < fSize; ++i) {
            const double weighted = weight * row[i];
            fRight[i] += weighted * value;
            for (std::size_t j = 0; j <= i; ++j)
                fMatrix[i][j] += weighted * row[j];
        }
    }
    // By Cholesky's method.
    std::array<double, Most> Solved() const noexcept {
        constexpr double kTiny = 1e-300; // a pivot that rounding has made none
        auto lower = fMatrix;
        auto x = fRight;
        for (std::size_t i = 0; i < fSize; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = lower[i][j];
                for (std::size_t k = 0; k < j; ++k)
                    sum -= lower[i][k] * lower[j][k];
                lower[i][j] = i == j ? std::sqrt(std::max(sum, kTiny)) : sum / lower[j][j];
            }
            for (std::size_t k = 0; k < i; ++k)
                x[i] -= lower[i][k] * x[k];
            x[i] /= lower[i][i];
        }
        for (std::size_t i = fSize; i-- > 0;) {
            for (std::size_t k = i + 1; k < fSize; ++k)
                x[i] -= lower[k][i] * x[k];
            x[i] /= lower[i][i];
        }
        return x;
    }

private:
    std::size_t fSize;
    std::array<std::array<double, Most>, Most> fMatrix{};
    std::array<double, Most> fRight{};
};

} // namespace qoc::dsp
