#include "qoc/dsp/pitch/OnsetDetector.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr double kHopsASecond = 700;
constexpr double kMiddleHertz = 700;
constexpr double kHighHertz = 5000;
// How much louder a band must get, as energies: the whole sound more, since its low tones take long to show.
constexpr std::array<double, 3> kRises = {10, 5, 5};
// What is not heard: -90 dB, and what is so far below the rest.
constexpr double kInaudible = 1e-9;
constexpr double kMasked = 1e-4;

float LowPassShare(double hertz, double sampleRate) noexcept {
    return static_cast<float>(1 - std::exp(-2 * std::numbers::pi * hertz / sampleRate));
}

} // namespace

void OnsetDetector::Prepare(std::size_t channels, double sampleRate, std::size_t kept) {
    fHop = std::max<std::int64_t>(8, std::llround(sampleRate / kHopsASecond));
    fLeastDistance = std::llround(kLeastDistance * sampleRate);
    fMiddleShare = LowPassShare(kMiddleHertz, sampleRate);
    fHighShare = LowPassShare(kHighHertz, sampleRate);
    fChannels.assign(channels, {});
    fOnsets.assign(kept / static_cast<std::size_t>(fLeastDistance) + 2, -kNone);
    Reset();
}

void OnsetDetector::Reset() noexcept {
    std::ranges::fill(fChannels, Channel{});
    fNow = 0;
    fLast = {};
    fPairs = {};
    fNextPair = 0;
    std::ranges::fill(fOnsets, -kNone);
    fNextOnset = 0;
}

void OnsetDetector::Listen(const HistoryBuffer& history) noexcept {
    for (; fNow + fHop <= history.Now(); fNow += fHop) {
        const Energies hop = ListenToHop(history);
        Energies pair;
        std::ranges::transform(hop, fLast, pair.begin(), std::plus<>());
        if (IsOnset(pair)) Add(fNow - fHop);
        Remember(pair);
        fLast = hop;
    }
}

OnsetDetector::Energies OnsetDetector::ListenToHop(const HistoryBuffer& history) noexcept {
    Energies energies{};
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        const float* const sound = history.At(channel, fNow);
        Channel state = fChannels[channel];
        std::array<float, kBands> sums{};
        for (std::int64_t i = 0; i < fHop; ++i) {
            const float sample = SaneSample(sound[i]);
            state.middle += fMiddleShare * (sample - state.middle);
            const float middle = sample - state.middle;
            state.high += fHighShare * (middle - state.high);
            state.higher += fHighShare * (middle - state.high - state.higher);
            const float high = middle - state.high - state.higher;
            sums[0] += sample * sample;
            sums[1] += middle * middle;
            sums[2] += high * high;
        }
        fChannels[channel] = state;
        std::ranges::transform(energies, sums, energies.begin(), std::plus<>());
    }
    return energies;
}

// The pair before the present one shares a hop with it.
bool OnsetDetector::IsOnset(const Energies& present) const noexcept {
    const std::size_t shared = (fNextPair + kRemembered - 1) % kRemembered;
    Energies most{};
    for (std::size_t pair = 0; pair < kRemembered; ++pair) {
        if (pair == shared) continue;
        for (std::size_t band = 0; band < kBands; ++band)
            most[band] = std::max(most[band], fPairs[pair][band]);
    }
    const double least = std::max(kInaudible * static_cast<double>(2 * fHop), kMasked * most[0]);
    for (std::size_t band = 0; band < kBands; ++band) {
        if (present[band] > std::max(least, kRises[band] * most[band])) return true;
    }
    return false;
}

void OnsetDetector::Remember(const Energies& pair) noexcept {
    fPairs[fNextPair] = pair;
    fNextPair = (fNextPair + 1) % kRemembered;
}

void OnsetDetector::Add(std::int64_t onset) noexcept {
    const std::size_t last = (fNextOnset + fOnsets.size() - 1) % fOnsets.size();
    if (fOnsets[last] > onset - fLeastDistance) return;
    fOnsets[fNextOnset] = onset;
    fNextOnset = (fNextOnset + 1) % fOnsets.size();
}

std::int64_t OnsetDetector::FirstFrom(std::int64_t time) const noexcept {
    std::int64_t first = kNone;
    for (const std::int64_t onset : fOnsets) {
        if (onset >= time) first = std::min(first, onset);
    }
    return first;
}

std::int64_t OnsetDetector::LastBefore(std::int64_t time) const noexcept {
    std::int64_t last = -kNone;
    for (const std::int64_t onset : fOnsets) {
        if (onset < time) last = std::max(last, onset);
    }
    return last;
}

} // namespace qoc::dsp
