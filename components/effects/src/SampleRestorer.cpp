#include "qoc/components/SampleRestorer.h"

#include <algorithm>
#include <cmath>

namespace qoc::components {

void SampleRestorer::Prepare(std::size_t mostUnknown, std::size_t largestOrder) {
    fProducts.assign(largestOrder + 1, 0.0);
    fBand.assign(mostUnknown * (largestOrder + 1), 0.0);
    fValues.assign(mostUnknown, 0.0);
    fBefore.assign(mostUnknown, 0.0);
}

void SampleRestorer::Restore(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                             std::span<double> sound) noexcept {
    if (unknown.empty()) return;
    for (std::size_t i = 0; i < unknown.size(); ++i)
        fBefore[i] = sound[unknown[i]];
    SetUp(coefficients, unknown, sound);
    const bool isSolvable = Factorise(unknown.size());
    if (isSolvable) Solve(unknown.size());
    for (std::size_t i = 0; i < unknown.size(); ++i)
        sound[unknown[i]] = isSolvable ? fValues[i] : fBefore[i];
}

void SampleRestorer::SetUp(std::span<const double> coefficients, std::span<const std::size_t> unknown,
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
        double sum = 0;
        const double* const middle = sound.data() + unknown[i];
        for (std::size_t lag = 1; lag < fWidth; ++lag)
            sum += fProducts[lag] * (*(middle - lag) + middle[lag]);
        fValues[i] = -sum;
    }
}

// Cholesky's factorisation, column by column. False when the matrix is not positive, which only numbers out of all
// proportion can cause.
bool SampleRestorer::Factorise(std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        double* const column = Column(i);
        if (!(column[0] > 0)) return false;
        const double scale = 1 / std::sqrt(column[0]);
        const std::size_t length = std::min(fWidth, count - i);
        for (std::size_t k = 0; k < length; ++k)
            column[k] *= scale;
        for (std::size_t k = 1; k < length; ++k) {
            const double factor = column[k];
            if (factor == 0) continue;
            double* const other = Column(i + k);
            for (std::size_t m = k; m < length; ++m)
                other[m - k] -= factor * column[m];
        }
    }
    return true;
}

void SampleRestorer::Solve(std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const double* const column = Column(i);
        fValues[i] /= column[0];
        for (std::size_t k = 1; k < std::min(fWidth, count - i); ++k)
            fValues[i + k] -= column[k] * fValues[i];
    }
    for (std::size_t i = count; i-- > 0;) {
        const double* const column = Column(i);
        for (std::size_t k = 1; k < std::min(fWidth, count - i); ++k)
            fValues[i] -= column[k] * fValues[i + k];
        fValues[i] /= column[0];
    }
}

} // namespace qoc::components
