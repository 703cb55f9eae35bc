#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Turns the phases of a frame so that it goes on where another one has brought the sound: each peak of the spectrum
// with all that lies nearer to it than to the next (identity phase locking, Laroche and Dolson, "Improved phase vocoder
// time-scale modification of audio", 1999), by the angle that brings the frame a hop before nearest to the one that
// sounded (Puckette, "Phase-locked vocoder", 1995), so that no frequency has to be estimated and none is off. All
// channels are turned alike, which keeps what lies between them. Owned by the spectral stretcher. Everything but
// Prepare is real time safe.
class SpectralSplice {
public:
    using Bin = std::complex<float>;

    struct Channel {
        std::span<const Bin> present;
        std::span<const Bin> before; // the sound a hop before `present`
        std::span<Bin> sounded;      // the frame that sounds then; becomes the present one, turned
    };

    // `bins`: the most a spectrum has. Allocates.
    void Prepare(std::size_t bins);
    // How many frames overlap, under Hann's window before and behind the transform. What two frames in a row don't have
    // in common gets lost where they overlap: regions are made so much louder.
    void SetOverlap(double frames) noexcept;
    // In steps: 0 to one below `steps`, in order, with the same channels.
    void Turn(std::span<const Channel> channels, std::size_t step, std::size_t steps) noexcept;

private:
    // Of a region, in all channels.
    struct Common {
        std::complex<double> product; // what turns `before` nearest to what sounded
        double before = 0;            // energies
        double sounded = 0;
    };

    void TurnRegion(std::span<const Channel> channels, std::size_t begin, std::size_t end) const noexcept;
    void FindRegions(std::span<const Channel> channels) noexcept;
    std::complex<float> TurnOf(const Common& common) const noexcept;
    float GainAt(double coherence) const noexcept;
    // Higher than both bins beside it, within the width of a window's main lobe.
    bool IsPeak(std::size_t bin, std::size_t bins) const noexcept;

    std::array<float, 33> fGains{}; // by coherence, from 0 to 1
    double fOverlap = 0;
    std::vector<float> fPower;      // of all channels
    std::vector<std::size_t> fEnds; // of the regions, one behind the last bin
    std::size_t fTurned = 0;        // regions
};

} // namespace qoc::dsp
