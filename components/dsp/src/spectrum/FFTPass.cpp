// Compiled once for every kind of vectors; none of it may contract products and sums, so that all round alike.
#include "spectrum/FFTPass.h"

#include <algorithm>
#include <array>
#include <cstddef>

// Vectors of more than eight floats gain little here, and those whose length is not known when it is compiled can't
// stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "spectrum/FFTPass.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<float, FFTPass::kGroup>;
using Vector = hn::Vec<Lanes>;

struct Complex {
    Vector real;
    Vector imaginary;
};

HWY_INLINE Complex operator+(const Complex& a, const Complex& b) {
    return {hn::Add(a.real, b.real), hn::Add(a.imaginary, b.imaginary)};
}
HWY_INLINE Complex operator-(const Complex& a, const Complex& b) {
    return {hn::Sub(a.real, b.real), hn::Sub(a.imaginary, b.imaginary)};
}
HWY_INLINE Complex operator*(const Complex& a, const Complex& b) {
    return {hn::Sub(hn::Mul(a.real, b.real), hn::Mul(a.imaginary, b.imaginary)),
            hn::Add(hn::Mul(a.real, b.imaginary), hn::Mul(a.imaginary, b.real))};
}
HWY_INLINE Complex TimesMinusI(const Complex& a) {
    return {a.imaginary, hn::Neg(a.real)};
}
HWY_INLINE Complex Scaled(const Complex& a, Vector scale) {
    return {hn::Mul(a.real, scale), hn::Mul(a.imaginary, scale)};
}

template <std::size_t kRadix>
using Butterfly = std::array<Complex, kRadix>;

HWY_INLINE void Transform(Butterfly<2>& x) {
    x = {x[0] + x[1], x[0] - x[1]};
}

HWY_INLINE void Transform(Butterfly<4>& x) {
    const Complex even = x[0] + x[2];
    const Complex evenTurned = x[0] - x[2];
    const Complex odd = x[1] + x[3];
    const Complex oddTurned = TimesMinusI(x[1] - x[3]);
    x = {even + odd, evenTurned + oddTurned, even - odd, evenTurned - oddTurned};
}

HWY_INLINE void Transform(Butterfly<8>& x) {
    const Vector root = hn::Set(Lanes(), 0.70710678118654752440F); // of a half
    Butterfly<4> sums = {x[0] + x[4], x[1] + x[5], x[2] + x[6], x[3] + x[7]};
    const Complex first = x[1] - x[5];
    const Complex third = x[3] - x[7];
    Butterfly<4> differences = {x[0] - x[4], Scaled(first + TimesMinusI(first), root), TimesMinusI(x[2] - x[6]),
                                Scaled(TimesMinusI(third) - third, root)};
    Transform(sums);
    Transform(differences);
    x = {sums[0], differences[0], sums[1], differences[1], sums[2], differences[2], sums[3], differences[3]};
}

HWY_INLINE Complex Load(const float* real, const float* imaginary, std::size_t at) {
    return {hn::LoadU(Lanes(), real + at), hn::LoadU(Lanes(), imaginary + at)};
}
HWY_INLINE void Store(const Complex& value, const FFTPass& pass, std::size_t at) {
    hn::StoreU(value.real, Lanes(), pass.toReal + at);
    hn::StoreU(value.imaginary, Lanes(), pass.toImaginary + at);
}

// `twiddles`: real and imaginary part by turns.
HWY_INLINE Complex Everywhere(const float* twiddles) {
    return {hn::Set(Lanes(), twiddles[0]), hn::Set(Lanes(), twiddles[1])};
}

// All a butterfly's results go side by side.
template <bool kOfSound>
HWY_INLINE void First(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
    const Lanes lanes;
    for (std::size_t i = begin; i < end; i += hn::Lanes(lanes)) {
        Butterfly<4> x;
        for (std::size_t k = 0; k < 4; ++k) {
            const std::size_t from = i + k * pass.count;
            if constexpr (kOfSound)
                hn::LoadInterleaved2(lanes, ends.soundIn + 2 * from, x[k].real, x[k].imaginary);
            else
                x[k] = Load(pass.fromReal, pass.fromImaginary, from);
        }
        Transform(x);
        for (std::size_t k = 1; k < 4; ++k) {
            const float* const twiddles = pass.twiddles + 2 * (k - 1) * pass.count;
            x[k] = x[k] * Load(twiddles, twiddles + pass.count, i);
        }
        hn::StoreInterleaved4(x[0].real, x[1].real, x[2].real, x[3].real, lanes, pass.toReal + 4 * i);
        hn::StoreInterleaved4(x[0].imaginary, x[1].imaginary, x[2].imaginary, x[3].imaginary, lanes,
                              pass.toImaginary + 4 * i);
    }
}

// Vectors of eight hold the runs of two butterflies, each with its own twiddle factors.
#if HWY_TARGET == HWY_AVX2
HWY_INLINE Complex FactorOfSecond(const float* twiddles) {
    constexpr std::size_t kFactors = 2 * 3;
    const Complex factor = Everywhere(twiddles);
    const Complex next = Everywhere(twiddles + kFactors);
    return {hn::ConcatUpperLower(Lanes(), next.real, factor.real),
            hn::ConcatUpperLower(Lanes(), next.imaginary, factor.imaginary)};
}

HWY_INLINE void StorePairs(Vector a, Vector b, float* to) {
    const Lanes lanes;
    hn::StoreU(hn::ConcatLowerLower(lanes, b, a), lanes, to);
    hn::StoreU(hn::ConcatUpperUpper(lanes, b, a), lanes, to + 4 * 4);
}

HWY_INLINE void StoreSecond(const Butterfly<4>& x, const FFTPass& pass, std::size_t i) {
    for (std::size_t k = 0; k < 4; k += 2) {
        StorePairs(x[k].real, x[k + 1].real, pass.toReal + 4 * i + 4 * k);
        StorePairs(x[k].imaginary, x[k + 1].imaginary, pass.toImaginary + 4 * i + 4 * k);
    }
}
#else
HWY_INLINE Complex FactorOfSecond(const float* twiddles) {
    return Everywhere(twiddles);
}

HWY_INLINE void StoreSecond(const Butterfly<4>& x, const FFTPass& pass, std::size_t i) {
    for (std::size_t k = 0; k < 4; ++k)
        Store(x[k], pass, i + 3 * (i / 4 * 4) + 4 * k);
}
#endif

HWY_INLINE void Second(const FFTPass& pass, std::size_t begin, std::size_t end) {
    constexpr std::size_t kFactors = 2 * 3;
    for (std::size_t i = begin; i < end; i += hn::Lanes(Lanes())) {
        Butterfly<4> x;
        for (std::size_t k = 0; k < 4; ++k)
            x[k] = Load(pass.fromReal, pass.fromImaginary, i + k * pass.count);
        Transform(x);
        for (std::size_t k = 1; k < 4; ++k)
            x[k] = x[k] * FactorOfSecond(pass.twiddles + i / 4 * kFactors + 2 * (k - 1));
        StoreSecond(x, pass, i);
    }
}

template <std::size_t kRadix>
HWY_INLINE void Middle(const FFTPass& pass, std::size_t begin, std::size_t end) {
    constexpr std::size_t kFactors = 2 * (kRadix - 1);
    for (std::size_t i = begin; i < end;) {
        const std::size_t place = i / pass.stride;
        const std::size_t stop = std::min(end, (place + 1) * pass.stride);
        std::array<Complex, kRadix - 1> factors;
        for (std::size_t k = 0; k + 1 < kRadix; ++k)
            factors[k] = Everywhere(pass.twiddles + place * kFactors + 2 * k);
        const std::size_t ahead = (kRadix - 1) * place * pass.stride;
        for (; i < stop; i += hn::Lanes(Lanes())) {
            Butterfly<kRadix> x;
            for (std::size_t k = 0; k < kRadix; ++k)
                x[k] = Load(pass.fromReal, pass.fromImaginary, i + k * pass.count);
            Transform(x);
            Store(x[0], pass, i + ahead);
            for (std::size_t k = 1; k < kRadix; ++k)
                Store(x[k] * factors[k - 1], pass, i + ahead + k * pass.stride);
        }
    }
}

// The inverse has the real and the imaginary parts in each other's place.
template <std::size_t kRadix, bool kToSound>
HWY_INLINE void Last(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
    const Lanes lanes;
    for (std::size_t i = begin; i < end; i += hn::Lanes(lanes)) {
        Butterfly<kRadix> x;
        for (std::size_t k = 0; k < kRadix; ++k)
            x[k] = Load(pass.fromReal, pass.fromImaginary, i + k * pass.count);
        Transform(x);
        for (std::size_t k = 0; k < kRadix; ++k) {
            const std::size_t to = i + k * pass.count;
            if constexpr (kToSound)
                hn::StoreInterleaved2(x[k].imaginary, x[k].real, lanes, ends.soundOut + 2 * to);
            else
                Store(x[k], pass, to);
        }
    }
}

template <template <std::size_t> typename Pass>
HWY_INLINE void ByRadix(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
    switch (pass.radix) {
    case 2: return Pass<2>::Run(pass, ends, begin, end);
    case 4: return Pass<4>::Run(pass, ends, begin, end);
    default: return Pass<8>::Run(pass, ends, begin, end);
    }
}
template <std::size_t kRadix>
struct MiddlePass {
    static HWY_INLINE void Run(const FFTPass& pass, const FFTEnds& /*ends*/, std::size_t begin, std::size_t end) {
        Middle<kRadix>(pass, begin, end);
    }
};
template <std::size_t kRadix>
struct LastPass {
    static HWY_INLINE void Run(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
        Last<kRadix, false>(pass, ends, begin, end);
    }
};
template <std::size_t kRadix>
struct LastPassToSound {
    static HWY_INLINE void Run(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
        Last<kRadix, true>(pass, ends, begin, end);
    }
};

// The bins of a group, counted from 1 on: the last group reaches back over the one before, for the middle bin is none
// of it.
HWY_INLINE std::size_t FirstBin(const FFTPass& pass, std::size_t group) {
    return std::min(1 + group, pass.count / 2 - FFTPass::kGroup);
}

// Of the transforms E of the even and O of the odd samples as one complex Z = E + iO the real one is X = E + wO, and at
// the mirrored bin the conjugate of E - wO (Sorensen, Jones, Heideman and Burrus, "Real-valued fast Fourier transform
// algorithms", 1987).
HWY_INLINE void SpectrumOfComplex(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
    const Lanes lanes;
    const std::size_t size = pass.count;
    float* const out = ends.spectrumOut;
    const Vector half = hn::Set(lanes, 0.5F);
    if (begin == 0) {
        out[0] = pass.fromReal[0] + pass.fromImaginary[0];
        out[2 * size] = pass.fromReal[0] - pass.fromImaginary[0];
        out[1] = out[2 * size + 1] = 0;
        out[size] = pass.fromReal[size / 2];
        out[size + 1] = -pass.fromImaginary[size / 2];
    }
    for (std::size_t group = begin; group < end; group += FFTPass::kGroup) {
        const std::size_t first = FirstBin(pass, group);
        for (std::size_t bin = first; bin < first + FFTPass::kGroup; bin += hn::Lanes(lanes)) {
            const std::size_t mirrored = size + 1 - bin - hn::Lanes(lanes);
            const Complex lower = Load(pass.fromReal, pass.fromImaginary, bin);
            const Complex upper = {hn::Reverse(lanes, hn::LoadU(lanes, pass.fromReal + mirrored)),
                                   hn::Neg(hn::Reverse(lanes, hn::LoadU(lanes, pass.fromImaginary + mirrored)))};
            const Complex even = Scaled(lower + upper, half);
            const Complex odd = TimesMinusI(lower - upper) * Load(pass.twiddles, pass.twiddles + size / 2, bin);
            const Complex below = even + odd;
            const Complex above = even - odd;
            hn::StoreInterleaved2(below.real, below.imaginary, lanes, out + 2 * bin);
            hn::StoreInterleaved2(hn::Reverse(lanes, above.real), hn::Neg(hn::Reverse(lanes, above.imaginary)), lanes,
                                  out + 2 * mirrored);
        }
    }
}

HWY_INLINE void ComplexOfSpectrum(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
    const Lanes lanes;
    const std::size_t size = pass.count;
    const float* const in = ends.spectrumIn;
    const float scale = 0.5F / static_cast<float>(size);
    const Vector scales = hn::Set(lanes, scale);
    const Vector doubled = hn::Set(lanes, 2 * scale); // what makes up for the twiddle factors' half
    if (begin == 0) {
        pass.toReal[0] = (in[0] + in[2 * size]) * scale;
        pass.toImaginary[0] = (in[0] - in[2 * size]) * scale;
        pass.toReal[size / 2] = in[size] * 2 * scale;
        pass.toImaginary[size / 2] = -in[size + 1] * 2 * scale;
    }
    for (std::size_t group = begin; group < end; group += FFTPass::kGroup) {
        const std::size_t first = FirstBin(pass, group);
        for (std::size_t bin = first; bin < first + FFTPass::kGroup; bin += hn::Lanes(lanes)) {
            const std::size_t mirrored = size + 1 - bin - hn::Lanes(lanes);
            Complex lower;
            Complex upper;
            hn::LoadInterleaved2(lanes, in + 2 * bin, lower.real, lower.imaginary);
            hn::LoadInterleaved2(lanes, in + 2 * mirrored, upper.real, upper.imaginary);
            upper = {hn::Reverse(lanes, upper.real), hn::Neg(hn::Reverse(lanes, upper.imaginary))};
            const Complex even = Scaled(lower + upper, scales);
            Complex factor = Load(pass.twiddles, pass.twiddles + size / 2, bin);
            factor.imaginary = hn::Neg(factor.imaginary);
            const Complex odd = Scaled((lower - upper) * factor, doubled);
            const Complex turned = TimesMinusI(odd); // i times it is the opposite
            Store(even - turned, pass, bin);
            const Complex above = even + turned;
            Store({hn::Reverse(lanes, above.real), hn::Neg(hn::Reverse(lanes, above.imaginary))}, pass, mirrored);
        }
    }
}

void RunPass(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) {
    switch (pass.kind) {
    case FFTPass::Kind::kFirst: return First<false>(pass, ends, begin, end);
    case FFTPass::Kind::kFirstOfSound: return First<true>(pass, ends, begin, end);
    case FFTPass::Kind::kSecond: return Second(pass, begin, end);
    case FFTPass::Kind::kMiddle: return ByRadix<MiddlePass>(pass, ends, begin, end);
    case FFTPass::Kind::kLast: return ByRadix<LastPass>(pass, ends, begin, end);
    case FFTPass::Kind::kLastToSound: return ByRadix<LastPassToSound>(pass, ends, begin, end);
    case FFTPass::Kind::kSpectrumOfComplex: return SpectrumOfComplex(pass, ends, begin, end);
    case FFTPass::Kind::kComplexOfSpectrum: return ComplexOfSpectrum(pass, ends, begin, end);
    }
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(RunPass);

void RunFFTPass(const FFTPass& pass, const FFTEnds& ends, std::size_t begin, std::size_t end) noexcept {
    HWY_DYNAMIC_DISPATCH(RunPass)(pass, ends, begin * FFTPass::kGroup, end * FFTPass::kGroup);
}

} // namespace qoc::dsp
#endif
