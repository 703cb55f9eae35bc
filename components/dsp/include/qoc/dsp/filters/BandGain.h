#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace qoc::dsp {

// Gives the part of several channels' sound between two frequencies another gain and leaves the rest alone. A shelving
// filter of the fourth order on both sides (M. Holters, U. Zölzer, "Parametric higher-order shelving filters", EUSIPCO
// 2006), here as a band of Butterworth type: the poles stay where they are, only the zeros move with the gain. So the
// gain may change from sample to sample, it is exact inside the band however small it is, and at 1 the sound goes
// through bit by bit; a band that is filtered out and added back would be out of phase with the rest. The square of
// the response is (g^2 + x^8) / (1 + x^8), x = 1 at the edges. Owned by its effect; everything but Prepare is real
// time safe.
class BandGain {
public:
    // A lower upper edge is taken to be there, times the lower one.
    static constexpr double kNarrowest = 1.1;

    void Prepare(std::size_t channels);
    // Forgets all sound.
    void Reset() noexcept;
    // `low` and `high` in hertz, below half of the sample rate.
    void SetBand(double sampleRate, double low, double high) noexcept;
    // `gain` is a factor, 0 or more.
    double Process(std::size_t channel, double sample, double gain) noexcept;

    // Until a sound has decayed by 100 dB; for edges as SetBand takes them.
    static double DecaySamples(double sampleRate, double low, double high) noexcept;

private:
    static constexpr std::size_t kSections = 2;

    // Integrates what is near the middle of the band, as an integrator does near 0 Hz: a lossless resonator.
    struct Resonator {
        double band = 0;
        double low = 0;
    };
    // Of two integrators each.
    struct Memory {
        std::array<std::array<Resonator, 2>, kSections> resonators;
    };

    double Known(const Resonator& resonator) const noexcept;
    void Remember(Resonator& resonator, double output) const noexcept;

    std::vector<Memory> fMemories; // by channel
    double fMiddle = 1;            // of the band, as tan(w / 2); the edges' product is its square
    double fBandFromBand = 0.5;
    double fBandFromLow = 0.5;
    double fFromInput = 0.5;
    std::array<double, kSections> fSolved{};
};

} // namespace qoc::dsp
