#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/restoration/NoiseEstimator.h"
#include "qoc/dsp/restoration/SpectralGain.h"
#include "qoc/dsp/spectrum/OverlapAdd.h"
#include "qoc/dsp/stream/HopGrid.h"

#include <vector>

namespace qoc::components {

// Takes broadband noise out of a sound without having been shown the noise: a NoiseEstimator finds it, for each
// channel by itself, and a SpectralGain lets less of it through. It learns as the sound goes on: what comes
// within the first half second passes. When it has listened to the whole sound before, it knows of each place the noise
// of the seconds around it, and works from the first sample on.
//
// The FFT size and the high quality, which works on twice as many frames, are taken when the effect is prepared.
class AdaptiveNoiseReduction : public ComponentBase, private SpectrumProcessor {
public:
    AdaptiveNoiseReduction();

    std::size_t Latency() const noexcept override { return fStream.Latency(); }
    std::size_t Tail() const noexcept override { return fStream.Tail(); }
    bool WantsToListen() const noexcept override { return true; }

protected:
    ~AdaptiveNoiseReduction() override;

    void OnListen(std::span<const float* const> inputs, std::size_t frames) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    struct Channel {
        NoiseEstimator estimator;
        std::vector<float> noise; // of the frame that is worked on
        SpectralGain gain;
    };

    void Hear(std::size_t frames) noexcept;
    void RecallNoise() noexcept;
    void BeginFrame() noexcept override;
    void ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept override;
    void MeasureNoiseFloor() noexcept;
    void StoreNoiseFloor() noexcept;

    OverlapAdd fStream;
    std::size_t fFrame = 0;
    double fFramesPerSecond = 1;
    float fPowerScale = 0; // of the bins
    std::vector<Channel> fChannels;
    std::vector<float> fPowers;
    HopGrid fGrid;
    // A part of the block.
    std::vector<const float*> fInputs;
    std::vector<float*> fOutputs;
    bool fHasListened = false;
    std::size_t fFrames = 0; // processed since Reset
    SpectralGain::Settings fSettings;
    SpectralGain::Settings fTaken; // of the frame that is worked on
    std::size_t fStepsPerPass = 1; // over a channel's bins
    double fNoiseFloor = 0;        // dB, of the noisiest channel
    double fStoredNoiseFloor = 1;
};

} // namespace qoc::components
