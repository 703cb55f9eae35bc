#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Delays one channel by whole samples, a row at a time. Owned by its effect; everything but Prepare is real time safe.
class RowDelay {
public:
    // Allocates, and resets. `samples` may be 0.
    void Prepare(std::size_t samples) {
        fSamples.assign(samples, 0.0F);
        fPosition = 0;
    }
    void Reset() noexcept { std::ranges::fill(fSamples, 0.0F); }

    // Gives the samples that came so much earlier in the stead of these.
    void Process(std::span<float> row) noexcept {
        if (fSamples.empty()) return;
        while (!row.empty()) {
            const std::size_t count = std::min(row.size(), fSamples.size() - fPosition);
            std::swap_ranges(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(count),
                             fSamples.begin() + static_cast<std::ptrdiff_t>(fPosition));
            fPosition = fPosition + count < fSamples.size() ? fPosition + count : 0;
            row = row.subspan(count);
        }
    }

private:
    std::vector<float> fSamples; // a ring
    std::size_t fPosition = 0;
};

} // namespace qoc::dsp
