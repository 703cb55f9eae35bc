#include "qoc/dsp/restoration/ClipPredictor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace qoc::dsp {

namespace {

// How often the prediction is made anew from what it has restored.
constexpr std::size_t kPredictions = 3;
// Part of the peaks' energy out of bounds: no further prediction then, and none that counts.
constexpr double kHopeless = 0.5;
constexpr double kMostImplausible = 0.05;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Samples whose errors are measured at once.
constexpr std::size_t kPiece = 1024;
constexpr double kMeasureCost = 0.08; // nanoseconds a sample and coefficient, about
constexpr double kBoundCost = 6;      // a clipped sample

} // namespace

void ClipPredictor::Prepare(std::size_t frame, std::size_t largestOrder) {
    fLargestOrder = largestOrder;
    fModel.Prepare(frame, largestOrder);
    fInterpolator.Prepare(frame, largestOrder);
    fPredicted.assign(frame, 0.0);
    fErrors.assign(frame, 0.0);
    for (std::vector<std::size_t>* const places : {&fClipped, &fUnknown}) {
        places->clear();
        places->reserve(frame);
    }
    fSolveCosts.fill(fInterpolator.CostOf(1, largestOrder) + kBoundCost);
    fStage = Stage::kDone;
}

void ClipPredictor::Begin(std::span<const double> sound, std::span<const std::size_t> clipped, const Bounds& bounds,
                          std::size_t order) noexcept {
    fBounds = bounds;
    fOrder = order;
    std::ranges::copy(sound, fPredicted.begin());
    const auto last = std::ranges::lower_bound(clipped, sound.size() - fLargestOrder);
    fClipped.assign(clipped.begin(), last);
    fPrediction = 0;
    fFitStep = 0;
    fImplausible = 0;
    fStage = Stage::kFit;
}

double ClipPredictor::Work() noexcept {
    switch (fStage) {
    case Stage::kFit: return Fit();
    case Stage::kPredict:
    case Stage::kPredictAgain: return Predict();
    case Stage::kMeasure: return Measure();
    case Stage::kDone: return 0;
    }
    return 0;
}

double ClipPredictor::CostOf(std::size_t clipped, std::size_t order) const noexcept {
    return kPredictions * CostOfOne(clipped) + CostOfMeasuring(0, order);
}

double ClipPredictor::CostOfOne(std::size_t clipped) const noexcept {
    return fModel.CostOfFit() + (fSolveCosts[0] + fSolveCosts[1]) * static_cast<double>(clipped);
}

double ClipPredictor::CostOfMeasuring(std::size_t begin, std::size_t order) const noexcept {
    return kMeasureCost * static_cast<double>((fPredicted.size() - begin) * (order + 1));
}

double ClipPredictor::CostLeft() const noexcept {
    if (IsDone()) return 0;
    if (fStage == Stage::kMeasure) return CostOfMeasuring(fMeasured, fOrder);
    const auto clipped = static_cast<double>(fClipped.size());
    const double further =
        static_cast<double>(kPredictions - fPrediction - 1) * CostOfOne(fClipped.size()) + CostOfMeasuring(0, fOrder);
    if (fStage == Stage::kFit) return further + CostOfOne(fClipped.size());
    return further + fInterpolator.CostLeft() + (fStage == Stage::kPredict ? fSolveCosts[1] * clipped : 0);
}

double ClipPredictor::Fit() noexcept {
    fModel.Fit(fPredicted, fOrder, fFitStep);
    if (++fFitStep == LinearPrediction::kFitSteps) {
        fUnknown = fClipped;
        fStage = Stage::kPredict;
        StartPredicting();
    }
    return fModel.CostOfFit() / LinearPrediction::kFitSteps;
}

void ClipPredictor::StartPredicting() noexcept {
    fSolveCost = kBoundCost * static_cast<double>(fClipped.size());
    fInterpolator.BeginUnbounded(fModel.Coefficients(), fUnknown, fPredicted);
    if (fInterpolator.IsDone()) FinishPredicting();
}

double ClipPredictor::Predict() noexcept {
    const double cost = fInterpolator.Work();
    fSolveCost += cost;
    if (!fInterpolator.IsDone()) return cost;
    FinishPredicting();
    return cost + kBoundCost * static_cast<double>(fClipped.size());
}

void ClipPredictor::FinishPredicting() noexcept {
    Remember(fStage == Stage::kPredict ? 0 : 1);
    if (fStage == Stage::kPredict) {
        fImplausible = Implausibility();
        if (fImplausible <= kHopeless && HoldToBounds()) {
            fStage = Stage::kPredictAgain;
            return StartPredicting();
        }
    }
    if (fImplausible <= kHopeless) HoldToBounds();
    StartNext();
}

void ClipPredictor::Remember(std::size_t solution) noexcept {
    constexpr double kForgetting = 0.9; // a solution
    if (fClipped.empty()) return;
    const double cost = fSolveCost / static_cast<double>(fClipped.size());
    fSolveCosts[solution] = std::max(cost, kForgetting * fSolveCosts[solution]);
}

void ClipPredictor::StartNext() noexcept {
    fFitStep = 0;
    fMeasured = 0;
    fErrorEnergy = 0;
    fSoundEnergy = 0;
    fError = kInfinity;
    const bool isLast = ++fPrediction == kPredictions || fImplausible > kHopeless;
    fStage = !isLast ? Stage::kFit : fImplausible <= kMostImplausible ? Stage::kMeasure : Stage::kDone;
}

double ClipPredictor::Measure() noexcept {
    const std::size_t begin = std::max(fMeasured, fOrder);
    fMeasured = std::min(fMeasured + kPiece, fPredicted.size());
    const std::size_t end = std::min(fMeasured, fPredicted.size() - fOrder);
    fModel.ForwardErrors(fPredicted, fErrors, {begin, end});
    for (std::size_t i = begin; i < end; ++i) {
        fErrorEnergy += fErrors[i] * fErrors[i];
        fSoundEnergy += fPredicted[i] * fPredicted[i];
    }
    if (fMeasured == fPredicted.size()) {
        fError = fSoundEnergy > 0 ? fErrorEnergy / fSoundEnergy : 1;
        fStage = Stage::kDone;
    }
    return kMeasureCost * static_cast<double>(kPiece * (fOrder + 1));
}

double ClipPredictor::Held(std::size_t place) const noexcept {
    const double clipped = fBounds.lowest[place];
    const double sign = clipped < 0 ? -1 : 1;
    return sign * std::clamp(sign * fPredicted[place], std::abs(clipped), fBounds.ceilings[place]);
}

// True when a sample was brought to a bound. It is known then, and unknown are only those that it has to do with.
bool ClipPredictor::HoldToBounds() noexcept {
    bool isHeld = false;
    std::size_t kept = 0;
    for (std::size_t begin = 0, end = 0; begin < fUnknown.size(); begin = end) {
        end = EndOfGroup(begin);
        std::size_t left = kept;
        for (std::size_t i = begin; i < end; ++i) {
            const std::size_t place = fUnknown[i];
            const double predicted = std::exchange(fPredicted[place], Held(place));
            if (fPredicted[place] == predicted) fUnknown[left++] = place;
        }
        if (left - kept == end - begin) continue;
        isHeld = true;
        kept = left;
    }
    fUnknown.resize(kept);
    return isHeld;
}

// Places are of one group when an error has both in it.
std::size_t ClipPredictor::EndOfGroup(std::size_t index) const noexcept {
    do
        ++index;
    while (index < fUnknown.size() && fUnknown[index] - fUnknown[index - 1] <= fOrder);
    return index;
}

double ClipPredictor::Implausibility() const noexcept {
    double inside = 0;
    double outside = 0;
    for (const std::size_t place : fUnknown) {
        const double rise = fPredicted[place] - fBounds.lowest[place];
        (Held(place) == fPredicted[place] ? inside : outside) += rise * rise;
    }
    return inside + outside > 0 ? outside / (inside + outside) : 0;
}

} // namespace qoc::dsp
