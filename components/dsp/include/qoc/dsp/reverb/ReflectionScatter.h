#pragma once

#include "qoc/dsp/reverb/EchoDiffuser.h"
#include "qoc/dsp/stream/PieceGlide.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Walls that are not plain: a part of what they reflect arrives as a cluster of echoes that begins with the reflection.
// The energy stays. Owned by its effect; everything but Prepare is real time safe.
class ReflectionScatter {
public:
    struct Settings {
        double diffusion = 0; // 0...1: from plain walls to ones that scatter everything
        double spread = 1;    // 0...1: of the longest clusters

        bool operator==(const Settings&) const = default;
    };

    // `sampleRate` in hertz. Allocates.
    void Prepare(double sampleRate, std::size_t channels);
    void Reset() noexcept;
    // They are glided to. `settle`: to be there now.
    void Set(const Settings& settings, bool settle) noexcept {
        if (fGlide.Set(settings, settle)) FollowGlide();
    }
    // How many of so many frames the next piece may have.
    std::size_t Within(std::size_t frames) const noexcept { return fGlide.Within(frames); }
    // A piece of each channel.
    void Process(std::span<SoundPiece> channels, std::size_t frames) noexcept;

private:
    // What a set of settings comes to.
    struct Voice {
        float plain = 1; // what is reflected as from a plain wall; and what is scattered
        float scattered = 0;
        EchoDiffuser::Voice cluster;
    };

    static Voice VoiceOf(const Settings& settings) noexcept;
    void FollowGlide() noexcept;

    PieceGlide<Settings> fGlide;
    Voice fFrom;
    Voice fTo;
    std::vector<EchoDiffuser> fDiffusers; // by channel
};

} // namespace qoc::dsp
