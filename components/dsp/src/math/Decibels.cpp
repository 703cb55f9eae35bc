// Compiled once for every kind of vectors.
#include "qoc/dsp/math/Decibels.h"

#include <numbers>

// As for the FFT: vectors of no known length can't stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "math/Decibels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <hwy/contrib/math/math-inl.h>

#include "math/VectorLoops.h"

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Vector = hn::Vec<DoubleLanes>;

void Factors(std::span<double> decibels) {
    const DoubleLanes lanes;
    const Vector window = hn::Set(lanes, kMeantToBeZero);
    const Vector scale = hn::Set(lanes, std::numbers::ln10 / 20);
    Replace(decibels, 0, [&](Vector x) HWY_ATTR {
        const Vector meant = hn::IfThenZeroElse(hn::Lt(hn::Abs(x), window), x);
        return hn::Exp(lanes, hn::Mul(scale, meant));
    });
}

void Levels(std::span<double> powers) {
    const DoubleLanes lanes;
    const Vector scale = hn::Set(lanes, 10 / std::numbers::ln10);
    Replace(powers, 1, [&](Vector x) HWY_ATTR { return hn::Mul(scale, hn::Log(lanes, x)); });
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(Factors);
HWY_EXPORT(Levels);

void ToFactors(std::span<double> decibels) noexcept {
    HWY_DYNAMIC_DISPATCH(Factors)(decibels);
}

void ToDecibels(std::span<double> powers) noexcept {
    HWY_DYNAMIC_DISPATCH(Levels)(powers);
}

} // namespace qoc::dsp
#endif
