#pragma once

#include "qoc/dsp/restoration/ClipDetector.h"
#include "qoc/dsp/restoration/ClipPredictor.h"
#include "qoc/dsp/restoration/SparseDeclipper.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Restores the clipped runs of one frame at a time: by curves, or by a model of the spectrum. The model is sparse at
// first (SparseDeclipper), which holds for many notes at once. A linear prediction then goes over it, and over the
// curves; what that finds is taken where it is the better model: where it explains the sound nearly wholly, and places
// hardly any sample where none can have been. No restored peak is out of proportion: each has a ceiling by how steeply
// the sound comes there. Works in small pieces. Owned by its effect; nothing but Prepare allocates.
class ClipRestorer {
public:
    struct Settings {
        bool usesSpectrum = true;
        std::size_t order = 32;      // of the prediction
        std::size_t minimumSize = 2; // samples of a run; shorter ones stay, and are not trusted
    };

    struct Layout {
        std::size_t frame = 2048;      // samples
        std::size_t first = 512;       // of those, from which on they are restored
        std::size_t largestOrder = 72; // of the prediction
        std::size_t rounds = 32;       // of the sparse model
        double octaves = 0;            // by which the sample rate is higher than the sound needs
    };

    // Allocates.
    void Prepare(const Layout& layout);

    // `original` and `repaired` as FrameRepairer::Frame has them, and the clipped runs, single samples too.
    void Begin(std::span<const float> original, std::span<float> repaired, std::span<const ClipDetector::Run> runs,
               const Settings& settings) noexcept;
    // Does the next piece of work, and tells about how many nanoseconds it takes. The last puts the restored samples
    // into the frame.
    double Work() noexcept;
    bool IsDone() const noexcept { return fStage == Stage::kDone; }
    // Leaves the frame as it is.
    void Stop() noexcept { fStage = Stage::kDone; }
    // About how many nanoseconds are left, and a frame with such runs takes, if it goes on as lately.
    double CostLeft() const noexcept;
    double CostOf(std::span<const ClipDetector::Run> runs, const Settings& settings) const noexcept;

private:
    // What is done, one stage after the other, in pieces.
    enum class Stage : std::uint8_t { kCurves, kSparse, kPredictFromSparse, kPredictFromCurves, kDone };

    void Collect(const ClipDetector::Run& run) noexcept;
    double CeilingOf(const ClipDetector::Run& run) const noexcept;
    void FillWithCurve(const ClipDetector::Run& run) noexcept;
    double CostOfRounds(std::size_t rounds) const noexcept;
    double CostOfPredicting(std::size_t start, std::size_t clipped) const noexcept;
    double CostOfPredictingOn(std::size_t start) const noexcept;
    void Remember(std::size_t start) noexcept;
    double Iterate() noexcept;
    double Predict() noexcept;
    void StartPrediction(std::span<const double> sound) noexcept;
    void TakePrediction(double largestError) noexcept;
    void Store(std::span<const double> sound) noexcept;

    Layout fLayout;
    double fEase = 1; // how much less the errors are because part of the spectrum is empty
    Settings fSettings;
    SparseDeclipper fSparse;
    ClipPredictor fPredictor;
    std::span<const float> fOriginal;
    std::span<float> fRepaired;
    Stage fStage = Stage::kDone;
    std::size_t fRound = 0;
    std::vector<double> fSound;        // what was clipped is as it came, until it is restored
    std::vector<double> fCurves;       // with what was clipped filled in by curves
    std::vector<std::size_t> fClipped; // places
    std::vector<double> fCeilings;     // of each
    std::vector<std::size_t> fStored;  // places in runs that are long enough
    std::vector<double> fCeilingAt;    // by place
    double fLeastError = 0;            // of the predictions that were taken
    // What predicting took lately from the sparse model and from the curves on: it may have been given up.
    std::array<double, 2> fPredictionCosts = {}; // nanoseconds a clipped sample
    double fPredictionCost = 0;                  // of the present one, so far
};

} // namespace qoc::dsp
