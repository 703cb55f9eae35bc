#pragma once

#include "qoc/dsp/stream/SoundPiece.h"

#include <cmath>
#include <cstddef>

namespace qoc::dsp {

// What is done with pieces of sound. Pieces that are written are never the same memory as others.

struct Rotation {
    float cosine = 1;
    float sine = 0;
};

inline void Scale(SoundPiece& sound, float gain) noexcept {
    for (float& sample : sound)
        sample *= gain;
}

inline void AddScaled(const float* __restrict from, float gain, float* __restrict to) noexcept {
    for (std::size_t i = 0; i < kPieceFrames; ++i)
        to[i] += gain * from[i];
}

// From `from` to `to`; `share`: of the latter.
inline void SetBetween(float from, float to, const SoundPiece& share, SoundPiece& __restrict values) noexcept {
    for (std::size_t i = 0; i < kPieceFrames; ++i)
        values[i] = from + share[i] * (to - from);
}

// From one sound to another; `share`: of the latter.
inline void Fade(const float* __restrict from, const float* __restrict to, const SoundPiece& share,
                 SoundPiece& __restrict values) noexcept {
    for (std::size_t i = 0; i < kPieceFrames; ++i)
        values[i] = from[i] + share[i] * (to[i] - from[i]);
}

// The rotations between two, at each sample.
struct RotationPiece {
    RotationPiece(const Rotation& from, const Rotation& to, const SoundPiece& share) noexcept {
        SetBetween(from.cosine, to.cosine, share, cosine);
        SetBetween(from.sine, to.sine, share, sine);
        if (from.cosine == to.cosine && from.sine == to.sine) return;
        for (std::size_t i = 0; i < kPieceFrames; ++i) {
            const float length = std::sqrt(cosine[i] * cosine[i] + sine[i] * sine[i]);
            cosine[i] /= length;
            sine[i] /= length;
        }
    }

    SoundPiece cosine;
    SoundPiece sine;
};

// The first of two rotated sounds.
inline void Turn(const RotationPiece& rotation, SoundPiece& __restrict sound,
                 const SoundPiece& __restrict other) noexcept {
    for (std::size_t i = 0; i < kPieceFrames; ++i)
        sound[i] = rotation.cosine[i] * sound[i] + rotation.sine[i] * other[i];
}

} // namespace qoc::dsp
