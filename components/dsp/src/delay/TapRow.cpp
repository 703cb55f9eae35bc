#include "qoc/dsp/delay/TapRow.h"

#include <algorithm>

namespace qoc::dsp {

void TapRow::Set(std::span<const double> delays, bool isFine) noexcept {
    fSize = delays.size();
    fIsFine = isFine;
    for (std::size_t i = 0; i < fSize; ++i)
        fWhole[i] = static_cast<std::int32_t>(delays[i]);
    isFine ? SetFine(delays) : SetLinear(delays);
}

void TapRow::SetFine(std::span<const double> delays) noexcept {
    for (std::size_t i = 0; i < fSize; ++i) {
        const auto values = TapWeights::ValuesAt(static_cast<float>(delays[i] - fWhole[i]));
        for (std::size_t tap = 0; tap < kTaps; ++tap)
            fValues[tap][i] = values[tap];
    }
}

void TapRow::SetLinear(std::span<const double> delays) noexcept {
    for (std::size_t i = 0; i < fSize; ++i) {
        const auto x = static_cast<float>(delays[i] - fWhole[i]);
        fValues[TapWeights::kAhead][i] = 1 - x;
        fValues[TapWeights::kAhead + 1][i] = x;
    }
}

void TapRow::Read(const DelayLine& line, std::ptrdiff_t age, float* output) const noexcept {
    fIsFine ? ReadTaps<0, kTaps>(line, age, output) : ReadTaps<TapWeights::kAhead, 2>(line, age, output);
}

template <std::size_t kFirst, std::size_t kCount>
void TapRow::ReadTaps(const DelayLine& line, std::ptrdiff_t age, float* __restrict output) const noexcept {
    constexpr std::ptrdiff_t kOldest = kFirst + kCount - 1 - TapWeights::kAhead; // samples behind the whole delay
    std::size_t begin = 0;
    while (begin < fSize) {
        const std::int32_t whole = fWhole[begin];
        const auto run =
            line.From(static_cast<std::size_t>(whole + kOldest + age - static_cast<std::ptrdiff_t>(begin)));
        const std::size_t most = std::min(fSize, begin + run.size() - (kCount - 1));
        std::size_t end = begin + 1;
        while (end < most && fWhole[end] == whole)
            ++end;
        for (std::size_t i = begin; i < end; ++i) {
            float sum = 0;
            for (std::size_t tap = 0; tap < kCount; ++tap)
                sum += fValues[kFirst + kCount - 1 - tap][i] * run[i - begin + tap];
            output[i] = sum;
        }
        begin = end;
    }
}

} // namespace qoc::dsp
