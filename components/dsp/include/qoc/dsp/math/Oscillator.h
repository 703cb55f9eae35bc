#pragma once

#include <cmath>
#include <numbers>

namespace qoc::dsp {

// A slow oscillator that moves something: told at every sample, its phase goes on when the rate changes. Phases are in
// turns. Real time safe.
class Oscillator {
public:
    // Sine and cosine of the phase, from which those of any phase ahead of it follow.
    struct Value {
        double sine = 0;
        double cosine = 1;

        // The sine at a phase that is ahead by the angle of which these are given.
        double SineAhead(const Value& ahead) const noexcept { return sine * ahead.cosine + cosine * ahead.sine; }
    };

    static Value At(double phase) noexcept {
        const double angle = 2 * std::numbers::pi * phase;
        return {std::sin(angle), std::cos(angle)};
    }

    void Reset() noexcept { fPhase = 0; }
    // `hertz` at a sample rate in hertz.
    void SetRate(double hertz, double sampleRate) noexcept { fStep = hertz / sampleRate; }
    // The phase of this sample, 0...1; then goes on.
    double Next() noexcept {
        const double phase = fPhase;
        fPhase += fStep;
        if (fPhase >= 1) fPhase -= 1;
        return phase;
    }

private:
    double fPhase = 0;
    double fStep = 0;
};

} // namespace qoc::dsp
