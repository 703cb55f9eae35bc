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
        // Those that are joined are one, not many.
        const std::size_t begin = std::max(fLowest, bin - std::min(bin, half));
        const std::size_t end = std::min(layout.bins, std::max(bin, fLowest) + half + 1);
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

void SpectralGain::Begin(std::span<const float> powers, std::span<const float> noise,
                         const Settings& settings) noexcept {
    fPowers = powers;
    fNoise = noise;
    fSettings = settings;
    fCertain = 0;
}

void SpectralGain::Pass(std::size_t pass, StepRange bins) noexcept {
    switch (pass) {
    case 0: return Compare(bins);
    case 1: return Average(bins);
    case 2: return MeasureCertainty(bins);
    case 3: return FindPresence(bins);
    default: return Estimate(bins);
    }
}

float SpectralGain::LogSpectralAmplitudeGain(float prior, float posterior) noexcept {
    return AmplitudeGain(prior, posterior);
}

void SpectralGain::Compare(StepRange bins) noexcept {
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        fInverse[bin] = 1 / std::max(kLeastNoise, fSettings.noiseScale * fNoise[bin]);
        fPosterior[bin] = std::min(kMostPosterior, fPowers[bin] * fInverse[bin]);
    }
    if (bins.end == fPosterior.size()) JoinLowest();
}

// The next bin counts no more than the mean of some: alone, and in all the bins of the join, it would look like a tone
// by chance.
void SpectralGain::JoinLowest() noexcept {
    constexpr std::size_t kNext = 3;
    const float below =
        std::accumulate(fPosterior.begin(), fPosterior.begin() + static_cast<std::ptrdiff_t>(fLowest), 0.0F);
    const float mean = below / (kDoubtBelow * static_cast<float>(fLowest));
    const std::size_t count = std::min(kNext, fPosterior.size() - fLowest);
    const auto above = fPosterior.begin() + static_cast<std::ptrdiff_t>(fLowest);
    const float next =
        std::accumulate(above, above + static_cast<std::ptrdiff_t>(count), 0.0F) / static_cast<float>(count);
    std::fill_n(fPosterior.begin(), fLowest, std::max(mean, std::min(next, fPosterior[fLowest])));
}

void SpectralGain::Average(StepRange bins) noexcept {
    const std::size_t last = fPosterior.size() - 1;
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        const float around = fPosterior[bin == 0 ? 1 : bin - 1] + fPosterior[bin == last ? last - 1 : bin + 1];
        const float power = std::min(kMostHeld, 0.5F * fPosterior[bin] + 0.25F * around);
        fHeld[bin] = fHolding * fHeld[bin] + (1 - fHolding) * power;
        fSums[bin + 1] = fSums[bin] + std::min(kMostInMean, fPosterior[bin]);
    }
}

void SpectralGain::MeasureCertainty(StepRange bins) noexcept {
    constexpr float kCertainHit = 4;
    const float presence = fSettings.presence;
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        const Surroundings& around = fSurroundings[bin];
        fBroad[bin] = (fSums[around.end] - fSums[around.begin]) * around.weight;
        const float hit = fBroad[bin] - 1 - (presence - 1) * around.chance;
        fCertain += std::clamp(std::max(kCertainHit * hit, fHeld[bin] - presence), 0.0F, 1.0F);
    }
    if (bins.end < fHeld.size()) return;
    const float certainty = std::min(1.0F, fCertain / (kCertainPart * static_cast<float>(fHeld.size())));
    fCertainty = std::max(fCertainty * fCertaintyDecay, certainty);
}

void SpectralGain::FindPresence(StepRange bins) noexcept {
    const float presence = fSettings.presence;
    const float tone = 1 / (presence * (1 - fCertainty * (1 - kToneThen)));
    const float hit = 1 / ((presence - 1) * (1 - fCertainty * (1 - kHitThen)));
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        const float held = (fHeld[bin] * tone - 1) / kToneRamp;
        const float broad = ((fBroad[bin] - 1) * hit / fSurroundings[bin].chance - 1) / kHitRamp;
        fPresence[bin] = std::clamp(std::max(held, broad), 0.0F, 1.0F);
        fSums[bin + 1] = fSums[bin] + fPresence[bin];
    }
}

void SpectralGain::Estimate(StepRange bins) noexcept {
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
        fPresence[bin] = std::max(fPresence[bin], std::min(1.0F, PresenceAround(bin)));
    const float scale = 1 / fSettings.threshold;
    const float memory = fMemory;
    const float floor = fSettings.floor;
    const float decay = fSettings.decayPerFrame;
    // All bins alike, without a branch, so that they can be worked on several at a time.
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        const float posterior = fPosterior[bin];
        const float before = std::min(kMostPosterior, fSound[bin] * fInverse[bin]);
        const float prior = memory * before + (1 - memory) * std::max(posterior - 1, 0.0F);
        const float estimate = AmplitudeGain(std::max(kLeastPrior, prior * scale), posterior);
        const float gain = fPresence[bin] > 0 ? (posterior < kFarAbove ? estimate : 1.0F) : 0.0F;
        fSound[bin] = gain * gain * fPowers[bin];
        const float told = floor + fPresence[bin] * std::max(0.0F, gain - floor);
        fGains[bin] = std::max(told, fGains[bin] * decay);
    }
}

// The mean of those around a bin, and as much again.
float SpectralGain::PresenceAround(std::size_t bin) const noexcept {
    const std::size_t width = fSettings.width;
    const std::size_t begin = bin - std::min(bin, width);
    const std::size_t end = std::min(fPresence.size(), bin + width + 1);
    return (fSums[end] - fSums[begin]) * kSpread / static_cast<float>(2 * width + 1);
}

} // namespace qoc::dsp
