#pragma once

#include "qoc/dsp/stream/SoundPiece.h"

#include <cstddef>
#include <span>

namespace qoc::dsp {

// What reverbs do with pieces of many lines, with the best vectors that the processor has. All of them round alike.

// By which of a diffuser's lines sound goes upside down: a bent function, whose rotations are nowhere large.
constexpr bool IsUpsideDown(std::size_t line) noexcept {
    return (((line & (line >> 1U)) ^ ((line >> 2U) & (line >> 3U))) & 1U) != 0;
}

// Pieces of 16 lines: the lines that are 1, 2, 4 and 8 apart are rotated by the tangent, after all of them have been
// scaled by `gain`, some of them upside down. What comes out is as much louder than that as the fourth power of the
// cosine is below 1.
void TurnLines(const SoundPiece& tangent, const SoundPiece& gain, std::span<const float* const, 16> from,
               std::span<float* const, 16> to) noexcept;
// All added up, some of them upside down.
void SumLines(std::span<const float* const, 16> from, SoundPiece& sum) noexcept;
// Adds each by a gain of its own.
void AddLines(std::span<const float* const> from, std::span<const float> gains, SoundPiece& sum) noexcept;

// The identity and a skew Hadamard matrix, as cosine and sine: orthogonal whatever the angle.
void MixLines(const SoundPiece& cosine, const SoundPiece& sine, std::span<SoundPiece, 32> lines) noexcept;

// y = b0 x + b1 x[-1] - a1 y[-1] of as many lines as there are coefficients, a multiple of 16.
struct LineShelves {
    std::span<const float> b0;
    std::span<const float> b1;
    std::span<const float> a1;
    std::span<const float> inputBefore;
    std::span<const float> outputBefore;
};
void ShelveLines(const LineShelves& shelves, std::span<const float* const> sound, std::span<SoundPiece> lines) noexcept;

// Each line by a gain of its own.
void ScaleLines(std::span<const float> gains, std::span<const float* const> sound,
                std::span<SoundPiece> lines) noexcept;

} // namespace qoc::dsp
