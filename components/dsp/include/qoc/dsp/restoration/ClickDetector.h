#pragma once

#include "qoc/dsp/restoration/LinearPrediction.h"
#include "qoc/dsp/restoration/PulseTrain.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds clicks as what neither the sound before nor the sound after lets expect: places where the errors of a linear
// prediction, forwards and backwards, both stand out, one sample alone or a few together (after Godsill and Rayner,
// "Digital Audio Restoration", 1998, chapter 5). How large the errors usually are is told by their median, of the
// neighbourhood and right beside the click on either side, which clicks hardly move. The start of a note or a hit
// surprises from the front only or goes on being as rough, and is left alone; so is what is one of a train of pulses.
// Owned by the effect that uses it; nothing but Prepare allocates.
class ClickDetector {
public:
    struct Click {
        std::size_t begin = 0;
        std::size_t end = 0; // one past the last sample
    };
    struct Settings {
        double threshold = 6;     // times the usual error
        std::size_t longest = 64; // samples; what goes on for longer is no click
        // The model is of the sound with its clicks, and shows them smaller and wider than they
        // are: what is found is to be looked at again with a better one.
        bool isModelSpoiled = false;
    };

    // `neighbourhood`: samples over which errors are of the same size; the frame is a multiple of it.
    void Prepare(std::size_t frame, std::size_t neighbourhood, double sampleRate);

    // The next frame: model and sound stay as they are until it is done.
    void Begin(const LinearPrediction& model, std::span<const double> sound, const Settings& settings) noexcept;
    // Does the next piece of work, and tells about how many nanoseconds it takes.
    double Work() noexcept;
    bool IsDone() const noexcept { return fStage == Stage::kDone; }
    // All that may be a click is known, and is to be looked at one by one.
    bool HasCollected() const noexcept { return fStage >= Stage::kCheck; }
    // When it is done: the clicks, in order, apart from each other; until the next frame.
    std::span<const Click> Clicks() const noexcept { return fClicks; }
    // Of those that are or may be clicks, as far as they are known.
    std::size_t SamplesFound() const noexcept { return fSamplesFound; }

    // About how many nanoseconds are left, in all and until all are collected; and what a frame like the last one takes
    // with a model of that order.
    double CostLeft() const noexcept { return CostOfCollecting() + CostOfChecking(fClicks.size() - fChecked); }
    double CostOfCollecting() const noexcept;
    double CostOfCollecting(std::size_t order) const noexcept;
    double CostOf(std::size_t order) const noexcept { return CostOfCollecting(order) + CostOfChecking(fCandidates); }

private:
    // What is done to the frame, one stage after the other, in pieces.
    enum class Stage : std::uint8_t { kForward, kBackward, kUsual, kCompare, kCollect, kCheck, kDone };

    std::size_t Pieces(Stage stage) const noexcept;
    double PieceCost(Stage stage, std::size_t order) const noexcept;
    double CostOfChecking(std::size_t clicks) const noexcept;
    void Do(std::size_t piece) noexcept;
    StepRange SamplesOf(std::size_t piece) const noexcept;
    void AddEnergy(StepRange samples) noexcept;
    void MeasureUsualError(std::size_t neighbourhood) noexcept;
    double UsualErrorAt(std::size_t neighbourhood) const noexcept;
    void CompareErrors(std::size_t neighbourhood) noexcept;
    void CollectClicks(std::size_t end) noexcept;
    void FinishCollecting() noexcept;
    double MeanCostOfChecking() noexcept;
    double Check() noexcept;
    void FinishChecking(bool isClick) noexcept;
    double ExcessFrom(std::size_t begin, std::size_t end) const noexcept;
    double ExcessOf(const Click& click) const noexcept;
    Click ClickAt(std::size_t place, std::size_t last, std::size_t separation, double partOfPeak) const noexcept;
    bool StandsOut(const Click& click) noexcept;
    bool IsAtAnEdge(std::span<const double> before, std::span<const double> after) noexcept;
    std::size_t PeakOf(const Click& click) const noexcept;

    std::size_t fNeighbourhood = 1;
    std::size_t fBeside = 1; // samples
    std::size_t fBurst = 1;  // samples
    std::vector<double> fForward;
    std::vector<double> fBackward;
    std::vector<double> fExcess; // how often the smaller of both holds the threshold
    std::vector<double> fScratch;
    std::vector<double> fUsual; // by neighbourhood
    std::vector<Click> fClicks;
    const LinearPrediction* fModel = nullptr;
    std::span<const double> fSound;
    Settings fSettings;
    std::size_t fOrder = 0;
    Stage fStage = Stage::kDone;
    std::size_t fPiece = 0; // of the stage
    double fEnergy = 0;
    std::size_t fPlace = 0;      // up to where clicks are collected
    std::size_t fCandidates = 0; // clicks before they were looked at
    std::size_t fChecked = 0;
    std::size_t fLeft = 0; // of those
    std::size_t fSamplesFound = 0;
    double fCheckCost = 0; // of a click, in the mean, in nanoseconds
    PulseTrain fPulses;
    bool fIsComparing = false; // the click that is looked at with others
};

} // namespace qoc::dsp
