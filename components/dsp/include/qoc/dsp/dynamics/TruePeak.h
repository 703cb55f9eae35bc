#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace qoc::dsp {

// Finds the peaks of one channel that lie between the samples. The sound is brought to twice its rate by a filter long
// enough for what lies just below half the sample rate, where peaks rise highest above the samples, and from there to
// eight times its rate; and it is read with the meter of ITU-R BS.1770-4, annex 2, too. The larger counts, so that
// neither a careful measurement nor the standard's finds more. What so near to half the rate is beyond even the long
// filter's ends is allowed for by how much sound there is. Real time safe.
class TruePeak {
public:
    static constexpr std::size_t kTaps = 768; // of the first filter
    static constexpr std::size_t kMeterTaps = 12;
    static constexpr std::size_t kFineTaps = 12;
    // A peak is told when the later of the two samples that it lies between is this old.
    static constexpr std::size_t kDelay = kTaps / 2 - 1 + kFineTaps / 4;

    static constexpr std::size_t kMost = 64;
    using Row = std::array<float, kMost>;

    // Forgets all sound.
    void Reset() noexcept;
    // Takes the next samples, up to kMost. For each: the largest magnitude from kDelay + 1 samples before it to kDelay
    // before it, rounded up a little (0.06 dB) for what may lie between the places looked at, and by what the filter's
    // ends may miss.
    void Next(std::span<const float> samples, Row& peaks) noexcept;

private:
    // How strong the sound is, a sample, just below half the rate.
    class Edge {
    public:
        void Reset() noexcept { *this = {}; }
        // For each of the next samples: the mean square, were all of the spectrum as strong as there.
        void Next(std::span<const float> samples, Row& meanSquares) noexcept;

    private:
        float fSign = 1; // turns, which brings half the rate down to 0 Hz
        float fFirst = 0;
        float fSecond = 0;
        float fMeanSquare = 0;
    };

    void FindPlaces(Row& peaks, std::size_t count) const noexcept;

    static constexpr std::size_t kSlack = 32; // beyond the present row
    static constexpr std::size_t kSoundBefore = kTaps - 1;
    static constexpr std::size_t kBetweenBefore = kFineTaps / 2;

    // The last samples, and behind them the present ones.
    std::array<float, kSoundBefore + kMost + kSlack> fSound{};
    // Of these, what lies in the middle between one and the next; first those that go with the samples before.
    std::array<float, kBetweenBefore + kMost + kSlack> fBetween{};
    Edge fEdge;
};

} // namespace qoc::dsp
