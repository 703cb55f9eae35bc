#pragma once

#include "kromediatypes/AudioBlock.h"
#include "qoc/dsp/spectrum/RealFFT.h"
#include "qoc/dsp/stream/HopGrid.h"

#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// What an effect does to the spectra of one frame.
class SpectrumProcessor {
public:
    using Spectrum = std::span<std::complex<float>>;

    // The spectra of the frame of every channel, transform / 2 + 1 bins each, to be changed in place. Sound thread.
    virtual void ProcessSpectra(std::span<const Spectrum> spectra) noexcept = 0;

protected:
    ~SpectrumProcessor() = default;
};

// The short-time Fourier transform as a stream (Allen and Rabiner, "A unified approach to short-time Fourier analysis
// and synthesis", 1977): every `hop` frames of sound the last `frame` of them are windowed, filled up with zeros to
// `transform`, transformed, handed to a SpectrumProcessor, transformed back and added to the output. What the processor
// does is heard without a seam if the product of the two windows, shifted by the hop, adds up to 1; the zeros leave it
// room for a response of transform - frame samples. Frames lie on a grid that starts at Reset, so that blocks of any
// size give the same output. Owned by its effect. Samples that are no number, or absurdly large, count as zero.
class OverlapAdd {
public:
    struct Layout {
        std::size_t transform = 0; // at least the frame; even, fast if made of the factors 2, 3 and 5
        std::size_t frame = 0;     // a multiple of the hop
        std::size_t hop = 0;
    };

    // Allocates, and resets. `analysis` weights the `frame` samples that go in; `synthesis`, which is empty or has
    // `transform` values, those that come out.
    void Prepare(std::size_t channels, const Layout& layout, std::vector<float> analysis,
                 std::vector<float> synthesis = {});
    // Forgets all sound.
    void Reset() noexcept;

    // How many samples the output of an untouched spectrum comes later than the input.
    std::size_t Latency() const noexcept { return fLayout.frame; }
    // How many samples later than that the output may still sound, when a processor changes spectra as it likes.
    std::size_t Tail() const noexcept { return fLayout.transform; }
    // Sound thread. As many channels as prepared; outputs may be the inputs.
    void Process(const kromediatypes::AudioBlock& block, SpectrumProcessor& processor) noexcept;

private:
    struct Channel {
        std::vector<float> input;  // the last frame's worth
        std::vector<float> output; // what the frames so far add up to, from the next hop on
        std::vector<std::complex<float>> spectrum;
    };

    void Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                  std::size_t position) noexcept;
    void RunFrame(SpectrumProcessor& processor) noexcept;
    void Analyse(Channel& channel) noexcept;
    void Synthesise(Channel& channel) noexcept;

    Layout fLayout;
    std::optional<RealFFT> fTransform;
    std::vector<float> fAnalysis;
    std::vector<float> fSynthesis;
    std::vector<float> fScratch;
    std::vector<Channel> fChannels;
    std::vector<SpectrumProcessor::Spectrum> fSpectra;
    HopGrid fGrid;
};

} // namespace qoc::dsp
