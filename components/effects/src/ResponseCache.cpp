#include "qoc/components/ResponseCache.h"

namespace qoc::components {

const std::vector<float>& ResponseCache::Get(const kroaudiofilterhost::AudioFilter& effect,
                                             const kroaudiofilterhost::FrequencyAxis& axis, std::size_t count,
                                             const std::function<std::vector<float>()>& compute) {
    const std::int32_t dirtyCount = effect.GetParameterDirtyCount();
    const float sampleRate = effect.GetSampleRate();
    const bool isKnown =
        fValues.size() == count && fDirtyCount == dirtyCount && fSampleRate == sampleRate && fAxis == axis;
    if (isKnown) return fValues;
    fValues = compute();
    fDirtyCount = dirtyCount;
    fSampleRate = sampleRate;
    fAxis = axis;
    return fValues;
}

} // namespace qoc::components
