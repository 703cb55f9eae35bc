#pragma once

#include "qoc/dsp/filters/MatchedDesign.h"

#include <array>

namespace qoc::dsp {

// The sections of a parametric equaliser for its settings, with the magnitude of analogue filters (see MatchedDesign):
// peaks and steep shelves of the second order, gentle shelves of the first; high pass and low pass are Butterworth
// filters of 6 dB an octave an order. A band that is off, or has a gain of 0 dB, is a section that lets the sound
// through. Remembers its last settings, and designs the bands that have changed since. A value; real time safe.
class ParametricEQDesign {
public:
    static constexpr std::size_t kPeaks = 5;
    static constexpr std::size_t kMostOrder = MatchedDesign::kMostOrder;
    static constexpr std::size_t kSections = kMostOrder / 2 * 2 + 2 + kPeaks;
    using Sections = std::array<BiquadCoefficients, kSections>;

    struct Pass {
        bool isOn = false;
        double frequency = 1000; // hertz
        int order = 2;           // 1 to the most

        bool operator==(const Pass&) const = default;
    };
    struct Shelf {
        double frequency = 1000; // hertz; half of the gain's decibels are reached there
        double gain = 0;         // decibels
        bool isSteep = true;

        bool operator==(const Shelf&) const = default;
    };
    struct Peak {
        double frequency = 1000; // hertz
        double gain = 0;         // decibels
        double q = 1;            // above 0: frequency by width

        bool operator==(const Peak&) const = default;
    };
    struct Settings {
        Pass highPass;
        Shelf lowShelf;
        std::array<Peak, kPeaks> peaks;
        Shelf highShelf;
        Pass lowPass;
    };

    // Rate in hertz.
    static Sections Make(const Settings& settings, double sampleRate) noexcept;
    // The same, faster from the second time on.
    const Sections& Update(const Settings& settings, double sampleRate) noexcept;

private:
    Settings fMade;
    double fSampleRate = 0; // hertz; 0 before there is a design
    Sections fSections;
};

} // namespace qoc::dsp
