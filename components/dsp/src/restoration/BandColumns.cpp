// Compiled once for every kind of vectors; none of it may contract products and sums, so that all round alike.
#include "restoration/BandColumns.h"

#include <algorithm>
#include <array>
#include <cmath>

// The ends of columns have room for four values.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "restoration/BandColumns.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<double, 4>;

// kCount columns, the values of row `index` on: what all of them bring is summed up first, so that the column is read
// and written less often.
template <std::size_t kCount>
HWY_INLINE void SubtractColumns(const double* band, std::size_t width, std::size_t first, std::size_t index,
                                double* column) {
    const Lanes lanes;
    const std::size_t stride = BandStride(width);
    std::array<const double*, kCount> rows;
    std::array<hn::Vec<Lanes>, kCount> factors;
    bool isEmpty = true;
    for (std::size_t k = 0; k < kCount; ++k) {
        rows[k] = band + (first + k) * stride + (index - first - k);
        factors[k] = hn::Set(lanes, *rows[k]);
        isEmpty = isEmpty && *rows[k] == 0;
    }
    if (isEmpty) return;
    // The later a column begins, the farther it reaches; behind their ends the others are zero.
    const std::size_t length = width - (index - first) + kCount - 1;
    for (std::size_t i = 0; i < length; i += hn::Lanes(lanes)) {
        auto sum = hn::Mul(factors[0], hn::LoadU(lanes, rows[0] + i));
        for (std::size_t k = 1; k < kCount; ++k)
            sum = hn::Add(sum, hn::Mul(factors[k], hn::LoadU(lanes, rows[k] + i)));
        hn::StoreU(hn::Sub(hn::LoadU(lanes, column + i), sum), lanes, column + i);
    }
}

bool Factorise(double* band, std::size_t width, std::size_t first, std::size_t index) {
    constexpr std::size_t kTogether = 4;
    double* const column = band + index * BandStride(width);
    first = std::max(first, index - std::min(index, width - 1));
    for (; first + kTogether <= index; first += kTogether)
        SubtractColumns<kTogether>(band, width, first, index, column);
    for (; first < index; ++first)
        SubtractColumns<1>(band, width, first, index, column);
    if (!(column[0] > 0)) return false;
    const Lanes lanes;
    const auto scale = hn::Set(lanes, 1 / std::sqrt(column[0]));
    for (std::size_t i = 0; i < width; i += hn::Lanes(lanes))
        hn::StoreU(hn::Mul(scale, hn::LoadU(lanes, column + i)), lanes, column + i);
    return true;
}

void Subtract(const double* column, double factor, double* values, std::size_t count) {
    const Lanes lanes;
    const auto factors = hn::Set(lanes, factor);
    std::size_t i = 0;
    for (; i + hn::Lanes(lanes) <= count; i += hn::Lanes(lanes))
        hn::StoreU(hn::Sub(hn::LoadU(lanes, values + i), hn::Mul(factors, hn::LoadU(lanes, column + i))), lanes,
                   values + i);
    for (; i < count; ++i)
        values[i] -= factor * column[i];
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(Factorise);
HWY_EXPORT(Subtract);

bool FactoriseColumn(double* band, std::size_t width, std::size_t first, std::size_t index) noexcept {
    return HWY_DYNAMIC_DISPATCH(Factorise)(band, width, first, index);
}

void SubtractScaled(const double* column, double factor, double* values, std::size_t count) noexcept {
    HWY_DYNAMIC_DISPATCH(Subtract)(column, factor, values, count);
}

} // namespace qoc::dsp
#endif
