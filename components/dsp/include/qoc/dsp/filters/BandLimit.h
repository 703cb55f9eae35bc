#pragma once

#include "qoc/dsp/filters/BandGain.h"
#include "qoc/dsp/filters/GlidingSections.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <cstddef>
#include <span>

namespace qoc::dsp {

// The part of several channels' sound between two frequencies, or all of it: heard through a high pass and a low pass,
// Butterworth filters of the second order, and changed by a gain that leaves the rest alone. The frequencies and the
// switch glide, so that nothing clicks. Owned by its effect. Everything but Prepare is real time safe.
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

    // Until a sound has decayed by 100 dB; 0 when it is off.
    static double DecaySamples(double sampleRate, const Settings& settings) noexcept;

    // Whether nothing glides: otherwise rows are a sample long.
    bool IsSettled() const noexcept;
    // Before the channels of a row.
    void Advance() noexcept;
    // What of the sound belongs to the band: the sound itself, bit by bit, while there is no limit.
    void Next(std::size_t channel, std::span<const float> sound, float* band) noexcept;
    // The sound with the band, or all of it, changed by gains as factors, in whose stead it is left.
    void Change(std::size_t channel, std::span<const float> sound, double* gains) noexcept;

private:
    // Hertz, within what the sample rate allows.
    struct Edges {
        Edges(double sampleRate, const Settings& settings) noexcept;
        std::array<BiquadCoefficients, 2> Filters(double sampleRate) const noexcept;

        double low;
        double high;
    };

    bool IsHeard() const noexcept { return !fShare.IsSettled() || fShare.Target() > 0; }

    double fSampleRate = 44100;
    GlidingSections fFilters;
    BandGain fGain;
    SmoothedValue fShare; // of the limited sound
    SmoothedValue fLow;   // logarithms of the frequencies
    SmoothedValue fHigh;
    double fShareNow = 0;
};

} // namespace qoc::dsp
