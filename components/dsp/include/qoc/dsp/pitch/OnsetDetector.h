#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace qoc::dsp {

// Finds where hits begin: where within 3 ms a band of the sound gets louder than it has been for 28 ms, so that neither
// the pulses of a voice nor the beats of a chord count, by a first difference of band energies (Bello et al., "A
// tutorial on onset detection in music signals", 2005). Owned by whoever splices sound. Everything but Prepare is real
// time safe.
class OnsetDetector {
public:
    static constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
    // Onsets lie at least so far from each other.
    static constexpr double kLeastDistance = 0.012; // seconds

    // `kept`: how long onsets are asked for, in samples. Allocates, and resets.
    void Prepare(std::size_t channels, double sampleRate, std::size_t kept);
    void Reset() noexcept;

    // Hears what the history has got since.
    void Listen(const HistoryBuffer& history) noexcept;
    // So many samples after an onset it is known for certain.
    std::int64_t Delay() const noexcept { return 3 * fHop; }

    // The first onset at or after `time` and the last before it; kNone, and -kNone, where there is none. An onset lies
    // up to two hops before the loud sound.
    std::int64_t FirstFrom(std::int64_t time) const noexcept;
    std::int64_t LastBefore(std::int64_t time) const noexcept;

private:
    static constexpr std::size_t kBands = 3;       // all, from 700 Hz, from 5 kHz
    static constexpr std::size_t kRemembered = 20; // hops
    using Energies = std::array<double, kBands>;

    struct Channel {
        float middle = 0; // what is below the bands
        float high = 0;
        float higher = 0;
    };

    Energies ListenToHop(const HistoryBuffer& history) noexcept;
    bool IsOnset(const Energies& present) const noexcept;
    void Remember(const Energies& hop) noexcept;
    void Add(std::int64_t onset) noexcept;

    std::int64_t fHop = 64;
    std::int64_t fLeastDistance = 0;
    float fMiddleShare = 0; // of the one-pole low-passes
    float fHighShare = 0;
    std::vector<Channel> fChannels;
    std::int64_t fNow = 0;
    Energies fLast{};                           // of the last hop
    std::array<Energies, kRemembered> fPairs{}; // of two hops each
    std::size_t fNextPair = 0;
    std::vector<std::int64_t> fOnsets; // a ring
    std::size_t fNextOnset = 0;
};

} // namespace qoc::dsp
