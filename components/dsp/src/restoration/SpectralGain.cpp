#include "qoc/dsp/restoration/SpectralGain.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

constexpr double kMemory = 0.3;      // seconds
constexpr double kLeastPrior = 1e-4; // -40 dB
constexpr double kMostPosterior = 1e6;
constexpr float kSilence = 1e-20F;

// The exponential integral E1 for x above 0: Abramowitz and Stegun, "Handbook of Mathematical Functions", 5.1.53 and
// 5.1.56.
double ExponentialIntegral(double x) noexcept {
    if (x <= 1) {
        constexpr double kA[] = {-0.57721566, 0.99999193, -0.24991055, 0.05519968, -0.00976004, 0.00107857};
        double sum = 0;
        for (int i = 5; i >= 0; --i)
            sum = sum * x + kA[i];
        return sum - std::log(x);
    }
    const double above = (((x + 8.5733287401) * x + 18.0590169730) * x + 8.6347608925) * x + 0.2677737343;
    const double below = (((x + 9.5733223454) * x + 25.6329561486) * x + 21.0996530827) * x + 3.9584969228;
    return std::exp(-x) / x * above / below;
}

} // namespace

void SpectralGain::Prepare(std::size_t bins, double framesPerSecond) {
    fMemory = std::exp(-1 / (kMemory * framesPerSecond));
    fGains.assign(bins, 1.0F);
    fTold.assign(bins, 1.0F);
    fSound.assign(bins, 0.0F);
    fSums.assign(bins + 1, 0.0);
    Reset();
}

void SpectralGain::Reset() noexcept {
    std::ranges::fill(fGains, 1.0F);
    std::ranges::fill(fSound, 0.0F);
}

std::span<const float> SpectralGain::Update(std::span<const float> powers, std::span<const float> noise,
                                            const Settings& settings) noexcept {
    Estimate(powers, noise, settings);
    Widen(settings);
    return fTold;
}

double SpectralGain::LogSpectralAmplitudeGain(double prior, double posterior) noexcept {
    const double wiener = prior / (1 + prior);
    return std::min(1.0, wiener * std::exp(0.5 * ExponentialIntegral(std::max(1e-10, wiener * posterior))));
}

void SpectralGain::Estimate(std::span<const float> powers, std::span<const float> noise,
                            const Settings& settings) noexcept {
    for (std::size_t bin = 0; bin < powers.size(); ++bin) {
        const float scaled = noise[bin] * settings.noiseScale;
        float gain = 1;
        if (scaled > kSilence) {
            const double posterior = std::min<double>(powers[bin] / scaled, kMostPosterior);
            const double before = std::min<double>(fSound[bin] / scaled, kMostPosterior);
            const double prior = fMemory * before + (1 - fMemory) * std::max(posterior - 1, 0.0);
            gain = static_cast<float>(
                LogSpectralAmplitudeGain(std::max(kLeastPrior, prior / settings.threshold), posterior));
        }
        fSound[bin] = gain * gain * powers[bin];
        fGains[bin] = std::max(gain, fGains[bin] * settings.decayPerFrame);
    }
}

// The surroundings of what is kept are raised to the mean gain there, and nothing is lowered.
void SpectralGain::Widen(const Settings& settings) noexcept {
    const std::size_t bins = fGains.size();
    for (std::size_t bin = 0; bin < bins; ++bin)
        fSums[bin + 1] = fSums[bin] + fGains[bin];
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const std::size_t begin = bin > settings.width ? bin - settings.width : 0;
        const std::size_t end = std::min(bins, bin + settings.width + 1);
        const auto mean = static_cast<float>((fSums[end] - fSums[begin]) / static_cast<double>(end - begin));
        fTold[bin] = std::max({settings.floor, fGains[bin], mean});
    }
}

} // namespace qoc::dsp
