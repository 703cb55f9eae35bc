// Compiled once for every kind of vectors; none of it may contract products and sums, so that all round alike.
#include "qoc/dsp/math/DotProduct.h"

#include <array>

// Vectors whose length is not known when it is compiled can't stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "math/DotProduct.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<double, 4>;

HWY_INLINE hn::Vec<Lanes> Load(const double* from) {
    return hn::LoadU(Lanes(), from);
}
HWY_INLINE hn::Vec<Lanes> Load(const float* from) {
    return hn::PromoteTo(Lanes(), hn::LoadU(hn::Rebind<float, Lanes>(), from));
}

// So many sums side by side on every processor, for a sum has to wait for the one before it.
template <class Number>
HWY_INLINE double SumUp(const Number* one, const Number* other, std::size_t count) {
    constexpr std::size_t kSums = 8;
    constexpr std::size_t kWidth = hn::MaxLanes(Lanes());
    std::array<hn::Vec<Lanes>, kSums / kWidth> vectors;
    vectors.fill(hn::Zero(Lanes()));
    std::size_t i = 0;
    for (; i + kSums <= count; i += kSums) {
        for (std::size_t k = 0; k < vectors.size(); ++k)
            vectors[k] = hn::Add(vectors[k], hn::Mul(Load(one + i + k * kWidth), Load(other + i + k * kWidth)));
    }
    std::array<double, kSums> sums;
    for (std::size_t k = 0; k < vectors.size(); ++k)
        hn::StoreU(vectors[k], Lanes(), sums.data() + k * kWidth);
    for (std::size_t k = 0; i + k < count; ++k)
        sums[k] += double{one[i + k]} * double{other[i + k]};
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

double OfDoubles(const double* one, const double* other, std::size_t count) {
    return SumUp(one, other, count);
}

double OfFloats(const float* one, const float* other, std::size_t count) {
    return SumUp(one, other, count);
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(OfDoubles);
HWY_EXPORT(OfFloats);

double DotProduct(const double* one, const double* other, std::size_t count) noexcept {
    return HWY_DYNAMIC_DISPATCH(OfDoubles)(one, other, count);
}

double DotProduct(const float* one, const float* other, std::size_t count) noexcept {
    return HWY_DYNAMIC_DISPATCH(OfFloats)(one, other, count);
}

} // namespace qoc::dsp
#endif
