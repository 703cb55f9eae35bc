// Compiled once for every kind of vectors; none of it may contract products and sums, so that all round alike.
#include "restoration/PredictionErrors.h"

#include <array>

// Vectors whose length is not known when it is compiled can't stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "restoration/PredictionErrors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// As many vectors of errors as fit from `i` on.
template <std::size_t kVectors>
HWY_INLINE std::size_t AddUpVectors(std::span<const double> coefficients, const double* sound, double* errors,
                                    std::size_t i, std::size_t end, std::ptrdiff_t step) {
    const hn::CappedTag<double, 4> lanes;
    const std::size_t width = hn::Lanes(lanes);
    for (; i + kVectors * width <= end; i += kVectors * width) {
        std::array<hn::Vec<decltype(lanes)>, kVectors> sums;
        sums.fill(hn::Zero(lanes));
        const double* here = sound + i;
        for (const double coefficient : coefficients) {
            const auto factor = hn::Set(lanes, coefficient);
            for (std::size_t k = 0; k < kVectors; ++k)
                sums[k] = hn::Add(sums[k], hn::Mul(factor, hn::LoadU(lanes, here + k * width)));
            here += step;
        }
        for (std::size_t k = 0; k < kVectors; ++k)
            hn::StoreU(sums[k], lanes, errors + i + k * width);
    }
    return i;
}

// Several vectors side by side, for a sum has to wait for the one before it.
void AddUp(std::span<const double> coefficients, const double* sound, double* errors, std::size_t begin,
           std::size_t end, std::ptrdiff_t step) {
    std::size_t i = AddUpVectors<4>(coefficients, sound, errors, begin, end, step);
    i = AddUpVectors<1>(coefficients, sound, errors, i, end, step);
    for (; i < end; ++i) {
        double sum = 0;
        const double* here = sound + i;
        for (const double coefficient : coefficients) {
            sum += coefficient * *here;
            here += step;
        }
        errors[i] = sum;
    }
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(AddUp);

void ComputePredictionErrors(std::span<const double> coefficients, const double* sound, double* errors,
                             std::size_t begin, std::size_t end, std::ptrdiff_t step) noexcept {
    HWY_DYNAMIC_DISPATCH(AddUp)(coefficients, sound, errors, begin, end, step);
}

} // namespace qoc::dsp
#endif
