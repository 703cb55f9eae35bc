// Compiled once for every kind of vectors; none of it may contract products and sums, so that all round alike.
#include "reverb/LineVectors.h"

#include <array>
#include <cstddef>

// Vectors whose length is not known when it is compiled can't stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "reverb/LineVectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<float, 8>;
using Vector = hn::Vec<Lanes>;
// Where half of the lines are in registers at once.
using WideLanes = hn::CappedTag<float, 16>;
using WideVector = hn::Vec<WideLanes>;

template <typename Tag, std::size_t kCount>
HWY_INLINE std::array<hn::Vec<Tag>, kCount> LoadAt(Tag tag, const SoundPiece* lines, std::size_t at) {
    std::array<hn::Vec<Tag>, kCount> x;
    for (std::size_t k = 0; k < kCount; ++k)
        x[k] = hn::LoadU(tag, &lines[k][at]);
    return x;
}

// What is done with all pairs of lines that are a stride apart, for strides of 1, 2, 4... A stride is a constant of its
// own, or else the lines would not stay in registers.
template <std::size_t kStride = 1, std::size_t kCount, typename Pair>
HWY_INLINE void ForAllPairs(std::array<WideVector, kCount>& x, const Pair& pair) {
    if constexpr (kStride < kCount) {
        for (std::size_t k = 0; k < kCount; ++k) {
            if ((k & kStride) == 0) pair(x[k], x[k + kStride]);
        }
        ForAllPairs<2 * kStride>(x, pair);
    }
}

void Turn(const SoundPiece& tangent, const SoundPiece& gain, const float* const* from, float* const* to) {
    constexpr std::size_t kCount = 16;
    const WideLanes lanes;
    for (std::size_t i = 0; i < kPieceFrames; i += hn::Lanes(lanes)) {
        const WideVector t = hn::LoadU(lanes, &tangent[i]);
        const WideVector g = hn::LoadU(lanes, &gain[i]);
        std::array<WideVector, kCount> x;
        for (std::size_t k = 0; k < kCount; ++k)
            x[k] = hn::Mul(IsUpsideDown(k) ? hn::Neg(g) : g, hn::LoadU(lanes, from[k] + i));
        // By an eighth of a turn nothing is multiplied.
        if (hn::AllTrue(lanes, hn::Eq(t, hn::Set(lanes, 1.0F)))) {
            ForAllPairs(x, [](WideVector& one, WideVector& other) HWY_ATTR {
                const WideVector before = one;
                one = hn::Add(one, other);
                other = hn::Sub(other, before);
            });
        } else {
            ForAllPairs(x, [&](WideVector& one, WideVector& other) HWY_ATTR {
                const WideVector before = one;
                one = hn::Add(one, hn::Mul(t, other));
                other = hn::Sub(other, hn::Mul(t, before));
            });
        }
        for (std::size_t k = 0; k < kCount; ++k)
            hn::StoreU(x[k], lanes, to[k] + i);
    }
}

void Sum(const float* const* from, SoundPiece& sum) {
    constexpr std::size_t kCount = 16;
    const WideLanes lanes;
    for (std::size_t i = 0; i < kPieceFrames; i += hn::Lanes(lanes)) {
        WideVector x = hn::Zero(lanes);
        for (std::size_t k = 0; k < kCount; ++k) {
            const WideVector line = hn::LoadU(lanes, from[k] + i);
            x = IsUpsideDown(k) ? hn::Sub(x, line) : hn::Add(x, line);
        }
        hn::StoreU(x, lanes, &sum[i]);
    }
}

// The whole piece stays in registers.
void AddScaled(const float* const* from, const float* gains, std::size_t count, SoundPiece& sum) {
    const Lanes lanes;
    constexpr std::size_t kVectors = kPieceFrames / hn::MaxLanes(Lanes());
    std::array<Vector, kVectors> x;
    for (std::size_t i = 0; i < kVectors; ++i)
        x[i] = hn::LoadU(lanes, &sum[i * hn::Lanes(lanes)]);
    for (std::size_t k = 0; k < count; ++k) {
        const Vector gain = hn::Set(lanes, gains[k]);
        for (std::size_t i = 0; i < kVectors; ++i)
            x[i] = hn::Add(x[i], hn::Mul(gain, hn::LoadU(lanes, from[k] + i * hn::Lanes(lanes))));
    }
    for (std::size_t i = 0; i < kVectors; ++i)
        hn::StoreU(x[i], lanes, &sum[i * hn::Lanes(lanes)]);
}

template <std::size_t kCount>
HWY_INLINE void Hadamard(std::array<WideVector, kCount>& x) {
    ForAllPairs(x, [](WideVector& one, WideVector& other) HWY_ATTR {
        const WideVector before = one;
        one = hn::Add(one, other);
        other = hn::Sub(before, other);
    });
}

void Mix(const SoundPiece& cosine, const SoundPiece& sine, SoundPiece* lines) {
    constexpr std::size_t kHalf = 16;
    const WideLanes lanes;
    const WideVector scale = hn::Set(lanes, 0.25F); // the transform of kHalf lines has four times their level
    for (std::size_t i = 0; i < kPieceFrames; i += hn::Lanes(lanes)) {
        auto first = LoadAt<WideLanes, kHalf>(lanes, lines, i);
        Hadamard(first);
        auto second = LoadAt<WideLanes, kHalf>(lanes, lines + kHalf, i);
        Hadamard(second);
        const WideVector c = hn::LoadU(lanes, &cosine[i]);
        const WideVector s = hn::Mul(scale, hn::LoadU(lanes, &sine[i]));
        for (std::size_t k = 0; k < kHalf; ++k) {
            float* const one = &lines[k][i];
            float* const other = &lines[k + kHalf][i];
            hn::StoreU(hn::Add(hn::Mul(c, hn::LoadU(lanes, one)), hn::Mul(s, second[k])), lanes, one);
            hn::StoreU(hn::Sub(hn::Mul(c, hn::LoadU(lanes, other)), hn::Mul(s, first[k])), lanes, other);
        }
    }
}

#if HWY_TARGET == HWY_SCALAR
void Shelve(const LineShelves& shelves, const float* const* sound, SoundPiece* lines) {
    for (std::size_t line = 0; line < shelves.b0.size(); ++line) {
        float input = shelves.inputBefore[line];
        float output = shelves.outputBefore[line];
        for (std::size_t i = 0; i < kPieceFrames; ++i) {
            output = shelves.b0[line] * sound[line][i] + shelves.b1[line] * input - shelves.a1[line] * output;
            input = sound[line][i];
            lines[line][i] = output;
        }
    }
}
#else
// In each block of four lanes four lines, of as many blocks as there are.
constexpr std::size_t kShelved = hn::MaxLanes(Lanes());
using Square = std::array<Vector, 4>;
using Pairs = hn::Repartition<double, Lanes>;

// Four samples of each line become the samples one after the other, and back.
HWY_INLINE Square Transposed(const Square& x) {
    const Lanes lanes;
    const Pairs pairs;
    const auto a = hn::BitCast(pairs, hn::InterleaveLower(lanes, x[0], x[1]));
    const auto b = hn::BitCast(pairs, hn::InterleaveUpper(lanes, x[0], x[1]));
    const auto c = hn::BitCast(pairs, hn::InterleaveLower(lanes, x[2], x[3]));
    const auto d = hn::BitCast(pairs, hn::InterleaveUpper(lanes, x[2], x[3]));
    return {hn::BitCast(lanes, hn::InterleaveLower(pairs, a, c)), hn::BitCast(lanes, hn::InterleaveUpper(pairs, a, c)),
            hn::BitCast(lanes, hn::InterleaveLower(pairs, b, d)), hn::BitCast(lanes, hn::InterleaveUpper(pairs, b, d))};
}

// The shelves of some lines, a lane each.
struct Shelves {
    HWY_INLINE Shelves(const LineShelves& shelves, std::size_t line)
        : b0(hn::LoadU(Lanes(), &shelves.b0[line])), b1(hn::LoadU(Lanes(), &shelves.b1[line])),
          a1(hn::LoadU(Lanes(), &shelves.a1[line])), input(hn::LoadU(Lanes(), &shelves.inputBefore[line])),
          output(hn::LoadU(Lanes(), &shelves.outputBefore[line])) {}

    HWY_INLINE void Process(const float* const* sound, SoundPiece* lines, std::size_t at) {
        Square x;
        for (std::size_t k = 0; k < x.size(); ++k)
            x[k] = Load(sound + k, at);
        x = Transposed(x);
        for (Vector& now : x) {
            output = hn::Sub(hn::Add(hn::Mul(b0, now), hn::Mul(b1, input)), hn::Mul(a1, output));
            input = now;
            now = output;
        }
        x = Transposed(x);
        for (std::size_t k = 0; k < x.size(); ++k)
            Store(x[k], lines + k, at);
    }

    // Of every fourth line.
    static HWY_INLINE Vector Load(const float* const* sound, std::size_t at) {
        if constexpr (kShelved == 4) {
            return hn::LoadU(Lanes(), sound[0] + at);
        } else {
            const hn::Half<Lanes> half;
            return hn::Combine(Lanes(), hn::LoadU(half, sound[4] + at), hn::LoadU(half, sound[0] + at));
        }
    }
    static HWY_INLINE void Store(Vector x, SoundPiece* lines, std::size_t at) {
        if constexpr (kShelved == 4) {
            hn::StoreU(x, Lanes(), &lines[0][at]);
        } else {
            const hn::Half<Lanes> half;
            hn::StoreU(hn::LowerHalf(half, x), half, &lines[0][at]);
            hn::StoreU(hn::UpperHalf(half, x), half, &lines[4][at]);
        }
    }

    Vector b0;
    Vector b1;
    Vector a1;
    Vector input;
    Vector output;
};

// Two recursions by turns: each waits for itself.
void Shelve(const LineShelves& shelves, const float* const* sound, SoundPiece* lines) {
    for (std::size_t line = 0; line < shelves.b0.size(); line += 2 * kShelved) {
        const std::size_t next = line + kShelved;
        Shelves one(shelves, line);
        Shelves other(shelves, next);
        for (std::size_t i = 0; i < kPieceFrames; i += 4) {
            one.Process(sound + line, lines + line, i);
            other.Process(sound + next, lines + next, i);
        }
    }
}
#endif

void Scale(const float* gains, const float* const* sound, SoundPiece* lines, std::size_t count) {
    const WideLanes lanes;
    for (std::size_t k = 0; k < count; ++k) {
        const WideVector gain = hn::Set(lanes, gains[k]);
        for (std::size_t i = 0; i < kPieceFrames; i += hn::Lanes(lanes))
            hn::StoreU(hn::Mul(gain, hn::LoadU(lanes, sound[k] + i)), lanes, &lines[k][i]);
    }
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(Turn);
HWY_EXPORT(Sum);
HWY_EXPORT(AddScaled);
HWY_EXPORT(Mix);
HWY_EXPORT(Shelve);
HWY_EXPORT(Scale);

void TurnLines(const SoundPiece& tangent, const SoundPiece& gain, std::span<const float* const, 16> from,
               std::span<float* const, 16> to) noexcept {
    HWY_DYNAMIC_DISPATCH(Turn)(tangent, gain, from.data(), to.data());
}

void SumLines(std::span<const float* const, 16> from, SoundPiece& sum) noexcept {
    HWY_DYNAMIC_DISPATCH(Sum)(from.data(), sum);
}

void AddLines(std::span<const float* const> from, std::span<const float> gains, SoundPiece& sum) noexcept {
    HWY_DYNAMIC_DISPATCH(AddScaled)(from.data(), gains.data(), from.size(), sum);
}

void MixLines(const SoundPiece& cosine, const SoundPiece& sine, std::span<SoundPiece, 32> lines) noexcept {
    HWY_DYNAMIC_DISPATCH(Mix)(cosine, sine, lines.data());
}

void ShelveLines(const LineShelves& shelves, std::span<const float* const> sound,
                 std::span<SoundPiece> lines) noexcept {
    HWY_DYNAMIC_DISPATCH(Shelve)(shelves, sound.data(), lines.data());
}

void ScaleLines(std::span<const float> gains, std::span<const float* const> sound,
                std::span<SoundPiece> lines) noexcept {
    HWY_DYNAMIC_DISPATCH(Scale)(gains.data(), sound.data(), lines.data(), lines.size());
}

} // namespace qoc::dsp
#endif
