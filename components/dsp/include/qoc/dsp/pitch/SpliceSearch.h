#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds where a sound goes on as it does at another time, to a small part of a sample, by the normalised
// cross-correlation of all channels together. Splices that are out by half a sample put a steady tone off by as much
// every time: at 8 kHz and 200 splices a second by 20 cents. Owned by the stretcher. Everything but Prepare is real
// time safe.
class SpliceSearch {
public:
    // The room that is searched: half of it to either side of the wanted time. The period of the lowest tone that is
    // always spliced in phase, 40 Hz.
    static constexpr double kRoomSeconds = 0.025;

    // `longest`: of the stretches of sound that are compared, in samples. Allocates.
    void Prepare(std::size_t channels, double sampleRate, std::size_t longest);

    // Where the sound goes on: near `wanted`, neither before `first` nor behind `last`, which lie around it.
    struct Room {
        std::int64_t wanted = 0;
        std::int64_t first = 0;
        std::int64_t last = 0;
    };
    struct Place {
        double time = 0;
        double likeness = 0; // the correlation, up to 1; 0 where nothing is alike
        double rise = 1;     // of the energy
    };

    // What is to go on: `length` samples from a time on.
    struct Present {
        const HistoryBuffer& sound;
        std::int64_t time = 0;
        std::size_t length = 0;
    };

    // The place in the room from which on the history resembles the present sound most, rather close to the wanted one
    // than far. The history has all samples from room and length before to as much behind the wanted time.
    Place Find(const Present& present, const HistoryBuffer& history, const Room& room) noexcept;
    // The energy of the history from `time` on against that of the present sound.
    double RiseTo(const Present& present, const HistoryBuffer& history, std::int64_t time) const noexcept;

private:
    // Leaves `count` coarse samples, sums of fStep each, in fSound, and their spectrum.
    void Gather(const float* sound, std::size_t count, std::span<std::complex<float>> spectrum) noexcept;
    void Correlate(const Present& present, const HistoryBuffer& history, std::int64_t first) noexcept;
    // From coarse place to coarse place, of which `first` is that at time 0.
    std::size_t BestCoarse(const Room& room, std::int64_t first) const noexcept;
    Place Refine(const Present& present, const HistoryBuffer& history, std::int64_t time) const noexcept;
    double EnergyAt(const HistoryBuffer& history, std::int64_t time, std::size_t length) const noexcept;
    double ProductAt(const Present& present, const HistoryBuffer& history, std::int64_t time) const noexcept;

    std::size_t fChannels = 0;
    std::size_t fStep = 1;            // samples to a coarse one
    std::size_t fRoom = 0;            // coarse samples
    std::vector<RealFFT> fTransforms; // from short to long
    const RealFFT* fTransform = nullptr;
    std::vector<float> fSound;
    std::vector<std::complex<float>> fPresent;
    std::vector<std::complex<float>> fNear;
    std::vector<std::complex<float>> fCross;
    std::vector<double> fEnergy; // of the coarse samples near `wanted` up to each
    double fPresentEnergy = 0;
};

} // namespace qoc::dsp
