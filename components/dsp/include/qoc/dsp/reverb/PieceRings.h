#pragma once

#include "qoc/dsp/stream/SoundPiece.h"

#include <cstddef>
#include <cstring>
#include <vector>

namespace qoc::dsp {

// Delay lines that are written and read by the piece, all at the same time. A piece is written and read whole, whatever
// of it counts: the next one is written over what does not. Owned by its effect; everything but Prepare is real time
// safe.
class PieceRings {
public:
    // For delays of up to `longest` samples. Allocates, and resets.
    void Prepare(std::size_t lines, std::size_t longest);
    void Reset() noexcept;

    void Write(std::size_t line, const SoundPiece& piece) noexcept {
        std::memcpy(Place(line), piece.data(), sizeof piece); // which std::copy would not do in line
        Written(line);
    }
    // Where to write a piece; Written tells when that is done.
    float* Place(std::size_t line) noexcept { return &fSamples[line * fStride + fPosition]; }
    void Written(std::size_t line) noexcept {
        if (fPosition < kPieceFrames || fPosition > fMask + 1 - kPieceFrames) Mirror(&fSamples[line * fStride]);
    }
    // kPieceFrames samples in a row, the first of them `delay` samples before the first of the piece that is written
    // now. Reads at delays that are shorter than the piece come after the writing.
    const float* Read(std::size_t line, std::size_t delay) const noexcept {
        return &fSamples[line * fStride + ((fPosition - delay) & fMask)];
    }
    // So many samples of what was written count.
    void Advance(std::size_t frames) noexcept { fPosition = (fPosition + frames) & fMask; }

private:
    // What was written around the end.
    void Mirror(float* ring) const noexcept;

    // Of the lines one behind the other. The first kPieceFrames samples of each stand again behind its end.
    std::vector<float> fSamples;
    std::size_t fStride = 0; // from one line to the next
    std::size_t fMask = 0;
    std::size_t fPosition = 0;
};

} // namespace qoc::dsp
