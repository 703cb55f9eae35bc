// Compiled once for every kind of vectors; none of it may contract products and sums, so that all round alike.
#include "qoc/dsp/math/CubicPieces.h"

// As for the FFT: vectors of no known length can't stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "math/CubicPieces.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "math/VectorLoops.h"

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Vector = hn::Vec<DoubleLanes>;

// Each lane takes the last piece that does not begin behind its place.
HWY_INLINE Vector ValuesAt(std::span<const CubicPieces::Piece> pieces, Vector place) {
    const DoubleLanes lanes;
    Vector from = hn::Set(lanes, pieces.front().from);
    std::array<Vector, 4> powers;
    for (std::size_t k = 0; k < powers.size(); ++k)
        powers[k] = hn::Set(lanes, pieces.front().powers[k]);
    for (const CubicPieces::Piece& piece : pieces.subspan(1)) {
        const Vector begin = hn::Set(lanes, piece.from);
        const auto isReached = hn::Ge(place, begin);
        from = hn::IfThenElse(isReached, begin, from);
        for (std::size_t k = 0; k < powers.size(); ++k)
            powers[k] = hn::IfThenElse(isReached, hn::Set(lanes, piece.powers[k]), powers[k]);
    }
    const Vector x = hn::Sub(place, from);
    Vector value = powers[3];
    for (std::size_t k = 3; k-- > 0;)
        value = hn::Add(hn::Mul(value, x), powers[k]);
    return value;
}

void CubicsAt(std::span<const CubicPieces::Piece> pieces, std::span<double> places) {
    Replace(places, 0, [&](Vector place) HWY_ATTR { return ValuesAt(pieces, place); });
}

void CubicsRise(std::span<const CubicPieces::Piece> pieces, std::span<double> places, double width) {
    const DoubleLanes lanes;
    const Vector half = hn::Set(lanes, width / 2);
    Replace(places, 0, [&](Vector place) HWY_ATTR {
        const Vector behind = ValuesAt(pieces, hn::Add(place, half));
        const Vector before = ValuesAt(pieces, hn::Sub(place, half));
        return hn::Div(hn::Sub(behind, before), hn::Set(lanes, width));
    });
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(CubicsAt);
HWY_EXPORT(CubicsRise);

void CubicPieces::At(std::span<double> places) const noexcept {
    HWY_DYNAMIC_DISPATCH(CubicsAt)(std::span(fPieces).first(fCount), places);
}

void CubicPieces::Rise(std::span<double> places, double width) const noexcept {
    HWY_DYNAMIC_DISPATCH(CubicsRise)(std::span(fPieces).first(fCount), places, width);
}

double CubicPieces::At(double place) const noexcept {
    At(std::span(&place, 1));
    return place;
}

} // namespace qoc::dsp
#endif
