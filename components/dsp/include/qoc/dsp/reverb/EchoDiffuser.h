#pragma once

#include "qoc/dsp/reverb/PieceRings.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qoc::dsp {

// Makes a dense cluster of echoes of a sound within some tens of milliseconds: stages of delays, behind each of which
// rotations mix the lines (a feed-forward network as in S. J. Schlecht, E. A. P. Habets, "Scattering in feedback delay
// networks", IEEE/ACM TASLP 28, 2020). Each line gets thousands of echoes, another cluster each, and all lines together
// have the energy of the sound at every frequency. The first echo comes at once. Owned by its effect; everything but
// Prepare is real time safe.
class EchoDiffuser {
public:
    static constexpr std::size_t kLines = 16;
    using Lines = std::array<SoundPiece, kLines>;

    struct Voice {
        // `diffusion` 0...1: from an echo a line to clusters. `spread` 0...1: of the longest delays.
        static Voice Of(double diffusion, double spread) noexcept;

        float tangent = 0; // of the rotations
        float spread = 1;
    };

    // `share`: of `to` at each sample.
    struct Glide {
        Voice from;
        Voice to;
        const SoundPiece& share;
    };

    // `sampleRate` in hertz; diffusers of other numbers make other clusters. Allocates.
    void Prepare(double sampleRate, std::size_t number);
    void Reset() noexcept;
    // Makes `frames` samples of each line.
    void Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, Lines& lines) noexcept;
    // Or of one cluster of the energy of the sound.
    void Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, SoundPiece& sum) noexcept;

private:
    static constexpr std::size_t kStages = 3;

    struct Rotations;
    struct Delayed;
    // Where a stage's lines are heard at a spread.
    struct Places {
        void Set(float newSpread, const std::array<float, kLines>& longest) noexcept;

        float spread = -1;
        std::array<std::uint32_t, kLines> delays{}; // samples
    };
    struct Stage {
        const float* SoundAt(std::size_t line, const Places& places) const noexcept {
            return rings.Read(isOneRing ? 0 : line, places.delays[line]);
        }

        PieceRings rings;
        bool isOneRing = false;              // all lines delay the same sound
        std::array<float, kLines> longest{}; // delays in samples
        Places from;                         // of the present glide
        Places to;
    };

    void Begin(const SoundPiece& sound, const Glide& glide, const Rotations& rotations) noexcept;
    void Advance(std::size_t frames) noexcept;

    std::array<Stage, kStages> fStages;
};

} // namespace qoc::dsp
