#include "qoc/dsp/reverb/PieceRings.h"

#include <algorithm>
#include <bit>

namespace qoc::dsp {

void PieceRings::Prepare(std::size_t lines, std::size_t longest) {
    // Sizes are powers of two, and at such distances from each other all lines would take the same place in the
    // processor's cache.
    constexpr std::size_t kApart = 48;
    const std::size_t size = std::bit_ceil(longest + kPieceFrames);
    fMask = size - 1;
    fStride = size + kPieceFrames + kApart;
    fSamples.assign(fStride * lines, 0.0F);
    fPosition = 0;
}

void PieceRings::Reset() noexcept {
    std::ranges::fill(fSamples, 0.0F);
    fPosition = 0;
}

void PieceRings::Mirror(float* ring) const noexcept {
    const std::size_t size = fMask + 1;
    if (fPosition < kPieceFrames)
        std::copy(ring + fPosition, ring + kPieceFrames, ring + size + fPosition);
    else
        std::copy(ring + size, ring + fPosition + kPieceFrames, ring);
}

} // namespace qoc::dsp
