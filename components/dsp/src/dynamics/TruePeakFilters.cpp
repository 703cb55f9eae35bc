// Compiled once for every kind of vectors.
#include "dynamics/TruePeakFilters.h"

// As for the FFT: what has no known length can't stand in arrays.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dynamics/TruePeakFilters.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<float, 16>;
using Vector = hn::Vec<Lanes>;

// Of so many vectors beside each other, each in two sums, of even and odd taps, so that no addition waits for another.
template <std::size_t kVectors>
HWY_INLINE void Sums(std::span<const float> weights, const float* sound, float* output) {
    const Lanes lanes;
    const std::size_t width = hn::Lanes(lanes);
    Vector even[kVectors];
    Vector odd[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v)
        even[v] = odd[v] = hn::Zero(lanes);
    for (std::size_t tap = 0; tap < weights.size(); tap += 2) {
        const Vector first = hn::Set(lanes, weights[tap]);
        const Vector second = hn::Set(lanes, weights[tap + 1]);
        for (std::size_t v = 0; v < kVectors; ++v) {
            even[v] = hn::MulAdd(first, hn::LoadU(lanes, sound + tap + v * width), even[v]);
            odd[v] = hn::MulAdd(second, hn::LoadU(lanes, sound + tap + 1 + v * width), odd[v]);
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v)
        hn::StoreU(hn::Add(even[v], odd[v]), lanes, output + v * width);
}

void Filter(std::span<const float> weights, const float* sound, float* output, std::size_t count) {
    constexpr std::size_t kVectors = 4;
    const std::size_t width = hn::Lanes(Lanes());
    std::size_t begin = 0;
    for (; begin + (kVectors - 1) * width < count; begin += kVectors * width)
        Sums<kVectors>(weights, sound + begin, output + begin);
    for (; begin < count; begin += width)
        Sums<1>(weights, sound + begin, output + begin);
}

void Raise(std::span<const PlaceBetween> places, float* peaks, std::size_t count) {
    const Lanes lanes;
    for (std::size_t i = 0; i < count; i += hn::Lanes(lanes)) {
        Vector peak = hn::LoadU(lanes, peaks + i);
        for (const PlaceBetween& place : places) {
            const float* const weights = place.weights->data();
            Vector first = hn::Zero(lanes);
            Vector second = hn::Zero(lanes);
            for (std::size_t tap = 0; tap < PlaceBetween::kTaps; ++tap) {
                first = hn::MulAdd(hn::Set(lanes, weights[tap]), hn::LoadU(lanes, place.first + i + tap), first);
                second = hn::MulAdd(hn::Set(lanes, weights[PlaceBetween::kTaps + tap]),
                                    hn::LoadU(lanes, place.second + i + tap), second);
            }
            peak = hn::Max(peak, hn::Abs(hn::Add(first, second)));
        }
        hn::StoreU(peak, lanes, peaks + i);
    }
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qoc::dsp {

HWY_EXPORT(Filter);
HWY_EXPORT(Raise);

void FilterRow(std::span<const float> weights, const float* sound, float* output, std::size_t count) noexcept {
    HWY_DYNAMIC_DISPATCH(Filter)(weights, sound, output, count);
}

void RaisePeaks(std::span<const PlaceBetween> places, float* peaks, std::size_t count) noexcept {
    HWY_DYNAMIC_DISPATCH(Raise)(places, peaks, count);
}

} // namespace qoc::dsp
#endif
