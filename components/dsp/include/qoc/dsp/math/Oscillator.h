#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <utility>

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
        // At that phase.
        Value Turned(const Value& ahead) const noexcept {
            return {SineAhead(ahead), cosine * ahead.cosine - sine * ahead.sine};
        }
    };

    static Value At(double phase) noexcept {
        const double angle = 2 * std::numbers::pi * phase;
        return {std::sin(angle), std::cos(angle)};
    }

    void Reset() noexcept {
        fPhase = 0;
        fTurned = 0;
    }
    // `hertz` at a sample rate in hertz.
    void SetRate(double hertz, double sampleRate) noexcept {
        const double step = hertz / sampleRate;
        if (step == std::exchange(fStep, step)) return;
        fTurned = 0;
        for (std::size_t i = 0; i < kTurned; ++i) {
            const Value value = At(step * static_cast<double>(i));
            fSines[i] = value.sine;
            fCosines[i] = value.cosine;
        }
    }
    // The phase of this sample, 0...1; then goes on.
    double Next() noexcept {
        const double phase = fPhase;
        fPhase += fStep;
        if (fPhase >= 1) fPhase -= 1;
        return phase;
    }

    // The values at the next samples, by turning on from every kTurned-th: however many are asked for at once, they are
    // the same.
    void Next(std::span<double> sines, std::span<double> cosines) noexcept {
        for (std::size_t begin = 0; begin < sines.size();) {
            const std::size_t count = std::min(sines.size() - begin, kTurned - fTurned);
            BeginTurning();
            const Value value = fValue;
            for (std::size_t i = 0; i < count; ++i) {
                const double sine = fSines[fTurned + i];
                const double cosine = fCosines[fTurned + i];
                sines[begin + i] = value.sine * cosine + value.cosine * sine;
                cosines[begin + i] = value.cosine * cosine - value.sine * sine;
            }
            begin += count;
            GoOn(count);
        }
    }
    // The phases of the next samples; does not go on.
    void Phases(std::span<double> phases) const noexcept {
        const double begin = fTurned == 0 ? fPhase : fBegin;
        for (std::size_t i = 0; i < phases.size(); ++i) {
            const double phase = begin + fStep * static_cast<double>(fTurned + i);
            phases[i] = phase - static_cast<int>(phase);
        }
    }
    // Goes on by so many samples at which nobody looks.
    void Skip(std::size_t samples) noexcept {
        while (samples > 0) {
            BeginTurning();
            const std::size_t count = std::min(samples, kTurned - fTurned);
            GoOn(count);
            samples -= count;
        }
    }

private:
    static constexpr std::size_t kTurned = 64;

    void BeginTurning() noexcept {
        if (fTurned != 0) return;
        fBegin = fPhase;
        fValue = At(fPhase);
    }
    // Within one turning. The phase is told anew from its beginning, so that it does not matter in how many parts.
    void GoOn(std::size_t samples) noexcept {
        fTurned = (fTurned + samples) % kTurned;
        const double phase = fBegin + fStep * static_cast<double>(fTurned == 0 ? kTurned : fTurned);
        fPhase = phase - std::floor(phase);
    }

    double fPhase = 0;
    double fStep = 0;
    // For Next of many:
    Value fValue;                         // at the beginning of the turning
    double fBegin = 0;                    // its phase
    std::size_t fTurned = 0;              // samples since
    std::array<double, kTurned> fSines{}; // of so many steps
    std::array<double, kTurned> fCosines{};
};

} // namespace qoc::dsp
