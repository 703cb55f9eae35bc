#include "qoc/dsp/delay/CrossfadedTap.h"

#include <cmath>

namespace qoc::dsp {

void CrossfadedTap::Prepare(double sampleRate) noexcept {
    constexpr double kFadeSeconds = 0.03;
    fLength = static_cast<std::size_t>(std::ceil(kFadeSeconds * sampleRate));
    Settle(fTarget);
}

void CrossfadedTap::Settle(std::size_t delay) noexcept {
    fDelay = fNextDelay = fTarget = delay;
    fRemaining = 0;
}

void CrossfadedTap::Read(const DelayLine& line, std::size_t age, std::span<float> output) noexcept {
    if (IsSettled()) return line.Read(fDelay + age, output);
    for (std::size_t k = 0; k < output.size(); ++k) {
        const Place place = Next();
        output[k] = Place{place.delay + age - k, place.nextDelay + age - k, place.share}.In(line);
    }
}

CrossfadedTap::Place CrossfadedTap::NextFading() noexcept {
    if (fRemaining == 0) {
        fNextDelay = fTarget;
        fRemaining = fLength;
    }
    const float left = static_cast<float>(--fRemaining) / static_cast<float>(fLength);
    const Place place = {fDelay, fNextDelay, left * left * (3 - 2 * left)}; // without a kink at either end
    if (fRemaining == 0) fDelay = fNextDelay;
    return place;
}

} // namespace qoc::dsp
