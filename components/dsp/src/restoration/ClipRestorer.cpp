#include "qoc/dsp/restoration/ClipRestorer.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// A peak is rounder than the tangents of the sound on both sides, which meet above it; samples are apart, so that the
// tangents are known roughly. The margin is for peaks that rise within a sample.
constexpr double kTangents = 4;
constexpr double kMargin = 1.4125; // 3 dB
constexpr double kHighest = 4;     // 12 dB over the clipping
// The prediction is the better model when its errors are that much weaker than the sound, from the sparse model on or
// from the curves.
constexpr double kLargestError = 1e-4;           // -40 dB
constexpr double kLargestErrorFromCurves = 3e-4; // -35 dB
constexpr std::size_t kFromSparse = 0;
constexpr std::size_t kFromCurves = 1;
constexpr double kEaseOfOctave = 1e-2; // an empty octave at the top is as easy to predict as that

} // namespace

void ClipRestorer::Prepare(const Layout& layout) {
    fLayout = layout;
    fEase = std::pow(kEaseOfOctave, layout.octaves);
    const std::size_t frame = layout.frame;
    fSparse.Prepare(frame);
    fPredictor.Prepare(frame, layout.largestOrder);
    for (std::vector<double>* const values : {&fSound, &fCurves, &fCeilingAt})
        values->assign(frame, 0.0);
    fCeilings.reserve(frame);
    for (std::vector<std::size_t>* const places : {&fClipped, &fStored})
        places->reserve(frame);
    fPredictionCosts.fill(fPredictor.CostOf(frame, layout.largestOrder) / static_cast<double>(frame));
    fStage = Stage::kDone;
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
    fRound = 0;
    fLeastError = 1;
    fStage = settings.usesSpectrum ? Stage::kSparse : Stage::kCurves;
}

double ClipRestorer::Work() noexcept {
    switch (fStage) {
    case Stage::kCurves: Store(fCurves); return 0;
    case Stage::kSparse: return Iterate();
    case Stage::kPredictFromSparse:
    case Stage::kPredictFromCurves: return Predict();
    case Stage::kDone: return 0;
    }
    return 0;
}

double ClipRestorer::CostOf(std::span<const ClipDetector::Run> runs, const Settings& settings) const noexcept {
    if (!settings.usesSpectrum) return 0;
    std::size_t clipped = 0;
    for (const ClipDetector::Run& run : runs)
        clipped += run.end - std::min(run.end, std::max(run.begin, fLayout.first));
    return CostOfRounds(fLayout.rounds) + CostOfPredicting(kFromSparse, clipped) +
           CostOfPredicting(kFromCurves, clipped);
}

double ClipRestorer::CostOfRounds(std::size_t rounds) const noexcept {
    return static_cast<double>(rounds) * fSparse.CostOfRound();
}

// A prediction that was given up lately may be none the next time: half of a whole one is always reckoned with.
double ClipRestorer::CostOfPredicting(std::size_t start, std::size_t clipped) const noexcept {
    constexpr double kLeast = 0.5;
    const double whole = fPredictor.CostOf(clipped, fSettings.order);
    const double lately = fPredictionCosts[start] * static_cast<double>(std::max<std::size_t>(1, clipped));
    return std::clamp(lately, kLeast * whole, whole);
}

double ClipRestorer::CostLeft() const noexcept {
    const auto predicting = [this](std::size_t start) { return CostOfPredicting(start, fClipped.size()); };
    switch (fStage) {
    case Stage::kSparse:
        return CostOfRounds(fLayout.rounds - fRound) + predicting(kFromSparse) + predicting(kFromCurves);
    case Stage::kPredictFromSparse: return CostOfPredictingOn(kFromSparse) + predicting(kFromCurves);
    case Stage::kPredictFromCurves: return CostOfPredictingOn(kFromCurves);
    default: return 0;
    }
}

// Once its beginning was not hopeless it mostly goes on to the end.
double ClipRestorer::CostOfPredictingOn(std::size_t start) const noexcept {
    if (fPredictor.HasBegunWell()) return fPredictor.CostLeft();
    const double left = CostOfPredicting(start, fClipped.size()) - fPredictionCost;
    return std::min(std::max(left, 0.0), fPredictor.CostLeft());
}

void ClipRestorer::Remember(std::size_t start) noexcept {
    constexpr double kForgetting = 0.9; // a frame
    const double cost = fPredictionCost / static_cast<double>(std::max<std::size_t>(1, fClipped.size()));
    fPredictionCosts[start] = std::max(cost, kForgetting * fPredictionCosts[start]);
}

double ClipRestorer::Iterate() noexcept {
    fSparse.Iterate(fRound, fLayout.rounds);
    if (++fRound == fLayout.rounds) {
        fSparse.Finish(fSound);
        StartPrediction(fSound);
        fStage = Stage::kPredictFromSparse;
    }
    return fSparse.CostOfRound();
}

double ClipRestorer::Predict() noexcept {
    const double cost = fPredictor.Work();
    fPredictionCost += cost;
    if (!fPredictor.IsDone()) return cost;
    if (fStage == Stage::kPredictFromSparse) {
        Remember(kFromSparse);
        TakePrediction(kLargestError);
        StartPrediction(fCurves);
        fStage = Stage::kPredictFromCurves;
    } else {
        Remember(kFromCurves);
        TakePrediction(kLargestErrorFromCurves);
        Store(fSound);
    }
    return cost;
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
    fPredictor.Begin(sound, fClipped, {fOriginal, fCeilingAt}, fSettings.order);
    fPredictionCost = 0;
}

// In place of what there is, when it is better than that.
void ClipRestorer::TakePrediction(double largestError) noexcept {
    const double error = fPredictor.Error();
    if (error > fEase * largestError || error > fLeastError) return;
    fLeastError = error;
    std::ranges::copy(fPredictor.Predicted(), fSound.begin());
}

void ClipRestorer::Store(std::span<const double> sound) noexcept {
    for (const std::size_t place : fStored) {
        const double clipped = fOriginal[place];
        const double sign = clipped < 0 ? -1 : 1;
        fRepaired[place] =
            static_cast<float>(sign * std::clamp(sign * sound[place], std::abs(clipped), fCeilingAt[place]));
    }
    fStage = Stage::kDone;
}

} // namespace qoc::dsp
