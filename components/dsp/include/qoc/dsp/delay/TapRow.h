#pragma once

#include "qoc/dsp/delay/DelayLine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace qoc::dsp {

// The weights of TapWeights for a row of samples, so that a line is read for many of them at once: as long as the delay
// does not pass a whole sample, those that are read lie in a row too. Made once for all lines that are read at the same
// delays. Real time safe.
class TapRow {
public:
    static constexpr std::size_t kMost = 64;
    using Samples = std::array<float, kMost>;
    using Delays = std::array<double, kMost>;

    // `delays` in samples, none below 0. `isFine`: Lagrange's polynomial, otherwise a straight
    // line.
    void Set(std::span<const double> delays, bool isFine) noexcept;
    std::size_t Size() const noexcept { return fSize; }

    // The sound of `line` at the delays. The first of them is told from the sample that was written `age` samples
    // before the last (one that is yet to be written: -1), the others each from the next. No delay is so short that
    // weights would stand for samples yet to be written.
    void Read(const DelayLine& line, std::ptrdiff_t age, float* output) const noexcept;

private:
    static constexpr std::size_t kTaps = std::tuple_size_v<decltype(TapWeights::values)>;

    void SetFine(std::span<const double> delays) noexcept;
    void SetLinear(std::span<const double> delays) noexcept;
    template <std::size_t kFirst, std::size_t kCount>
    void ReadTaps(const DelayLine& line, std::ptrdiff_t age, float* output) const noexcept;

    std::size_t fSize = 0;
    bool fIsFine = true;
    std::array<std::int32_t, kMost> fWhole{};         // samples of delay
    alignas(32) std::array<Samples, kTaps> fValues{}; // of all samples, tap by tap, the shortest delay's first
};

} // namespace qoc::dsp
