#include "PixelSpans.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kroui::limner {

namespace {

constexpr std::uint32_t kOpaque = 255;

std::uint32_t AlphaOf(std::uint32_t pixel) {
    return pixel >> 24;
}

// Two components share a 32-bit product. x / 255 rounded to nearest is (x + 128 + (x + 128) / 256) / 256 for every x up
// to 255 * 255 + 127, which is also as far as the sums below go.
constexpr std::uint32_t kPair = 0x00FF00FF;
constexpr std::uint32_t kHalf = 0x00800080;

std::uint32_t By255(std::uint32_t redBlue, std::uint32_t alphaGreen) {
    redBlue += kHalf;
    alphaGreen += kHalf;
    redBlue = (redBlue + (redBlue >> 8 & kPair)) >> 8 & kPair;
    alphaGreen = (alphaGreen + (alphaGreen >> 8 & kPair)) & ~kPair;
    return redBlue | alphaGreen;
}

// One rounding for both terms keeps an opaque target opaque.
std::uint32_t Covered(std::uint32_t target, std::uint32_t pixel, std::uint32_t coverage) {
    const std::uint32_t rest = kOpaque - (AlphaOf(pixel) * coverage + kOpaque / 2) / kOpaque;
    return By255((pixel & kPair) * coverage + (target & kPair) * rest,
                 (pixel >> 8 & kPair) * coverage + (target >> 8 & kPair) * rest);
}

#if defined(__SSE2__)

// The same arithmetic on four pixels, a component in each 16-bit lane. Every operation leaves out the pixels that do
// not make a whole group and returns how many it has done.
__m128i By255(__m128i products) {
    const __m128i rounded = _mm_add_epi16(products, _mm_set1_epi16(128));
    return _mm_srli_epi16(_mm_add_epi16(rounded, _mm_srli_epi16(rounded, 8)), 8);
}

__m128i Load(const std::uint32_t* pixels) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}

void Store(std::uint32_t* pixels, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), value);
}

__m128i LowLanes(__m128i bytes) {
    return _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
}

__m128i HighLanes(__m128i bytes) {
    return _mm_unpackhi_epi8(bytes, _mm_setzero_si128());
}

__m128i Covered(__m128i target, __m128i pixel, __m128i alpha, __m128i coverage) {
    const __m128i rest = _mm_sub_epi16(_mm_set1_epi16(kOpaque), By255(_mm_mullo_epi16(alpha, coverage)));
    return By255(_mm_add_epi16(_mm_mullo_epi16(pixel, coverage), _mm_mullo_epi16(target, rest)));
}

int FillGroups(std::uint32_t* target, int count, std::uint32_t pixel) {
    const __m128i added = _mm_set1_epi32(static_cast<int>(pixel));
    const __m128i rest = _mm_set1_epi16(static_cast<short>(kOpaque - AlphaOf(pixel)));
    int i = 0;
    for (; i + kPixelsAtOnce <= count; i += kPixelsAtOnce) {
        const __m128i old = Load(target + i);
        const __m128i low = By255(_mm_mullo_epi16(LowLanes(old), rest));
        const __m128i high = By255(_mm_mullo_epi16(HighLanes(old), rest));
        Store(target + i, _mm_add_epi8(added, _mm_packus_epi16(low, high)));
    }
    return i;
}

int BlendGroups(std::uint32_t* target, const std::uint8_t* coverage, int count, std::uint32_t pixel) {
    const __m128i lanes = LowLanes(_mm_set1_epi32(static_cast<int>(pixel)));
    const __m128i alpha = _mm_set1_epi16(static_cast<short>(AlphaOf(pixel)));
    int i = 0;
    for (; i + kPixelsAtOnce <= count; i += kPixelsAtOnce) {
        int group = 0;
        std::memcpy(&group, coverage + i, sizeof group);
        if (group == 0) continue;
        __m128i spread = _mm_cvtsi32_si128(group);
        spread = _mm_unpacklo_epi8(spread, spread);
        spread = _mm_unpacklo_epi16(spread, spread);
        const __m128i old = Load(target + i);
        const __m128i low = Covered(LowLanes(old), lanes, alpha, LowLanes(spread));
        const __m128i high = Covered(HighLanes(old), lanes, alpha, HighLanes(spread));
        Store(target + i, _mm_packus_epi16(low, high));
    }
    return i;
}

#else

int FillGroups(std::uint32_t*, int, std::uint32_t) {
    return 0;
}

int BlendGroups(std::uint32_t*, const std::uint8_t*, int, std::uint32_t) {
    return 0;
}

#endif

} // namespace

std::uint32_t ScaledPixel(std::uint32_t pixel, std::uint32_t coverage) {
    return By255((pixel & kPair) * coverage, (pixel >> 8 & kPair) * coverage);
}

void FillSpan(std::uint32_t* target, int count, std::uint32_t pixel) {
    if (count <= 0 || pixel == 0) return;
    if (AlphaOf(pixel) == kOpaque) {
        std::fill_n(target, count, pixel);
        return;
    }
    for (int i = FillGroups(target, count, pixel); i < count; ++i)
        target[i] = Covered(target[i], pixel, kOpaque);
}

void BlendSpan(std::uint32_t* target, const std::uint8_t* coverage, int count, std::uint32_t pixel) {
    for (int i = BlendGroups(target, coverage, count, pixel); i < count; ++i) {
        if (coverage[i] != 0) target[i] = Covered(target[i], pixel, coverage[i]);
    }
}

} // namespace kroui::limner
