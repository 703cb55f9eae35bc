#include "qoc/dsp/restoration/ClipRestorer.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// How often the prediction is made anew from what it has restored.
constexpr std::size_t kPredictions = 3;
constexpr std::size_t kHalvesOfChain = 2 * kPredictions;
// A peak is rounder than the tangents of the sound on both sides, which meet above it; samples are apart, so that the
// tangents are known roughly. The margin is for peaks that rise within a sample.
constexpr double kTangents = 4;
constexpr double kMargin = 1.4125; // 3 dB
constexpr double kHighest = 4;     // 12 dB over the clipping
// The prediction is the better model when its errors are that much weaker than the sound, from the sparse model on or
// from the curves, and that little of the peaks' energy lies out of bounds.
constexpr double kLargestError = 1e-4;           // -40 dB
constexpr double kLargestErrorFromCurves = 3e-4; // -35 dB
constexpr double kMostImplausible = 0.05;
constexpr double kHopeless = 0.5;      // no further prediction then
constexpr double kEaseOfOctave = 1e-2; // an empty octave at the top is as easy to predict as that

} // namespace

void ClipRestorer::Prepare(const Layout& layout) {
    fLayout = layout;
    fEase = std::pow(kEaseOfOctave, layout.octaves);
    const std::size_t frame = layout.frame;
    fSparse.Prepare(frame);
    fModel.Prepare(frame, layout.largestOrder);
    fInterpolator.Prepare(frame, layout.largestOrder);
    for (std::vector<double>* const values : {&fSound, &fCurves, &fPredicted, &fErrors, &fCeilingAt})
        values->assign(frame, 0.0);
    fCeilings.reserve(frame);
    for (std::vector<std::size_t>* const places : {&fClipped, &fStored, &fUnknown})
        places->reserve(frame);
}

// The sparse model's rounds, the predictions from there and those from the curves.
std::size_t ClipRestorer::Steps() const noexcept {
    return fLayout.rounds + 2 * kHalvesOfChain;
}

// Predictions are made with as many equations as there are clipped samples.
double ClipRestorer::CostOf(std::size_t step) const noexcept {
    constexpr double kPrediction = 5;
    return step < fLayout.rounds ? 1 : kPrediction;
}

void ClipRestorer::Begin(std::span<const float> original, std::span<float> repaired,
                         std::span<const ClipDetector::Run> runs, const Settings& settings) noexcept {
    fOriginal = original;
    fRepaired = repaired;
    fSettings = settings;
    std::ranges::copy(repaired, fSound.begin());
    fClipped.clear();
    fCeilings.clear();
    fStored.clear();
    for (const ClipDetector::Run& run : runs)
        Collect(run);
    std::ranges::copy(fSound, fCurves.begin());
    for (const ClipDetector::Run& run : runs)
        FillWithCurve(run);
    fSparse.Begin(fSound, fClipped, fCeilings);
}

void ClipRestorer::Step(std::size_t step) noexcept {
    if (!fSettings.usesSpectrum) {
        if (step == 0) Store(fCurves);
        return;
    }
    if (step < fLayout.rounds) return fSparse.Iterate(step, fLayout.rounds);
    const std::size_t half = step - fLayout.rounds;
    if (half == 0) {
        fSparse.Finish(fSound);
        fLeastError = 1;
        StartPrediction(fSound);
    }
    half % 2 == 0 ? Predict() : PredictWithinBounds();
    if (half + 1 == kHalvesOfChain) {
        TakePrediction(kLargestError);
        StartPrediction(fCurves);
    }
    if (half + 1 < 2 * kHalvesOfChain) return;
    TakePrediction(kLargestErrorFromCurves);
    Store(fSound);
}

// Samples that have been heard stay. What earlier frames have made of the others is made anew.
void ClipRestorer::Collect(const ClipDetector::Run& run) noexcept {
    const double ceiling = CeilingOf(run);
    for (std::size_t place = std::max(run.begin, fLayout.first); place < run.end; ++place) {
        fClipped.push_back(place);
        fSound[place] = fOriginal[place];
        fCeilingAt[place] = std::max<double>(ceiling, std::abs(fOriginal[place]));
        fCeilings.push_back(fCeilingAt[place]);
        if (run.end - run.begin >= fSettings.minimumSize) fStored.push_back(place);
    }
}

double ClipRestorer::CeilingOf(const ClipDetector::Run& run) const noexcept {
    const double level = std::abs(fOriginal[run.begin]);
    if (run.begin < 2 || run.end + 2 > fOriginal.size()) return kHighest * level;
    const double left = std::abs(fOriginal[run.begin - 1] - fOriginal[run.begin - 2]);
    const double right = std::abs(fOriginal[run.end] - fOriginal[run.end + 1]);
    const auto length = static_cast<double>(run.end - run.begin + 1);
    const double meeting = left + right > 0 ? left * right / (left + right) * length : 0;
    return std::min(kHighest * level, kMargin * level + kTangents * meeting);
}

// Hermite's cubic, which goes on from both sides as steeply as the sound comes there.
void ClipRestorer::FillWithCurve(const ClipDetector::Run& run) noexcept {
    if (run.begin < 2 || run.end + 2 > fOriginal.size()) return;
    const double left = fOriginal[run.begin - 1];
    const double right = fOriginal[run.end];
    const auto length = static_cast<double>(run.end - run.begin + 1);
    const double leftSlope = (left - fOriginal[run.begin - 2]) * length;
    const double rightSlope = (fOriginal[run.end + 1] - right) * length;
    for (std::size_t place = std::max(run.begin, fLayout.first); place < run.end; ++place) {
        const double t = static_cast<double>(place - run.begin + 1) / length;
        const double s = 1 - t;
        fCurves[place] = s * s * ((1 + 2 * t) * left + t * leftSlope) + t * t * ((1 + 2 * s) * right - s * rightSlope);
    }
}

void ClipRestorer::StartPrediction(std::span<const double> sound) noexcept {
    std::ranges::copy(sound, fPredicted.begin());
    fImplausible = 0;
}

void ClipRestorer::Predict() noexcept {
    if (fImplausible > kHopeless) return;
    fUnknown = fClipped;
    const std::size_t last = fPredicted.size() - fLayout.largestOrder;
    std::erase_if(fUnknown, [last](std::size_t place) { return place >= last; });
    fModel.Fit(fPredicted, fSettings.order);
    fInterpolator.RestoreUnbounded(fModel.Coefficients(), fUnknown, fPredicted);
    fImplausible = Implausibility();
}

// What the prediction would place out of bounds is held there, and the rest fitted to that once more.
void ClipRestorer::PredictWithinBounds() noexcept {
    if (fImplausible > kHopeless) return;
    if (HoldToBounds()) fInterpolator.RestoreUnbounded(fModel.Coefficients(), fUnknown, fPredicted);
    HoldToBounds();
}

// True when a sample was brought to a bound; it is known then.
bool ClipRestorer::HoldToBounds() noexcept {
    const auto isOutside = [&](std::size_t place) {
        const double clipped = fOriginal[place];
        const double sign = clipped < 0 ? -1 : 1;
        const double held = sign * std::clamp(sign * fPredicted[place], std::abs(clipped), fCeilingAt[place]);
        const bool isHeld = held != fPredicted[place];
        fPredicted[place] = held;
        return isHeld;
    };
    return std::erase_if(fUnknown, isOutside) > 0;
}

double ClipRestorer::Implausibility() const noexcept {
    double inside = 0;
    double outside = 0;
    for (const std::size_t place : fUnknown) {
        const double clipped = fOriginal[place];
        const double sign = clipped < 0 ? -1 : 1;
        const double rise = sign * (fPredicted[place] - clipped);
        const bool isPlausible = rise >= 0 && sign * fPredicted[place] <= fCeilingAt[place];
        (isPlausible ? inside : outside) += rise * rise;
    }
    return inside + outside > 0 ? outside / (inside + outside) : 0;
}

// Part of the sound's energy.
double ClipRestorer::PredictionError() noexcept {
    fModel.ForwardErrors(fPredicted, fErrors);
    double errors = 0;
    double sound = 0;
    for (std::size_t i = fSettings.order; i < fPredicted.size() - fSettings.order; ++i) {
        errors += fErrors[i] * fErrors[i];
        sound += fPredicted[i] * fPredicted[i];
    }
    return sound > 0 ? errors / sound : 1;
}

// In place of what there is, when it is better than that.
void ClipRestorer::TakePrediction(double largestError) noexcept {
    if (fImplausible > kMostImplausible) return;
    const double error = PredictionError();
    if (error > fEase * largestError || error > fLeastError) return;
    fLeastError = error;
    std::ranges::copy(fPredicted, fSound.begin());
}

void ClipRestorer::Store(std::span<const double> sound) noexcept {
    for (const std::size_t place : fStored) {
        const double clipped = fOriginal[place];
        const double sign = clipped < 0 ? -1 : 1;
        fRepaired[place] =
            static_cast<float>(sign * std::clamp(sign * sound[place], std::abs(clipped), fCeilingAt[place]));
    }
}

} // namespace qoc::dsp
