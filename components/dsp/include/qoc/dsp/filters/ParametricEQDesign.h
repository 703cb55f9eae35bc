#pragma once

#include "qoc/dsp/filters/Biquad.h"

#include <array>

namespace qoc::dsp {

// The sections of a parametric equaliser for its settings. Peaks and steep shelves are the audio cookbook's (see
// BiquadCoefficients), gentle shelves of the first order; high pass and low pass are Butterworth filters of 6 dB an
// octave an order. A band that is off, or has a gain of 0 dB, is a section that lets the sound through. Real time safe.
class ParametricEQDesign {
public:
    static constexpr std::size_t kPeaks = 5;
    static constexpr std::size_t kMostOrder = 8;
    static constexpr std::size_t kSections = kMostOrder / 2 * 2 + 2 + kPeaks;
    using Sections = std::array<BiquadCoefficients, kSections>;

    struct Pass {
        bool isOn = false;
        double frequency = 1000; // hertz
        int order = 2;           // 1 to the most
    };
    struct Shelf {
        double frequency = 1000; // hertz; half of the gain's decibels are reached there
        double gain = 0;         // decibels
        bool isSteep = true;
    };
    struct Peak {
        double frequency = 1000; // hertz
        double gain = 0;         // decibels
        double q = 1;            // above 0: frequency by width
    };
    struct Settings {
        Pass highPass;
        Shelf lowShelf;
        std::array<Peak, kPeaks> peaks;
        Shelf highShelf;
        Pass lowPass;
    };

    // Frequencies that come too near half the sample rate (hertz) are held below it.
    static Sections Make(const Settings& settings, double sampleRate) noexcept;
};

} // namespace qoc::dsp
