#pragma once

#include "kromediatypes/AudioBlock.h"
#include "qoc/dsp/spectrum/RealFFT.h"
#include "qoc/dsp/stream/HopGrid.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// What an effect does to the spectra of one frame, in steps.
class SpectrumProcessor {
public:
    using Spectrum = std::span<std::complex<float>>;

    // A frame is complete, and its steps follow with the sound after it: settings that count for it are taken over
    // here, so that how the steps fall does not matter. Sound thread.
    virtual void BeginFrame() noexcept {}
    // The spectra of the frame of every channel, transform / 2 + 1 bins each, to be changed in place: 0 to one below
    // the number of steps prepared for, in order. Sound thread.
    virtual void ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept = 0;

protected:
    ~SpectrumProcessor() = default;
};

// The short-time Fourier transform as a stream (Allen and Rabiner, "A unified approach to short-time Fourier analysis
// and synthesis", 1977): every `hop` frames of sound the last `frame` of them are windowed, filled up with zeros to
// `transform`, transformed, handed to a SpectrumProcessor, transformed back and added to the output. What the processor
// does is heard without a seam if the product of the two windows, shifted by the hop, adds up to 1; the zeros leave it
// room for a response of transform - frame samples. Frames lie on a grid that starts at Reset, so that blocks of any
// size give the same output. The work on a frame is spread evenly over the time of the hop after it, so that no block
// carries all of it, and the sound is later by that hop. Owned by its effect. Samples that are no number, or absurdly
// large, count as zero.
class OverlapAdd {
public:
    struct Layout {
        std::size_t transform = 0; // at least the frame; even, fast if made of the factors 2, 3 and 5
        std::size_t frame = 0;     // a multiple of the hop
        std::size_t hop = 0;
    };
    // Steps of what the processor does to a frame that take about as long as each other.
    struct Work {
        std::size_t steps = 1;
        double cost = 1; // of all of them, in transforms of one channel
    };

    // Allocates, and resets. `work` is in the order in which it is done; its steps are numbered through. `analysis`
    // weights the `frame` samples that go in; `synthesis`, which is empty or has `transform` values, those that come
    // out.
    void Prepare(std::size_t channels, const Layout& layout, std::span<const Work> work, std::vector<float> analysis,
                 std::vector<float> synthesis = {});
    // Forgets all sound, and the work that is under way.
    void Reset() noexcept;

    // How many samples the output of an untouched spectrum comes later than the input.
    std::size_t Latency() const noexcept { return fLayout.frame + fLayout.hop; }
    // How many samples later than that the output may still sound, when a processor changes spectra as it likes.
    std::size_t Tail() const noexcept { return fLayout.transform; }
    // Sound thread. As many channels as prepared; outputs may be the inputs.
    void Process(const kromediatypes::AudioBlock& block, SpectrumProcessor& processor) noexcept;

private:
    struct Channel {
        std::vector<float> input;  // a ring: the frame that is worked on, and the hop that comes in
        std::vector<float> output; // a ring: the hop that is heard, and what the frames so far add up to after it
        std::vector<std::complex<float>> spectrum;
    };
    enum class Kind : std::uint8_t { kWindow, kForward, kProcess, kInverse, kAdd };
    // A part of the work on one channel, or on all for the processor.
    struct Job {
        Kind kind;
        std::size_t channel;
        RealFFT::Part part;
    };

    void PlanWork(std::span<const Work> work);
    void AddJobs(Kind kind, std::size_t channel, std::size_t parts, double cost);
    void Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                  std::size_t position) noexcept;
    void FinishHop(SpectrumProcessor& processor) noexcept;
    void Do(const Job& job, SpectrumProcessor& processor) noexcept;
    void Window(const Channel& channel, StepRange range) noexcept;
    void Add(Channel& channel, StepRange range) noexcept;

    Layout fLayout;
    std::optional<RealFFT> fTransform;
    std::vector<float> fAnalysis;
    std::vector<float> fSynthesis;
    std::vector<float> fScratch;
    std::vector<Channel> fChannels;
    std::vector<SpectrumProcessor::Spectrum> fSpectra;
    HopGrid fGrid;
    PacedSteps fPace;
    std::vector<Job> fJobs;  // by step
    std::size_t fOldest = 0; // where the frame begins in the input's ring
    std::size_t fHeard = 0;  // where the hop that is heard begins in the output's ring
    bool fHasFrame = false;
};

} // namespace qoc::dsp
