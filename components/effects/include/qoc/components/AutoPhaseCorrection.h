#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/delay/SampleInterpolator.h"
#include "qoc/dsp/restoration/PhaseAligner.h"
#include "qoc/dsp/restoration/TimeDelayEstimator.h"
#include "qoc/dsp/spectrum/OverlapAdd.h"
#include "qoc/dsp/stream/HopGrid.h"
#include "qoc/dsp/stream/PacedSteps.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qoc::components {

// Brings the channels of a recording in time and in phase with one of them. Alone, it finds the delay of every other
// channel against that one, takes it out, and turns what phase differences are left, frequency by frequency; or all
// other channels are moved and turned by hand. The output is late by the longest shift, one analysis and the time that
// the work on either is spread over.
class AutoPhaseCorrection : public ComponentBase, private SpectrumProcessor {
public:
    AutoPhaseCorrection();

    std::size_t Latency() const noexcept override { return fLatency; }
    // As long as a channel may be moved, and what is left of its phases' turn.
    std::size_t Tail() const noexcept override { return IsWorking() ? fDelay + fOverlapAdd.Tail() : 0; }

protected:
    ~AutoPhaseCorrection() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // What is done to a channel's phases.
    enum class Treatment : std::uint8_t { kNone, kAlign, kTurn };
    struct Channel {
        TimeDelayEstimator delay;
        PhaseAligner aligner;
        Treatment treatment = Treatment::kNone; // of the frame that is worked on
        // As the last analysis that is finished has it.
        double found = 0;          // samples that the channel is late by
        float levelRatio = 1;      // of the reference to it
        std::size_t alike = 0;     // samples for which it has seemed a copy of the reference
        std::size_t unsettled = 0; // frames to come that still have some of a move
        bool isCopy = false;       // of the reference, but for the time and phases
        double target = 0;         // what of it is to be taken out
        double shift = 0;          // what is taken out at present
        double speed = 0;          // of its changes, a sample
        double weighted = 0;       // the shift that the weights are for
        SampleInterpolator::Weights weights;
        std::ptrdiff_t whole = 0;
        SmoothedValue level;
        std::vector<std::complex<float>> spectrum; // of the last analysis
        std::vector<float> moved;                  // a chunk's sound in time with the reference
    };

    // The analysis that is worked on: where it ends, and what counts for it.
    struct Analysis {
        std::int64_t time = 0; // of the first sample after it
        std::size_t reference = 0;
        TimeDelayEstimator::Frame frame; // without the spectra
        bool isWorking = false;
    };
    enum class Kind : std::uint8_t { kWindow, kTransform, kReference, kOther };
    // A step of it, on one channel; others are counted without the reference.
    struct Step {
        Kind kind;
        std::size_t channel;
        std::size_t pass;
        RealFFT::Part part;
    };

    bool IsWorking() const noexcept { return fLatency > 0; }
    void BeginFrame() noexcept override;
    void ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept override;
    Treatment TreatmentFor(Channel& channel) const noexcept;
    void PlanAnalysis();
    void AddSteps(Kind kind, std::size_t channel, std::size_t pass, double cost);
    void ProcessChunk(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t start,
                      std::size_t frames) noexcept;
    void Move(Channel& channel, std::size_t index, std::size_t frames) noexcept;
    void Glide(Channel& channel) const noexcept;
    float SampleAt(Channel& channel, std::size_t index, std::int64_t time) noexcept;
    void ComputeWeights(Channel& channel) noexcept;
    void BeginAnalysis() noexcept;
    void Do(const Step& step) noexcept;
    void FinishAnalysis() noexcept;
    void Compare(Channel& channel) noexcept;
    void Window(std::size_t index, StepRange samples) noexcept;
    void FindDelay(std::size_t index, std::size_t pass, RealFFT::Part part) noexcept;
    TimeDelayEstimator::Frame FrameOf(std::size_t index) const noexcept;
    void FollowSettings(Channel& channel, bool isReference) noexcept;
    void StoreFoundShift() noexcept;

    HistoryBuffer fHistory;
    SampleInterpolator fInterpolator;
    OverlapAdd fOverlapAdd;
    std::unique_ptr<RealFFT> fTransform;
    std::vector<float> fWindow;
    std::vector<float> fScratch;
    std::vector<Channel> fChannels;
    std::vector<const float*> fMoved;
    std::vector<float*> fOutputs; // from where the chunk goes to
    std::size_t fLatency = 0;
    std::size_t fDelay = 0; // of the reference, ahead of the transform
    std::size_t fSize = 0;  // of the frames whose phases are turned
    std::size_t fAnalysisSize = 0;
    std::size_t fHop = 0; // of the analysis
    HopGrid fAnalyses;
    std::size_t fStepsPerAnalysis = 1;
    std::size_t fSteps = 0; // hops of the grid
    Analysis fAnalysis;
    std::vector<Step> fWork; // of an analysis
    PacedSteps fPace;
    double fGlide = 0; // the rate at which a shift follows its target, a sample

    std::size_t fReference = 0;
    bool fShiftsTime = true;
    bool fIsAutomatic = true;
    bool fBalances = false;
    std::size_t fResponse = 0; // samples
    float fKept = 0;
    float fStrength = 1;
    double fLongestShift = 0;      // samples
    double fTimeShift = 0;         // samples, by hand
    std::complex<float> fTurn = 1; // by hand
    PhaseAligner::Settings fAligning;
    // Of the frame that is worked on.
    std::size_t fTakenReference = 0;
    std::complex<float> fTakenTurn = 1;
    PhaseAligner::Settings fTakenAligning;
    std::size_t fStepsPerPass = 1;
};

} // namespace qoc::components
