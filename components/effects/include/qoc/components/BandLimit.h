#pragma once

#include "qoc/components/Biquad.h"
#include "qoc/components/SmoothedValue.h"

#include <cstddef>
#include <vector>

namespace qoc::components {

// The part of several channels' sound between two frequencies, or all of it: a high pass and a low pass, Butterworth
// filters of the second order. The frequencies and the switch glide, so that nothing clicks. Owned by its effect.
// Everything but Prepare is real time safe.
class BandLimit {
public:
    struct Settings {
        bool isOn = false;
        float low = 20; // hertz
        float high = 20000;
    };

    void Prepare(std::size_t channels, double sampleRate);
    void Reset() noexcept;
    // Goes there from the next sample on; `settle`: at once.
    void Set(const Settings& settings, bool settle) noexcept;

    // Before the channels of a sample.
    void Advance() noexcept;
    // What of the sample belongs to the band: the sample itself, bit by bit, while there is no limit.
    float Next(std::size_t channel, float sample) noexcept;

private:
    struct Channel {
        Biquad high;
        Biquad low;
    };

    bool IsHeard() const noexcept { return !fShare.IsSettled() || fShare.Target() > 0; }
    void Design(double low, double high) noexcept;

    double fSampleRate = 44100;
    std::vector<Channel> fChannels;
    SmoothedValue fShare; // of the limited sound
    SmoothedValue fLow;   // logarithms of the frequencies
    SmoothedValue fHigh;
    double fShareNow = 0;
};

} // namespace qoc::components
