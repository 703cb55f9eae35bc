// Compiled once for every kind of vectors.
#include "limner/PixelSpans.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "limner/PixelSpans.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kroui::limner::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::uint32_t kOpaque = 255;

HWY_INLINE std::uint32_t AlphaOf(std::uint32_t pixel) {
    return pixel >> 24;
}

#if HWY_TARGET == HWY_SCALAR

// Without vectors there are no groups.
template <std::size_t kPixels>
int FillGroups(std::uint32_t* /*target*/, int begin, int /*count*/, std::uint32_t /*pixel*/) {
    return begin;
}
template <std::size_t kPixels>
int BlendGroups(std::uint32_t* /*target*/, const std::uint8_t* /*coverage*/, int begin, int /*count*/,
                std::uint32_t /*pixel*/) {
    return begin;
}
template <std::size_t kPixels>
int PaintGroups(std::uint32_t* /*target*/, const std::uint32_t* /*pixels*/, int begin, int /*count*/) {
    return begin;
}

#else

// A pixel has its four components in two 16-bit lanes of each of two vectors, red and blue in one, alpha and green in
// the other.
template <std::size_t kPixels>
struct Pixels {
    using Whole = hn::CappedTag<std::uint32_t, kPixels>;
    using Halves = hn::Repartition<std::uint16_t, Whole>;
    using Bytes = hn::Rebind<std::uint8_t, Whole>; // one a pixel
    using WholeVector = hn::Vec<Whole>;
    using Vector = hn::Vec<Halves>;

    Vector redBlue;
    Vector alphaGreen;

    static HWY_INLINE int Count() { return static_cast<int>(hn::Lanes(Whole())); }

    static HWY_INLINE Pixels Of(WholeVector pixels) {
        const Vector halves = hn::BitCast(Halves(), pixels);
        return {hn::And(halves, hn::Set(Halves(), 0xFF)), hn::ShiftRight<8>(halves)};
    }
    static HWY_INLINE Pixels Load(const std::uint32_t* from) { return Of(hn::LoadU(Whole(), from)); }
    HWY_INLINE void Store(std::uint32_t* to) const {
        hn::StoreU(hn::BitCast(Whole(), hn::Or(redBlue, hn::ShiftLeft<8>(alphaGreen))), Whole(), to);
    }

    // x / 255 rounded to nearest is (x + 128 + (x + 128) / 256) / 256 for every x up to 255 * 255 + 127.
    static HWY_INLINE Vector By255(Vector product) {
        const Vector rounded = hn::Add(product, hn::Set(Halves(), 128));
        return hn::ShiftRight<8>(hn::Add(rounded, hn::ShiftRight<8>(rounded)));
    }
};

template <std::size_t kPixels>
HWY_INLINE int FillGroups(std::uint32_t* target, int begin, int count, std::uint32_t pixel) {
    using P = Pixels<kPixels>;
    const typename P::Whole whole;
    const auto added = hn::Set(whole, pixel);
    int i = begin;
    if (AlphaOf(pixel) == kOpaque) {
        for (; i + P::Count() <= count; i += P::Count())
            hn::StoreU(added, whole, target + i);
        return i;
    }
    const auto addedParts = P::Of(added);
    const auto rest = hn::Set(typename P::Halves(), static_cast<std::uint16_t>(kOpaque - AlphaOf(pixel)));
    for (; i + P::Count() <= count; i += P::Count()) {
        const P old = P::Load(target + i);
        const P filled = {hn::Add(addedParts.redBlue, P::By255(hn::Mul(old.redBlue, rest))),
                          hn::Add(addedParts.alphaGreen, P::By255(hn::Mul(old.alphaGreen, rest)))};
        filled.Store(target + i);
    }
    return i;
}

// One rounding for both terms keeps an opaque target opaque.
template <std::size_t kPixels>
HWY_INLINE int BlendGroups(std::uint32_t* target, const std::uint8_t* coverage, int begin, int count,
                           std::uint32_t pixel) {
    using P = Pixels<kPixels>;
    const typename P::Whole whole;
    const typename P::Halves halves;
    const typename P::Bytes bytes;
    const P added = P::Of(hn::Set(whole, pixel));
    const auto alpha = hn::Set(halves, static_cast<std::uint16_t>(AlphaOf(pixel)));
    const auto opaque = hn::Set(halves, static_cast<std::uint16_t>(kOpaque));
    int i = begin;
    for (; i + P::Count() <= count; i += P::Count()) {
        const auto group = hn::PromoteTo(whole, hn::LoadU(bytes, coverage + i));
        if (hn::AllTrue(whole, hn::Eq(group, hn::Zero(whole)))) continue;
        const auto covered = hn::BitCast(halves, hn::Or(group, hn::ShiftLeft<16>(group)));
        const auto rest = hn::Sub(opaque, P::By255(hn::Mul(alpha, covered)));
        const P old = P::Load(target + i);
        const auto blended = [&](auto ours, auto theirs) {
            return P::By255(hn::Add(hn::Mul(ours, covered), hn::Mul(theirs, rest)));
        };
        const P result = {blended(added.redBlue, old.redBlue), blended(added.alphaGreen, old.alphaGreen)};
        result.Store(target + i);
    }
    return i;
}

// What would be more than white, which no well-made picture comes to, is white.
template <std::size_t kPixels>
HWY_INLINE int PaintGroups(std::uint32_t* target, const std::uint32_t* pixels, int begin, int count) {
    using P = Pixels<kPixels>;
    const typename P::Whole whole;
    const typename P::Halves halves;
    const hn::Repartition<std::uint8_t, typename P::Whole> components;
    const auto opaque = hn::Set(whole, kOpaque);
    int i = begin;
    for (; i + P::Count() <= count; i += P::Count()) {
        const auto added = hn::LoadU(whole, pixels + i);
        const auto rest = hn::Sub(opaque, hn::ShiftRight<24>(added));
        if (hn::AllTrue(whole, hn::Eq(rest, hn::Zero(whole)))) {
            hn::StoreU(added, whole, target + i);
            continue;
        }
        if (hn::AllTrue(whole, hn::Eq(added, hn::Zero(whole)))) continue;
        const auto left = hn::BitCast(halves, hn::Or(rest, hn::ShiftLeft<16>(rest)));
        const P old = P::Load(target + i);
        const auto redBlue = P::By255(hn::Mul(old.redBlue, left));
        const auto alphaGreen = hn::ShiftLeft<8>(P::By255(hn::Mul(old.alphaGreen, left)));
        const auto kept = hn::BitCast(components, hn::Or(redBlue, alphaGreen));
        const auto sum = hn::SaturatedAdd(hn::BitCast(components, added), kept);
        hn::StoreU(hn::BitCast(whole, sum), whole, target + i);
    }
    return i;
}

#endif

// Wide groups, one of four, then pixel by pixel.
void FillRowsWith(const PixelRows& rows, std::uint32_t pixel) {
    for (int y = 0; y < rows.height; ++y) {
        std::uint32_t* const row = rows.first + y * rows.stride;
        int i = FillGroups<8>(row, 0, rows.width, pixel);
        i = FillGroups<4>(row, i, rows.width, pixel);
        for (; i < rows.width; ++i)
            BlendPixel(row[i], kOpaque, pixel);
    }
}

void BlendRowsWith(const PixelRows& rows, const CoverageRows& coverage, std::uint32_t pixel) {
    for (int y = 0; y < rows.height; ++y) {
        std::uint32_t* const row = rows.first + y * rows.stride;
        const std::uint8_t* const covered = coverage.first + y * coverage.stride;
        int i = BlendGroups<8>(row, covered, 0, rows.width, pixel);
        i = BlendGroups<4>(row, covered, i, rows.width, pixel);
        for (; i < rows.width; ++i)
            BlendPixel(row[i], covered[i], pixel);
    }
}

void PaintRowsWith(const PixelRows& rows, const std::uint32_t* pixels, std::ptrdiff_t stride) {
    for (int y = 0; y < rows.height; ++y) {
        std::uint32_t* const row = rows.first + y * rows.stride;
        const std::uint32_t* const added = pixels + y * stride;
        int i = PaintGroups<8>(row, added, 0, rows.width);
        i = PaintGroups<4>(row, added, i, rows.width);
        for (; i < rows.width; ++i)
            PaintPixel(row[i], added[i]);
    }
}

} // namespace kroui::limner::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kroui::limner {

HWY_EXPORT(FillRowsWith);
HWY_EXPORT(BlendRowsWith);
HWY_EXPORT(PaintRowsWith);

namespace {

// Two components share a 32-bit product.
constexpr std::uint32_t kPair = 0x00FF00FF;
constexpr std::uint32_t kHalf = 0x00800080;

std::uint32_t By255(std::uint32_t redBlue, std::uint32_t alphaGreen) {
    redBlue += kHalf;
    alphaGreen += kHalf;
    redBlue = (redBlue + (redBlue >> 8 & kPair)) >> 8 & kPair;
    alphaGreen = (alphaGreen + (alphaGreen >> 8 & kPair)) & ~kPair;
    return redBlue | alphaGreen;
}

// Of two components each; what is more than 255 is 255.
std::uint32_t SaturatedPairs(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t sum = (a & kPair) + (b & kPair);
    const std::uint32_t carries = sum >> 8 & 0x00010001;
    return (sum | carries * 0xFF) & kPair;
}

} // namespace

std::uint32_t ScaledPixel(std::uint32_t pixel, std::uint32_t coverage) {
    return By255((pixel & kPair) * coverage, (pixel >> 8 & kPair) * coverage);
}

void BlendPixel(std::uint32_t& target, std::uint32_t coverage, std::uint32_t pixel) {
    constexpr std::uint32_t kOpaque = 255;
    if (coverage == 0) return;
    const std::uint32_t rest = kOpaque - ((pixel >> 24) * coverage + kOpaque / 2) / kOpaque;
    target = By255((pixel & kPair) * coverage + (target & kPair) * rest,
                   (pixel >> 8 & kPair) * coverage + (target >> 8 & kPair) * rest);
}

void PaintPixel(std::uint32_t& target, std::uint32_t pixel) {
    const std::uint32_t kept = ScaledPixel(target, 255 - (pixel >> 24));
    target = SaturatedPairs(pixel, kept) | SaturatedPairs(pixel >> 8, kept >> 8) << 8;
}

void FillRows(const PixelRows& rows, std::uint32_t pixel) {
    if (pixel == 0 || rows.width <= 0) return;
    HWY_DYNAMIC_DISPATCH(FillRowsWith)(rows, pixel);
}

void BlendRows(const PixelRows& rows, const CoverageRows& coverage, std::uint32_t pixel) {
    HWY_DYNAMIC_DISPATCH(BlendRowsWith)(rows, coverage, pixel);
}

void PaintRows(const PixelRows& rows, const std::uint32_t* pixels, std::ptrdiff_t stride) {
    HWY_DYNAMIC_DISPATCH(PaintRowsWith)(rows, pixels, stride);
}

} // namespace kroui::limner
#endif
