#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/restoration/NoiseTracker.h"
#include "qoc/dsp/restoration/SpectralGain.h"
#include "qoc/dsp/spectrum/OverlapAdd.h"

#include <vector>

namespace qoc::components {

// Takes broadband noise out of a sound without having been shown the noise: a NoiseTracker finds it, for each channel
// by itself, and a SpectralGain lets less of it through. It learns as the sound goes on: what comes within the first
// half second is hardly touched.
//
// The FFT size and the high quality, which works on twice as many frames, are taken when the effect is prepared.
class AdaptiveNoiseReduction : public ComponentBase, private SpectrumProcessor {
public:
    AdaptiveNoiseReduction();

    std::size_t Latency() const noexcept override { return fFrame; }
    std::size_t Tail() const noexcept override { return fStream.Tail(); }

protected:
    ~AdaptiveNoiseReduction() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    struct Channel {
        NoiseTracker noise;
        SpectralGain gain;
    };

    void ProcessSpectra(std::span<const Spectrum> spectra) noexcept override;
    void Reduce(Channel& channel, Spectrum spectrum) noexcept;
    void MeasureNoiseFloor() noexcept;
    void StoreNoiseFloor() noexcept;

    OverlapAdd fStream;
    std::size_t fFrame = 0;
    double fFramesPerSecond = 1;
    double fPowerScale = 0; // from a sum of powers to that of the sound
    std::vector<Channel> fChannels;
    std::vector<float> fPowers;
    SpectralGain::Settings fSettings;
    float fMargin = 1;
    double fNoiseFloor = 0; // dB, of the noisiest channel
    double fStoredNoiseFloor = 1;
};

} // namespace qoc::components
