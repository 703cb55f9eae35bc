#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/delay/SampleInterpolator.h"
#include "qoc/dsp/restoration/PhaseAligner.h"
#include "qoc/dsp/restoration/TimeDelayEstimator.h"
#include "qoc/dsp/spectrum/OverlapAdd.h"
#include "qoc/dsp/stream/HopGrid.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <memory>
#include <vector>

namespace qoc::components {

// Brings the channels of a recording in time and in phase with one of them. Alone, it finds the delay of every other
// channel against that one, takes it out, and turns what phase differences are left, frequency by frequency; or all
// other channels are moved and turned by hand. The output is late by the longest shift and one analysis.
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
    struct Channel {
        TimeDelayEstimator delay;
        PhaseAligner aligner;
        double found = 0;          // samples that the channel is late by
        std::size_t alike = 0;     // samples for which it has seemed a copy of the reference
        std::size_t unsettled = 0; // frames to come that still have some of a move
        bool isCopy = false;       // of the reference, but for the time and phases
        double target = 0;         // what of it is to be taken out
        double shift = 0;          // what is taken out at present
        double weighted = 0;       // the shift that the weights are for
        SampleInterpolator::Weights weights;
        std::ptrdiff_t whole = 0;
        SmoothedValue level;
        std::vector<std::complex<float>> spectrum; // of the last analysis
        std::vector<float> moved;                  // a chunk's sound in time with the reference
    };

    bool IsWorking() const noexcept { return fLatency > 0; }
    void ProcessSpectra(std::span<const Spectrum> spectra) noexcept override;
    void ProcessChunk(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t start,
                      std::size_t frames) noexcept;
    void Move(Channel& channel, std::size_t index, std::size_t frames) noexcept;
    float SampleAt(Channel& channel, std::size_t index, std::int64_t time) noexcept;
    void ComputeWeights(Channel& channel) noexcept;
    void Analyse() noexcept;
    void Compare(Channel& channel) noexcept;
    void Transform(Channel& channel, std::size_t index) noexcept;
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
    std::size_t fSize = 0;
    std::size_t fHop = 0; // of the analysis
    HopGrid fAnalyses;
    std::size_t fStepsPerAnalysis = 1;
    std::size_t fSteps = 0;
    double fGlide = 0; // of the way to the target, a sample

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
};

} // namespace qoc::components
