#include "qoc/dsp/dynamics/SustainedGain.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::dsp {

namespace {

constexpr double kLookSeconds = 0.001;

// Time constants of going down, in seconds.
constexpr double kSteadySeconds = 0.02;
constexpr double kUnsteadySeconds = 0.8;
// Steady is what varies by less than a fifth of a decibel or so.
constexpr double kSteadiness = 64;

double ShareOfTheWay(double samples, double timeConstant) {
    return -std::expm1(-samples / timeConstant);
}

} // namespace

void SustainedGain::Prepare(double sampleRate) noexcept {
    fStep = static_cast<std::size_t>(std::max(1.0, std::round(kLookSeconds * sampleRate)));
    fSteady = ShareOfTheWay(static_cast<double>(fStep), kSteadySeconds * sampleRate);
    fUnsteady = ShareOfTheWay(static_cast<double>(fStep), kUnsteadySeconds * sampleRate);
    Start();
}

void SustainedGain::Start() noexcept {
    fAllowed.fill(1);
    fBridged.fill(1);
    fLooks = fSeen = 0;
    fLeast = fGain = 1;
}

void SustainedGain::SetRelease(double samples) noexcept {
    fComingBack = ShareOfTheWay(static_cast<double>(fStep), samples);
}

double SustainedGain::Next(double allowed) noexcept {
    fLeast = std::min(fLeast, allowed);
    if (++fSeen == fStep) Look();
    return fGain;
}

void SustainedGain::Look() noexcept {
    fSeen = 0;
    fAllowed[fLooks % fAllowed.size()] = std::exchange(fLeast, 1);
    fBridged[fLooks % fBridged.size()] = *std::ranges::min_element(fAllowed);
    ++fLooks;
    const auto [least, sustained] = std::ranges::minmax(fBridged);
    fGain += (sustained < fGain ? GoingDown(sustained, least) : fComingBack) * (sustained - fGain);
}

double SustainedGain::GoingDown(double sustained, double least) const noexcept {
    if (least >= sustained) return fSteady; // both may be 0
    return std::lerp(fUnsteady, fSteady, std::pow(least / sustained, kSteadiness));
}

} // namespace qoc::dsp
