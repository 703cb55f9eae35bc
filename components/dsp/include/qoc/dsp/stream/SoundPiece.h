#pragma once

#include <array>
#include <cstddef>

namespace qoc::dsp {

// So many samples at once go through effects that work in pieces: loops of fixed length over samples in a row are ones
// of vectors.
inline constexpr std::size_t kPieceFrames = 32;
using SoundPiece = std::array<float, kPieceFrames>;

} // namespace qoc::dsp
