#pragma once

#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"
#include "qoc/dsp/restoration/LinearPrediction.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Predicts the clipped samples of a frame from the sound around them: a linear prediction fills them in, and is made
// anew from that a few times. What it would place out of bounds is held there, and the rest fitted to that once more.
// In small pieces of work. Owned by who restores; nothing but Prepare allocates.
class ClipPredictor {
public:
    // Of the samples that are predicted, by place.
    struct Bounds {
        std::span<const float> lowest; // the sound as it came
        std::span<const double> ceilings;
    };

    // Allocates.
    void Prepare(std::size_t frame, std::size_t largestOrder);

    // Starts from `sound`, in which the samples at the places `clipped`, ascending, are as good as they are known. Both
    // bounds stay valid until it is done.
    void Begin(std::span<const double> sound, std::span<const std::size_t> clipped, const Bounds& bounds,
               std::size_t order) noexcept;
    // Does the next piece of work, and tells about how many nanoseconds it takes.
    double Work() noexcept;
    bool IsDone() const noexcept { return fStage == Stage::kDone; }
    // The first prediction was not so far out of bounds that it was given up.
    bool HasBegunWell() const noexcept { return fPrediction > 0 || fStage == Stage::kPredictAgain; }
    // About how many nanoseconds are left, and so many clipped samples take, if it goes on as lately.
    double CostLeft() const noexcept;
    double CostOf(std::size_t clipped, std::size_t order) const noexcept;

    // When it is done: the sound with what was predicted.
    std::span<const double> Predicted() const noexcept { return fPredicted; }
    // The energy of the prediction's errors against that of the sound; infinite where much of the peaks was out of
    // bounds.
    double Error() const noexcept { return fError; }

private:
    // What is done for each prediction, one stage after the other, and after the last.
    enum class Stage : std::uint8_t { kFit, kPredict, kPredictAgain, kMeasure, kDone };

    double Fit() noexcept;
    void StartPredicting() noexcept;
    double Predict() noexcept;
    void FinishPredicting() noexcept;
    void StartNext() noexcept;
    double Measure() noexcept;
    void Remember(std::size_t solution) noexcept;
    double CostOfOne(std::size_t clipped) const noexcept;
    double CostOfMeasuring(std::size_t begin, std::size_t order) const noexcept;
    double Held(std::size_t place) const noexcept;
    bool HoldToBounds() noexcept;
    std::size_t EndOfGroup(std::size_t index) const noexcept;
    double Implausibility() const noexcept;

    LinearPrediction fModel;
    AutoregressiveInterpolator fInterpolator;
    std::size_t fLargestOrder = 0;
    std::size_t fOrder = 0;
    Bounds fBounds;
    std::vector<std::size_t> fClipped; // that can be predicted
    std::vector<std::size_t> fUnknown; // of those, not held at a bound
    std::vector<double> fPredicted;
    std::vector<double> fErrors;
    Stage fStage = Stage::kDone;
    std::size_t fFitStep = 0;
    std::size_t fPrediction = 0;
    double fSolveCost = 0;                  // of the present solution, so far
    std::array<double, 2> fSolveCosts = {}; // of the first and the second one, a clipped sample, as it was lately
    double fImplausible = 0;                // part of the peaks' energy
    std::size_t fMeasured = 0;              // samples
    double fErrorEnergy = 0;                // of those
    double fSoundEnergy = 0;
    double fError = 0;
};

} // namespace qoc::dsp
