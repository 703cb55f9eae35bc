#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <tuple>
#include <vector>

namespace qoc::dsp {

// The weights of the six samples around a place between samples: Lagrange's polynomial of order five. At an eighth of
// the sample rate it is late by at most 2e-4 samples and 0.01 dB too quiet, at a quarter 0.008 samples and 0.45 dB; it
// is never too loud, so that feedback through it is safe. Made once for all lines that are read at the same place.
struct TapWeights {
    static constexpr int kAhead = 2; // samples that are needed at shorter delays

    // `delay` in samples, at least kAhead. Real time safe.
    explicit TapWeights(double delay) noexcept;
    // Along a straight line instead, which dulls high frequencies.
    static TapWeights Linear(double delay) noexcept;

    using Values = std::array<float, 6>;
    // For a delay of `x`, 0...1, more than that of the weight number kAhead.
    static Values ValuesAt(float x) noexcept;

    std::size_t first; // delay of the first weight
    Values values;

private:
    explicit TapWeights(std::size_t firstDelay) noexcept : first(firstDelay), values{} {}
};

// One channel's sound of the recent past, to be read at any delay. A delay of 0 is the sample that was written last.
// Owned by an effect; everything but Prepare is real time safe.
class DelayLine {
public:
    // Allocates for delays up to `longest` samples, and resets.
    void Prepare(std::size_t longest);
    void Reset() noexcept;

    void Write(float sample) noexcept {
        fPosition = (fPosition + 1) & fMask;
        fSamples[fPosition] = sample;
        if (fPosition < kRepeated) fSamples[fPosition + fMask + 1] = sample;
    }
    void Write(std::span<const float> samples) noexcept;
    // The samples from one on that is so old, oldest first, as many as stand in a row; those of one place always do.
    std::span<const float> From(std::size_t delay) const noexcept {
        return std::span(fSamples).subspan((fPosition - delay) & fMask);
    }
    // Those samples, whether they stand in a row or not; the newest of them has been written.
    void Read(std::size_t delay, std::span<float> output) const noexcept;
    // `delay` in whole samples, at most the longest.
    float At(std::size_t delay) const noexcept { return fSamples[(fPosition - delay) & fMask]; }
    // Between samples, up to the longest delay.
    float At(const TapWeights& weights) const noexcept {
        const float* const oldest = &fSamples[(fPosition - weights.first - kRepeated) & fMask];
        float sum = 0;
        for (std::size_t i = 0; i <= kRepeated; ++i)
            sum += weights.values[kRepeated - i] * oldest[i];
        return sum;
    }

private:
    // So many samples stand again behind the end, so that those of one place lie in a row.
    static constexpr std::size_t kRepeated = std::tuple_size_v<decltype(TapWeights::values)> - 1;

    std::vector<float> fSamples;
    std::size_t fMask = 0;
    std::size_t fPosition = 0;
};

inline TapWeights::Values TapWeights::ValuesAt(float x) noexcept {
    const float a = x + 2;
    const float b = x + 1;
    const float d = x - 1;
    const float e = x - 2;
    const float f = x - 3;
    const float ab = a * b;
    const float ef = e * f;
    const float xd = x * d;
    return {b * xd * ef * (-1.0F / 120), a * xd * ef * (1.0F / 24),  ab * d * ef * (-1.0F / 12),
            ab * x * ef * (1.0F / 12),   ab * xd * f * (-1.0F / 24), ab * xd * e * (1.0F / 120)};
}

inline TapWeights::TapWeights(double delay) noexcept {
    const auto whole = static_cast<int>(delay);
    first = static_cast<std::size_t>(whole - kAhead);
    values = ValuesAt(static_cast<float>(delay - whole));
}

inline TapWeights TapWeights::Linear(double delay) noexcept {
    const auto whole = static_cast<int>(delay);
    TapWeights weights(static_cast<std::size_t>(whole - kAhead));
    const auto x = static_cast<float>(delay - whole);
    weights.values[kAhead] = 1 - x;
    weights.values[kAhead + 1] = x;
    return weights;
}

} // namespace qoc::dsp
