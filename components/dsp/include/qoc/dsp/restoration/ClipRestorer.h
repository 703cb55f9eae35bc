#pragma once

#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"
#include "qoc/dsp/restoration/ClipDetector.h"
#include "qoc/dsp/restoration/LinearPrediction.h"
#include "qoc/dsp/restoration/SparseDeclipper.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Restores the clipped runs of one frame at a time: by curves, or by a model of the spectrum. The model is sparse at
// first (SparseDeclipper), which holds for many notes at once. A linear prediction then goes over it, and over the
// curves; what that finds is taken where it is the better model: where it explains the sound nearly wholly, and places
// hardly any sample where none can have been. No restored peak is out of proportion: each has a ceiling by how steeply
// the sound comes there. Owned by its effect; nothing but Prepare allocates.
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

    // Into how many steps a frame's work is cut, and what one costs against the others, about.
    std::size_t Steps() const noexcept;
    double CostOf(std::size_t step) const noexcept;

    // `original` and `repaired` as FrameRepairer::Frame has them, and the clipped runs, single samples too.
    void Begin(std::span<const float> original, std::span<float> repaired, std::span<const ClipDetector::Run> runs,
               const Settings& settings) noexcept;
    // 0 to Steps() - 1. The last puts the restored samples into the frame.
    void Step(std::size_t step) noexcept;

private:
    void Collect(const ClipDetector::Run& run) noexcept;
    double CeilingOf(const ClipDetector::Run& run) const noexcept;
    void FillWithCurve(const ClipDetector::Run& run) noexcept;
    void StartPrediction(std::span<const double> sound) noexcept;
    void Predict() noexcept;
    void PredictWithinBounds() noexcept;
    bool HoldToBounds() noexcept;
    double Implausibility() const noexcept;
    double PredictionError() noexcept;
    void TakePrediction(double largestError) noexcept;
    void Store(std::span<const double> sound) noexcept;

    Layout fLayout;
    double fEase = 1; // how much less the errors are because part of the spectrum is empty
    Settings fSettings;
    SparseDeclipper fSparse;
    LinearPrediction fModel;
    AutoregressiveInterpolator fInterpolator;
    std::span<const float> fOriginal;
    std::span<float> fRepaired;
    std::vector<double> fSound;     // what was clipped is as it came, until it is restored
    std::vector<double> fCurves;    // with what was clipped filled in by curves
    std::vector<double> fPredicted; // from one or the other
    std::vector<double> fErrors;
    std::vector<std::size_t> fClipped; // places
    std::vector<double> fCeilings;     // of each
    std::vector<std::size_t> fStored;  // places in runs that are long enough
    std::vector<double> fCeilingAt;    // by place
    std::vector<std::size_t> fUnknown; // places that are not held at a bound
    double fImplausible = 0;           // part of the peaks' energy
    double fLeastError = 0;            // of the predictions that were taken
};

} // namespace qoc::dsp
