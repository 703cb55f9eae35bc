#pragma once

#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"
#include "qoc/dsp/restoration/ClickDetector.h"
#include "qoc/dsp/restoration/LinearPrediction.h"
#include "qoc/dsp/restoration/RepairStream.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds the clicks in a frame of one channel and fills them in, in small pieces of work. Clicks spoil the model that
// finds them: the first pass takes more away than is bad, the second looks again with the model of what is left, and
// the others look for what was hidden or not wholly found. Owned by its effect; nothing but Prepare allocates.
class ClickRepairer {
public:
    struct Settings {
        std::size_t order = 24; // of the model that finds clicks
        ClickDetector::Settings detection;
    };
    // What fills clicks in: a finer model. Large, and used by one repairer at a time, from when the first one is not
    // looking any more until it is done.
    struct Filler {
        // For frames of so many samples, models fitted to so many of them, and orders of detection.
        void Prepare(std::size_t frame, std::size_t modelled, std::size_t largestOrder);

        LinearPrediction model;
        AutoregressiveInterpolator interpolator;
    };

    // A model is fitted to the hop and half of one to either side of it. The filler outlives this.
    void Prepare(const RepairStream::Layout& layout, double sampleRate, std::size_t largestOrder, Filler& filler);

    // The next frame: what is filled in is put into `repaired` at the end.
    void Begin(std::span<float> repaired, const Settings& settings) noexcept;
    // Does the next piece of work, and tells about how many nanoseconds it takes.
    double Work() noexcept;
    // As long as it is not known whether there are clicks.
    bool IsLooking() const noexcept { return fPass == 0 && (fStage <= Stage::kFit || !fDetector.HasCollected()); }
    bool IsDone() const noexcept { return fStage == Stage::kDone; }
    // About how many nanoseconds are left, in all and until it does not look any more.
    double CostLeft() const noexcept;
    double CostOfLooking() const noexcept;
    // Clicks of the last frame that was finished.
    std::size_t Repairs() const noexcept { return fRepairs; }

private:
    enum class Stage : std::uint8_t { kTake, kFit, kDetect, kFineFit, kFill, kDone };

    static constexpr std::size_t kPasses = 4;

    double DoNext() noexcept;
    double Take() noexcept;
    double Fit() noexcept;
    double CostOfTaking() const noexcept;
    double CostOfFitting(std::size_t steps) const noexcept;
    double Detect() noexcept;
    double FitFine() noexcept;
    double Fill() noexcept;
    void StartPass() noexcept;
    void FinishDetecting() noexcept;
    void TakeOver() noexcept;
    std::span<const double> Middle() const noexcept;
    void AddClick(const ClickDetector::Click& click, std::size_t guard) noexcept;

    RepairStream::Layout fLayout;
    std::size_t fGuard = 0; // samples
    LinearPrediction fModel;
    ClickDetector fDetector;
    Filler* fFiller = nullptr;
    Settings fSettings;
    std::span<float> fRepaired;
    Stage fStage = Stage::kDone;
    std::size_t fPass = 0;
    std::size_t fTaken = 0; // samples
    std::size_t fFitStep = 0;
    std::vector<double> fSound;        // the frame
    std::vector<double> fRestored;     // with its clicks filled in
    std::vector<std::size_t> fUnknown; // places, ascending
    std::size_t fRepairs = 0;
    // What passes took in the last frames that had clicks, in nanoseconds: it goes on like that for a while.
    std::array<double, kPasses> fPassCosts{};
    double fPassCost = 0; // of the present one, so far
};

} // namespace qoc::dsp
