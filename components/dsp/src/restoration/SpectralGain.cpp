#include "qoc/dsp/restoration/SpectralGain.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace qoc::dsp {

namespace {

constexpr float kMostPosterior = 1e8F;
constexpr float kLeastNoise = 1e-25F;
constexpr float kFarAbove = 1e6F;    // the gain is 1
constexpr float kLeastPrior = 1e-4F; // -40 dB
constexpr double kMemory = 0.04;     // seconds

constexpr float kDoubtBelow = 3; // how much more is asked of the bins that are not judged one by one

// Tones: means over so many seconds, or frames where those are longer.
constexpr double kHolding = 0.1;
constexpr double kHoldingFrames = 1.6;
constexpr float kMostHeld = 100; // so that a loud tone is not held for long

// Hits: means over so many bins to either side, or that part of the frequency. A tone alone does not count as much.
constexpr std::size_t kLeastSurroundings = 32;
constexpr double kSurroundings = 0.08;
constexpr float kMostInMean = 8;
constexpr float kChance = 1.84F; // of a mean, times the root of the count
constexpr float kNoiseError = 0.025F;

// How far above what is asked for presence is certain.
constexpr float kToneRamp = 0.5F;
constexpr float kHitRamp = 0.25F;

// What is asked, of all that is asked otherwise, when this part of the bins holds sound for certain.
constexpr float kCertainPart = 0.01F;
constexpr float kToneThen = 0.45F;
constexpr float kHitThen = 0.35F;
constexpr double kCertaintyDecay = 0.1; // seconds

constexpr float kSpread = 2; // how much presence around counts

float DecayPerFrame(double seconds, double framesPerSecond) {
    return static_cast<float>(std::exp(-1 / (seconds * framesPerSecond)));
}

// The formula is wiener * exp(E1(v) / 2) with the exponential integral E1. exp(E1(v)) is exp(-0.5772) / v for small v
// and goes to 1 for large v (Abramowitz and Stegun, 5.1.11 and 5.1.51); a polynomial fitted to their table 5.1 leads
// from one to the other.
inline float AmplitudeGain(float prior, float posterior) noexcept {
    const float wiener = prior / (1 + prior);
    const float v = std::max(1e-10F, wiener * posterior);
    const float bend = 1 + v * (0.808F + v * (0.216F + v * 0.265F));
    return std::min(1.0F, wiener * std::sqrt(1 + 0.56146F / (v * bend)));
}

} // namespace

void SpectralGain::Prepare(const Layout& layout) {
    fLowest = std::clamp<std::size_t>(layout.lowest, 1, layout.bins - 1);
    fMemory = DecayPerFrame(kMemory, layout.framesPerSecond);
    const double frame = static_cast<double>(layout.hopsPerFrame) / layout.framesPerSecond;
    fHolding = DecayPerFrame(std::max(kHolding, kHoldingFrames * frame), layout.framesPerSecond);
    fCertaintyDecay = DecayPerFrame(kCertaintyDecay, layout.framesPerSecond);
    fSurroundings.clear();
    for (std::size_t bin = 0; bin < layout.bins; ++bin) {
        const auto half =
            std::max(kLeastSurroundings, static_cast<std::size_t>(kSurroundings * static_cast<double>(bin)));
        const std::size_t begin = bin - std::min(bin, half);
        const std::size_t end = std::min(layout.bins, bin + half + 1);
        const auto count = static_cast<float>(end - begin);
        fSurroundings.push_back({begin, end, 1 / count, kNoiseError + kChance / std::sqrt(count)});
    }
    for (std::vector<float>* values : {&fGains, &fInverse, &fPosterior, &fHeld, &fBroad, &fPresence, &fSound})
        values->assign(layout.bins, 0.0F);
    fSums.assign(layout.bins + 1, 0.0F);
    Reset();
}

void SpectralGain::Reset() noexcept {
    std::ranges::fill(fGains, 0.0F);
    std::ranges::fill(fHeld, 1.0F);
    std::ranges::fill(fSound, 0.0F);
    fCertainty = 0;
}

std::span<const float> SpectralGain::Update(std::span<const float> powers, std::span<const float> noise,
                                            const Settings& settings) noexcept {
    Compare(powers, noise, settings.noiseScale);
    Average();
    fCertainty = std::max(fCertainty * fCertaintyDecay, MeasureCertainty(settings.presence));
    FindPresence(settings.presence);
    Spread(settings.width);
    Estimate(powers, settings);
    return fGains;
}

float SpectralGain::LogSpectralAmplitudeGain(float prior, float posterior) noexcept {
    return AmplitudeGain(prior, posterior);
}

void SpectralGain::Compare(std::span<const float> powers, std::span<const float> noise, float scale) noexcept {
    for (std::size_t bin = 0; bin < powers.size(); ++bin) {
        fInverse[bin] = 1 / std::max(kLeastNoise, scale * noise[bin]);
        fPosterior[bin] = std::min(kMostPosterior, powers[bin] * fInverse[bin]);
    }
    const float below =
        std::accumulate(fPosterior.begin(), fPosterior.begin() + static_cast<std::ptrdiff_t>(fLowest), 0.0F);
    const float mean = below / (kDoubtBelow * static_cast<float>(fLowest));
    std::fill_n(fPosterior.begin(), fLowest, std::max(mean, fPosterior[fLowest]));
}

void SpectralGain::Average() noexcept {
    const std::size_t last = fPosterior.size() - 1;
    for (std::size_t bin = 0; bin <= last; ++bin) {
        const float around = fPosterior[bin == 0 ? 1 : bin - 1] + fPosterior[bin == last ? last - 1 : bin + 1];
        const float power = std::min(kMostHeld, 0.5F * fPosterior[bin] + 0.25F * around);
        fHeld[bin] = fHolding * fHeld[bin] + (1 - fHolding) * power;
        fSums[bin + 1] = fSums[bin] + std::min(kMostInMean, fPosterior[bin]);
    }
    for (std::size_t bin = 0; bin <= last; ++bin) {
        const Surroundings& around = fSurroundings[bin];
        fBroad[bin] = (fSums[around.end] - fSums[around.begin]) * around.weight;
    }
}

float SpectralGain::MeasureCertainty(float presence) const noexcept {
    constexpr float kCertainHit = 4;
    float certain = 0;
    for (std::size_t bin = 0; bin < fHeld.size(); ++bin) {
        const float hit = fBroad[bin] - 1 - (presence - 1) * fSurroundings[bin].chance;
        certain += std::clamp(std::max(kCertainHit * hit, fHeld[bin] - presence), 0.0F, 1.0F);
    }
    return std::min(1.0F, certain / (kCertainPart * static_cast<float>(fHeld.size())));
}

void SpectralGain::FindPresence(float presence) noexcept {
    const float tone = 1 / (presence * (1 - fCertainty * (1 - kToneThen)));
    const float hit = 1 / ((presence - 1) * (1 - fCertainty * (1 - kHitThen)));
    for (std::size_t bin = 0; bin < fPresence.size(); ++bin) {
        const float held = (fHeld[bin] * tone - 1) / kToneRamp;
        const float broad = ((fBroad[bin] - 1) * hit / fSurroundings[bin].chance - 1) / kHitRamp;
        fPresence[bin] = std::clamp(std::max(held, broad), 0.0F, 1.0F);
    }
}

void SpectralGain::Spread(std::size_t width) noexcept {
    const std::size_t bins = fPresence.size();
    const float scale = kSpread / static_cast<float>(2 * width + 1);
    for (std::size_t bin = 0; bin < bins; ++bin)
        fSums[bin + 1] = fSums[bin] + fPresence[bin];
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const std::size_t begin = bin - std::min(bin, width);
        const std::size_t end = std::min(bins, bin + width + 1);
        const float around = (fSums[end] - fSums[begin]) * scale;
        fPresence[bin] = std::max(fPresence[bin], std::min(1.0F, around));
    }
}

void SpectralGain::Estimate(std::span<const float> powers, const Settings& settings) noexcept {
    const float scale = 1 / settings.threshold;
    for (std::size_t bin = 0; bin < powers.size(); ++bin) {
        float gain = fPresence[bin] > 0 ? 1.0F : 0.0F;
        if (fPresence[bin] > 0 && fPosterior[bin] < kFarAbove) {
            const float before = std::min(kMostPosterior, fSound[bin] * fInverse[bin]);
            const float prior = fMemory * before + (1 - fMemory) * std::max(fPosterior[bin] - 1, 0.0F);
            gain = AmplitudeGain(std::max(kLeastPrior, prior * scale), fPosterior[bin]);
        }
        fSound[bin] = gain * gain * powers[bin];
        const float told = settings.floor + fPresence[bin] * std::max(0.0F, gain - settings.floor);
        fGains[bin] = std::max(told, fGains[bin] * settings.decayPerFrame);
    }
}

} // namespace qoc::dsp
