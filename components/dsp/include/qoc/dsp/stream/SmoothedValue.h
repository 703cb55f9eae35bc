#pragma once

#include <cstddef>
#include <span>

namespace qoc::dsp {

// A value that follows its target without a jump and without a kink: two one-pole low-passes in a row, so that the
// first derivative is continuous too. It counts samples, so the way the sound is cut into blocks does not matter. After
// kSettlingTimeConstants the value is exactly the target.
class SmoothedValue {
public:
    // Of each of the two low-passes, in seconds: below what is heard as lag, above what is heard as a click.
    static constexpr double kTimeConstant = 0.005;
    // (1 + 25) * exp(-25): what is left to jump at the end is less than 4e-10 of the way.
    static constexpr int kSettlingTimeConstants = 25;

    // By how much of what is missing each of the low-passes moves with a sample, and for how many.
    static double CoefficientAt(double sampleRate) noexcept;
    static std::size_t SettlingSamplesAt(double sampleRate) noexcept;

    // `sampleRate` in hertz.
    void Prepare(double sampleRate) noexcept;
    // To be there now.
    void Settle(float value) noexcept;
    // To go there from the next sample on.
    void SetTarget(float target) noexcept;
    // The one or the other.
    void Set(double target, bool settle) noexcept {
        settle ? Settle(static_cast<float>(target)) : SetTarget(static_cast<float>(target));
    }

    bool IsSettled() const noexcept { return fRemaining == 0; }
    float Target() const noexcept { return fTarget; }
    // Samples until the value is settled.
    std::size_t Remaining() const noexcept { return fRemaining; }
    // The value for the next sample.
    float Next() noexcept;
    // Those for the next samples.
    void Next(std::span<float> values) noexcept;
    // No value is below that, or above, until there is another target.
    float LeastAhead() const noexcept;
    float MostAhead() const noexcept;

private:
    double fCoefficient = 1.0;
    double fFirst = 0.0;
    double fSecond = 0.0;
    float fTarget = 0.0F;
    std::size_t fSettlingSamples = 1;
    std::size_t fRemaining = 0;
};

} // namespace qoc::dsp
