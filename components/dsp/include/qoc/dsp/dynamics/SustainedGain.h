#pragma once

#include <array>
#include <cstddef>

namespace qoc::dsp {

// The gain that sound which goes on leaves room for, so that a limiter can come back soon from single peaks and yet
// need not follow the waves of a low tone. Program-dependent release is described by Giannoulis, Massberg and Reiss
// ("Digital dynamic range compressor design", 2012); here the least of the last gains bridges the waves, and the
// largest and the least of those bridged tell what goes on from a peak, and what is steady, which is followed quickly,
// from what is not, which is followed slowly. It looks once a millisecond. Real time safe.
class SustainedGain {
public:
    // Peaks no further apart belong to one sound: half a wave of 10 Hz.
    static constexpr std::size_t kBridged = 50; // milliseconds
    // Peaks that are over so soon after the first are one.
    static constexpr std::size_t kPeak = 1; // milliseconds

    // In hertz. Starts.
    void Prepare(double sampleRate) noexcept;
    // Anew, at a gain of 1.
    void Start() noexcept;
    // The time constant in samples in which the gain comes back.
    void SetRelease(double samples) noexcept;

    // Takes the largest gain, 0...1, that the next sample allows.
    double Next(double allowed) noexcept;

private:
    void Look() noexcept;
    double GoingDown(double sustained, double least) const noexcept;

    std::array<double, kBridged> fAllowed{}; // rings, a value a look
    std::array<double, kBridged + kPeak> fBridged{};
    std::size_t fLooks = 0;
    std::size_t fStep = 1; // samples between looks
    std::size_t fSeen = 0; // samples since the last
    double fLeast = 1;     // of them
    // How much of the way a look takes.
    double fSteady = 1;
    double fUnsteady = 1;
    double fComingBack = 1;
    double fGain = 1;
};

} // namespace qoc::dsp
