#pragma once

#include "qoc/dsp/stream/SoundPiece.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace qoc::dsp {

// What a reverb's delay lines lose on their way: a first-order shelf a line. In decibels it is proportional to the
// delay, so that all lines decay alike (J. M. Jot, A. Chaigne, 90th AES convention, 1991). Owned by its tank; real time
// safe.
class LineAbsorption {
public:
    static constexpr std::size_t kLines = 32;
    using Values = std::array<float, kLines>;
    using Lines = std::array<SoundPiece, kLines>;

    struct Decay {
        double samples;   // in which low frequencies decay by 60 dB
        double highShare; // of that which the highest frequencies take: above 0, at most 1
    };
    // y = b0 x + b1 x[-1] - a1 y[-1]
    struct Voice {
        // For lines of so many samples. `middle` is where the decay is midway, as the tangent of the bilinear
        // transform.
        static Voice Of(const Decay& decay, std::span<const std::uint32_t, kLines> delays, double middle) noexcept;
        // Makes every line so much louder.
        void Scale(const Values& gains) noexcept;

        Values b0{};
        Values b1{};
        Values a1{};
        bool isFlat = true;
    };

    void Reset() noexcept;
    // What lines send, and how it is treated.
    struct Source {
        std::array<const float*, kLines> sound; // kPieceFrames samples of each
        const Voice& voice;
    };

    // Makes what comes of the lines. `share`: of `to` against `from` at each of the samples, `frames` of which count.
    // `isGliding`: they are not the same.
    void Process(const Source& from, const Source& to, const SoundPiece& share, std::size_t frames, bool isGliding,
                 Lines& lines) noexcept;

private:
    void ShelveGliding(std::size_t line, const Voice& from, const Voice& to, const SoundPiece& share,
                       std::size_t frames, SoundPiece& sound) noexcept;

    Values fInputBefore{};
    Values fOutputBefore{};
};

} // namespace qoc::dsp
