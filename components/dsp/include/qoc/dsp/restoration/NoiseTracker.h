#pragma once

#include "qoc/dsp/restoration/NoiseBands.h"
#include "qoc/dsp/spectrum/RealFFT.h"
#include "qoc/dsp/stream/HopGrid.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Looks again and again at a sound and tells how much steady, broad noise there may be in it at most. Noise is what
// looks like noise both ways: in a long frame, which shows the gaps between the partials of tones, the lower quarter of
// a band's bins; in short ones, which show the gaps between hits, the quietest fifth. Both are scaled to the mean that
// Gaussian noise would have there. A look is one long frame, and there is one every half of it; the work on it is
// spread over the sound that follows. Owned by the effect that uses it; nothing but Prepare allocates.
class NoiseTracker {
public:
    // What a look found, by band, of noise whose samples have that mean square.
    struct Look {
        std::span<const float> noise;
        std::span<const float> sound; // together with the noise; 0 in silence
    };

    // Trackers with another `turn`, 0...3, do their work at other times. Allocates.
    void Prepare(double sampleRate, std::size_t turn = 0);
    // Forgets all sound.
    void Reset() noexcept;

    const NoiseBands& Bands() const noexcept { return fBands; }
    // How many samples one look comes after another.
    std::size_t LookHop() const noexcept { return fBands.Frame() / 2; }
    // How many samples there are for what is made of a look, so that two trackers' are not worked on at once. Looks are
    // finished at whole such hops since Reset.
    std::size_t HopAfterLook() const noexcept { return fBands.ShortFrame() / 2; }

    // Takes sound in parts of any length, and hands `found` each Look that is finished meanwhile.
    template <typename Found>
    void Hear(std::span<const float> samples, const Found& found) noexcept {
        fGrid.Cut(
            samples.size(),
            [&](std::size_t begin, std::size_t frames, std::size_t position) {
                Keep(samples.subspan(begin, frames), position);
                WorkUntil(position + frames);
            },
            [&] {
                if (FinishHop()) found(Look{fNoise, fMeans});
            });
    }

private:
    // From what is found in noise to its mean.
    struct Scales {
        float quarter = 1;
        float fifth = 1;
    };

    // The steps of a look; the number is that of the step among its kind, a band's for the last one.
    enum class Kind : std::uint8_t { kSteadiness, kWindow, kTransform, kPowers, kBand };
    struct Step {
        Kind kind;
        RealFFT::Part part;
    };

    void PlanLook();
    void AddSteps(Kind kind, double cost);
    std::size_t HopsOfWork() const noexcept;
    void Keep(std::span<const float> samples, std::size_t position) noexcept;
    void WorkUntil(std::size_t position) noexcept;
    bool FinishHop() noexcept;
    void AnalyseShort() noexcept;
    void Do(const Step& step) noexcept;
    void WindowLong(StepRange samples) noexcept;
    void MeasureBand(std::size_t band) noexcept;
    float QuarterOf(const NoiseBands::Band& band) noexcept;
    float MeanOf(const NoiseBands::Band& band) const noexcept;
    float SteadinessOf(std::size_t band) noexcept;

    NoiseBands fBands;
    HopGrid fGrid;
    RealFFT fShortTransform{2};
    RealFFT fLongTransform{2};
    std::vector<float> fShortWindow;
    std::vector<float> fLongWindow;
    std::vector<float> fFrameWeights; // of the short frames in a look, their sum 1
    std::vector<Scales> fScales;      // by band
    std::vector<float> fSound;        // the last two long frames' worth, as a ring
    std::vector<float> fShortFrame;
    std::vector<float> fLongFrame;
    std::vector<std::complex<float>> fShortSpectrum;
    std::vector<std::complex<float>> fSpectrum;
    std::vector<float> fPowers;
    std::vector<float> fSorted;
    std::vector<double> fSums;       // running, of the short frame's powers
    std::vector<float> fShortPowers; // by band and short frame, as rings of two looks
    std::vector<float> fSteadiness;  // by band
    std::vector<float> fNoise;
    std::vector<float> fMeans;
    std::size_t fTurn = 0;
    std::size_t fHops = 0; // since Reset
    std::vector<Step> fSteps;
    PacedSteps fPace;
    std::size_t fLookEnd = 0; // in hops; 0 before the first look
};

} // namespace qoc::dsp
