#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace qoc::components {

// The last response that an effect has computed. Panels ask again on many occasions, most often for the same. Owned by
// its effect; user-interface thread.
class ResponseCache {
public:
    // The `count` values over the axis that `compute` gives, or has given if no parameter of the effect, nor its sample
    // rate, has changed since.
    const std::vector<float>& Get(const kroaudiofilterhost::AudioFilter& effect,
                                  const kroaudiofilterhost::FrequencyAxis& axis, std::size_t count,
                                  const std::function<std::vector<float>()>& compute);
    // For what else the response depends on.
    void Forget() { fValues.clear(); }

private:
    std::int32_t fDirtyCount = 0;
    float fSampleRate = 0;
    kroaudiofilterhost::FrequencyAxis fAxis;
    std::vector<float> fValues;
};

} // namespace qoc::components
