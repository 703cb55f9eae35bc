#include "qoc/dsp/restoration/NoiseTracker.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// Time constants and spans, in seconds.
constexpr double kSmoothing = 0.1;
constexpr double kAveraging = 0.4;
constexpr double kPresence = 0.02;
constexpr double kMinimum = 0.8; // half of the longest span that the minimum is of
constexpr double kTrust = 0.5;

constexpr float kSilence = 1e-20F;
// Smoothed noise rarely is that far above its minimum on average.
constexpr float kMostToMinimum = 6;
// A line counts as noise up to so many times the harmonic mean of its surroundings, which lines hardly raise.
constexpr float kMostToSurroundings = 4;
constexpr std::size_t kSurroundings = 16; // bins to either side

float DecayPerFrame(double seconds, double framesPerSecond) {
    return static_cast<float>(std::exp(-1 / (seconds * framesPerSecond)));
}

std::size_t FramesIn(double seconds, double framesPerSecond) {
    return static_cast<std::size_t>(std::max(1L, std::lround(seconds * framesPerSecond)));
}

} // namespace

void NoiseTracker::Prepare(std::size_t bins, double framesPerSecond) {
    fSmoothing = DecayPerFrame(kSmoothing, framesPerSecond);
    fAveraging = DecayPerFrame(kAveraging, framesPerSecond);
    fPresenceSmoothing = DecayPerFrame(kPresence, framesPerSecond);
    fFramesPerMinimum = FramesIn(kMinimum, framesPerSecond);
    fFramesToTrust = FramesIn(kTrust, framesPerSecond);
    for (std::vector<float>* values : {&fSmoothed, &fMinimum, &fNextMinimum, &fPresence, &fAverage, &fNoise})
        values->assign(bins, 0.0F);
    fInverseSums.assign(bins + 1, 0.0);
    Reset();
}

void NoiseTracker::Reset() noexcept {
    for (std::vector<float>* values : {&fSmoothed, &fMinimum, &fNextMinimum, &fPresence, &fAverage, &fNoise})
        std::ranges::fill(*values, 0.0F);
    fFrames = 0;
}

void NoiseTracker::Update(std::span<const float> powers, float margin) noexcept {
    if (std::ranges::all_of(powers, [](float power) { return power < kSilence; })) return;
    Smooth(powers);
    FollowMinimum();
    Average(powers, margin);
    ++fFrames;
    Tell();
}

void NoiseTracker::Smooth(std::span<const float> powers) noexcept {
    const float keep = fFrames == 0 ? 0.0F : fSmoothing;
    const std::size_t last = powers.size() - 1;
    for (std::size_t bin = 0; bin <= last; ++bin) {
        const float around = powers[bin == 0 ? 1 : bin - 1] + powers[bin == last ? last - 1 : bin + 1];
        fSmoothed[bin] = keep * fSmoothed[bin] + (1 - keep) * (0.5F * powers[bin] + 0.25F * around);
    }
}

// Two minima by turns, so that none is of more than twice the span and none of less than one.
void NoiseTracker::FollowMinimum() noexcept {
    const bool isNewSpan = fFrames % fFramesPerMinimum == 0;
    for (std::size_t bin = 0; bin < fSmoothed.size(); ++bin) {
        const float power = fSmoothed[bin];
        if (isNewSpan) {
            fMinimum[bin] = fFrames == 0 ? power : std::min(fNextMinimum[bin], power);
            fNextMinimum[bin] = power;
        } else {
            fMinimum[bin] = std::min(fMinimum[bin], power);
            fNextMinimum[bin] = std::min(fNextMinimum[bin], power);
        }
    }
}

void NoiseTracker::Average(std::span<const float> powers, float margin) noexcept {
    for (std::size_t bin = 0; bin < powers.size(); ++bin) {
        const float present = fSmoothed[bin] > margin * fMinimum[bin] ? 1.0F : 0.0F;
        fPresence[bin] = fPresenceSmoothing * fPresence[bin] + (1 - fPresenceSmoothing) * present;
        const float started = fFrames == 0 ? 0.0F : fAveraging;
        const float keep = started + (1 - started) * fPresence[bin];
        fAverage[bin] = keep * fAverage[bin] + (1 - keep) * powers[bin];
        fAverage[bin] = std::min(fAverage[bin], std::max(kMostToMinimum, margin) * fMinimum[bin]);
    }
}

void NoiseTracker::Tell() noexcept {
    const std::size_t bins = fAverage.size();
    for (std::size_t bin = 0; bin < bins; ++bin)
        fInverseSums[bin + 1] = fInverseSums[bin] + 1.0 / std::max(fAverage[bin], kSilence);
    const double trust = std::min(1.0, static_cast<double>(fFrames) / static_cast<double>(fFramesToTrust));
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const std::size_t begin = bin > kSurroundings ? bin - kSurroundings : 0;
        const std::size_t end = std::min(bins, bin + kSurroundings + 1);
        const double harmonicMean = static_cast<double>(end - begin) / (fInverseSums[end] - fInverseSums[begin]);
        const double noise = std::min<double>(fAverage[bin], kMostToSurroundings * harmonicMean);
        fNoise[bin] = static_cast<float>(trust * trust * noise);
    }
}

} // namespace qoc::dsp
