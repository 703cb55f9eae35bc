#pragma once

#include "qoc/dsp/filters/Biquad.h"
#include "qoc/dsp/stream/SmoothedValue.h"

namespace qoc::dsp {

// One section of the notch filter, in what all channels share: where it stands, and how it gets there without a click.
// What it does to the sound is y = x + (gain - 1) * bandpass(x), with a band-pass that has a gain of 1 at the
// frequency. That is the cookbook's peaking equalizer with its q divided by the square root of the gain, and at a gain
// of 0 the cookbook's notch: q = frequency / width, the width between the points where a deep notch takes away 3 dB,
// and the same at every gain. The band-pass runs as a trapezoidal state variable filter (V. Zavalishin, "The Art of VA
// Filter Design"), whose sound stays clean while its frequency moves. Real time safe.
class NotchSection {
public:
    struct Setting {
        float frequency = 1000; // hertz, above 0 and below half the sample rate
        float q = 1;
        float gain = 1; // factor; 1 lets the sound through
    };
    // For one sample. With s1, s2 the state: band = s1 + input * (x - s2 - feedback * s1), low = s2 + tuning * band,
    // y = x + mix * band; then s1 becomes 2 band - s1, and s2 2 low - s2.
    struct Coefficients {
        double tuning = 0;
        double feedback = 0;
        double input = 0;
        double mix = 0;
    };

    // Hertz.
    void Prepare(double sampleRate) noexcept;
    // Goes to the setting from the next sample on, or is there at once: when told to, and where nobody can hear it.
    void Set(const Setting& setting, bool settle) noexcept;

    // Lets the sound through bit by bit.
    bool IsNeutral() const noexcept { return fGain.IsSettled() && fGain.Target() == 1; }
    // Whether the filter at work, or the one that it goes to, rings so near half the sample rate that a float has not
    // the digits for it: what a sample takes off the sound is lost to rounding, and silence would never come.
    bool NeedsDouble() const noexcept;
    // The coefficients don't change any more.
    bool IsSettled() const noexcept { return fPitch.IsSettled() && fDamping.IsSettled() && fGain.IsSettled(); }
    // Those for the next sample.
    const Coefficients& Next() noexcept;

    // The settled section as one with the same response.
    static BiquadCoefficients ToBiquad(double sampleRate, const Setting& setting) noexcept;

private:
    Coefficients Design(double frequency, double damping, double gain) const noexcept;

    double fSampleRate = 44100;
    float fTargetFrequency = 1000; // hertz
    SmoothedValue fPitch;          // logarithm of the frequency: a sweep is even to the ear
    SmoothedValue fDamping;        // 1 / q
    SmoothedValue fGain;
    Coefficients fCoefficients;
};

} // namespace qoc::dsp
