#pragma once

namespace qoc::dsp {

// A second-order section at work, as a state-variable filter with trapezoidal integrators (A. Simper, "Solving the
// continuous SVF equations using trapezoidal integration", 2013), solved for its memory. What it remembers are the
// outputs of a band pass and of a low pass, which mean the same before and after a change, and lose nothing to rounding
// where poles lie low or next to the unit circle; the memory of a direct form is a difference of large numbers. A
// value; real time safe.
//
// Its response is that of input + (band g s + low g^2) / (s^2 + damping g s + g^2) at s = (1 - 1/z) / (1 + 1/z).
class StateVariableFilter {
public:
    struct Memory {
        double band = 0;
        double low = 0;
    };

    // Lets the sound through.
    StateVariableFilter() = default;
    // `tuning`, the g above: tan(w / 2). `damping`: 1 / Q; both are above 0. Then how much of the input, of the band
    // pass and of the low pass is heard.
    StateVariableFilter(double tuning, double damping, double input, double band, double low) noexcept {
        const double bandFromBand = 1 / (1 + tuning * (tuning + damping));
        const double bandFromInput = tuning * bandFromBand;
        const double lowFromInput = tuning * bandFromInput;
        fBandToBand = 2 * bandFromBand - 1;
        fCross = 2 * bandFromInput;
        fLowToLow = 1 - 2 * lowFromInput;
        fInputToLow = 2 * lowFromInput;
        fDirect = input + band * bandFromInput + low * lowFromInput;
        fBandHeard = band * bandFromBand + low * bandFromInput;
        fLowHeard = low * (1 - lowFromInput) - band * bandFromInput;
    }

    // From one sample to the next.
    double Next(Memory& memory, double input) const noexcept {
        const auto [band, low] = memory;
        memory.band = fBandToBand * band - fCross * low + fCross * input;
        memory.low = fCross * band + fLowToLow * low + fInputToLow * input;
        return fDirect * input + fBandHeard * band + fLowHeard * low;
    }

private:
    double fBandToBand = 0, fCross = 0, fLowToLow = 0, fInputToLow = 0;
    double fDirect = 1, fBandHeard = 0, fLowHeard = 0;
};

} // namespace qoc::dsp
