#pragma once

#include <array>
#include <cstddef>

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

    // Forgets all sound.
    void Reset() noexcept;
    // Takes the next sample. Returns the largest magnitude from kDelay + 1 samples ago to kDelay ago, rounded up a
    // little (0.06 dB) for what may lie between the places looked at, and by what the filter's ends may miss.
    float Next(float sample) noexcept;

private:
    // The last values, always standing together, oldest first.
    template <std::size_t kCount>
    class Window {
    public:
        void Reset() noexcept { fValues.fill(0), fPosition = 0; }
        void Push(float value) noexcept {
            fValues[fPosition] = fValues[fPosition + kCount] = value;
            fPosition = (fPosition + 1) % kCount;
        }
        const float* Oldest() const noexcept { return fValues.data() + fPosition; }

    private:
        std::array<float, 2 * kCount> fValues{};
        std::size_t fPosition = 0;
    };

    // How strong the sound is, a sample, just below half the rate.
    class Edge {
    public:
        void Reset() noexcept { *this = {}; }
        // The mean square, were all of the spectrum as strong as there.
        float Next(float sample) noexcept;

    private:
        float fSign = 1; // turns, which brings half the rate down to 0 Hz
        float fFirst = 0;
        float fSecond = 0;
        float fMeanSquare = 0;
    };

    float NextDoubled(float value) noexcept;

    Window<kTaps + kFineTaps> fSound;
    Window<kFineTaps> fDoubled; // at twice the rate
    Edge fEdge;
};

} // namespace qoc::dsp
