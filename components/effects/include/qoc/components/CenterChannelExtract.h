#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/spectrum/OverlapAdd.h"

#include <array>
#include <complex>
#include <vector>

namespace qoc::components {

// Takes the sound that stands at one place between left and right out of a stereo sound, or what is beside it. Every
// frequency of every frame is compared: how far its balance of levels and its phase difference are from the ones
// wanted tells how much of it is "center", and that share gets one level, the rest another. Channels behind the first
// two, and a single one, come out as they went in, as late as the others.
class CenterChannelExtract : public ComponentBase, private SpectrumProcessor {
public:
    CenterChannelExtract();

    // The frequencies of the range that is chosen are told in two parameters, which follow every change.
    std::size_t Latency() const noexcept override { return fLatency; }
    std::size_t Tail() const noexcept override { return fLatency > 0 ? fTransform.Tail() : 0; }

protected:
    ~CenterChannelExtract() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // Where the extracted sound stands.
    struct Place {
        float phase = 0; // radians that the right channel lags by
        float pan = 0;   // -1...1
        float delay = 0; // seconds that the right channel is late by
    };
    struct Band {
        float low = 0; // hertz
        float high = 0;
    };
    // Up to `inner` from the place all is center, from `outer` on nothing.
    struct Edge {
        float inner = 0;
        float outer = 0;
    };

    // What counts for a frame.
    struct Settings {
        Place place;
        Band band;
        Edge phaseEdge;
        Edge panEdge;
        float centerLevel = 1;
        float sideLevel = 0;
        float bleed = 0;
        float kept = 0; // share left of the frame before
        bool isMono = false;
        bool keepsOutside = false;
        bool hearsRemoved = false;
    };

    void BeginFrame() noexcept override { fTaken = fSettings; }
    void ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept override;
    void ProcessBin(std::size_t bin, std::complex<float>& left, std::complex<float>& right) noexcept;
    float ShareOf(std::complex<float> left, std::complex<float> right, std::complex<float> turn) const noexcept;
    float LevelOf(float share, bool isInside) const noexcept;
    float LevelFrom(int index) const noexcept;
    Place ReadPlace() const noexcept;
    Band ReadBand() const noexcept;
    Edge ReadEdge(int index, float unit) const noexcept;
    void StorePresentBand();
    void DelayOthers(const kroaudiofilterhost::AudioFilterBlock& block) noexcept;

    OverlapAdd fTransform;
    std::vector<float> fShares;              // of the last frame, a bin each
    std::vector<std::vector<float>> fOthers; // rings of fLatency samples
    std::size_t fOthersPosition = 0;
    std::size_t fLatency = 0;
    float fHertzPerBin = 0;
    float fFrameSeconds = 0; // from one to the next

    std::size_t fSteps = 1;
    Settings fSettings;
    Settings fTaken; // of the frame that is worked on
};

} // namespace qoc::components
