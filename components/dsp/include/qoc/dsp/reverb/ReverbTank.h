#pragma once

#include "qoc/dsp/reverb/EchoDiffuser.h"
#include "qoc/dsp/reverb/LineAbsorption.h"
#include "qoc/dsp/reverb/PieceRings.h"
#include "qoc/dsp/stream/PieceGlide.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// The late reverberation of the reverbs: a feedback delay network (J. M. Jot, A. Chaigne, "Digital delay networks for
// designing artificial reverberators", 90th AES convention, 1991). Thirty-two delay lines feed each other through an
// orthogonal matrix, which keeps energy, so that the decay is that of the gains behind the lines alone: 60 dB in the
// decay time at all low frequencies and, where that is wanted, faster at high ones. So many lines, and so long ones,
// have resonances closer to each other than any of them is wide, and nothing moves: a tone stays what it is. A diffuser
// in front makes a dense cluster of every echo.
//
// The lines are shared out among the channels: a channel goes into its own lines, so that channels sound alike and are
// not correlated. It hears each of them at a place of its own along the line, as if the sound had long been under way:
// the decay is even from its start. The impulse response of a channel that all channels are fed into has the energy 1
// whatever is set. Other settings are glided to. Owned by its effect; everything but Prepare is real time safe.
class ReverbTank {
public:
    static constexpr std::size_t kLines = LineAbsorption::kLines;
    static constexpr double kLongestMean = 0.1; // seconds

    struct Settings {
        double decay = 1;         // seconds until the sound has decayed by 60 dB
        double highDecay = 1;     // the share of that which the highest frequencies take: above 0, at most 1
        double meanLength = 0.05; // of the lines, in seconds, up to kLongestMean
        double diffusion = 1;     // 0...1: from single echoes to a smooth start
        double mixing = 1;        // 0...1: how much the lines feed others; at little, echoes stay single

        bool operator==(const Settings&) const = default;
    };

    // The share, 0...1, of their longest that clusters of echoes last in front of lines of so many seconds.
    static double SpreadOf(double meanLength) noexcept;

    // `sampleRate` in hertz.
    void Prepare(double sampleRate, std::size_t channels);
    // Forgets all sound.
    void Reset() noexcept;
    // `settle`: to be there now, without a glide.
    void Set(const Settings& settings, bool settle) noexcept;
    // How many of so many frames the next piece may have.
    std::size_t Within(std::size_t frames) const noexcept { return fGlide.Within(frames); }
    // Replaces a piece of each channel by its reverberation.
    void Process(std::span<SoundPiece> channels, std::size_t frames) noexcept;

private:
    static constexpr std::size_t kMostGroups = 16;
    using Delays = std::array<std::uint32_t, kLines>; // samples
    using Lines = LineAbsorption::Lines;

    // What a set of settings comes to.
    struct Voice {
        Delays length{};
        Delays tap{}; // where a line is heard
        LineAbsorption::Voice lost;
        LineAbsorption::Voice heard;
        EchoDiffuser::Voice diffuser;
        float kept = 0; // the matrix: what a line feeds itself, and all that it feeds others
        float fed = 1;
    };
    // The channels that share lines: more than one only when there are more channels than groups.
    struct Group {
        EchoDiffuser diffuser;
        SoundPiece sound{};
    };

    Voice VoiceOf(const Settings& settings) const noexcept;
    LineAbsorption::Values OutputGains(const Settings& settings, const Delays& lengths) const noexcept;
    std::size_t LinesOf(std::size_t group) const noexcept;
    void FollowGlide() noexcept;
    void Take(std::span<const SoundPiece> channels) noexcept;
    std::array<const float*, kLines> SoundAt(const Delays& delays) const noexcept;
    void Mix(const SoundPiece& share) noexcept;
    void Feed(std::size_t group, const SoundPiece& share, std::size_t frames) noexcept;
    void Hear(std::size_t group) noexcept;

    double fSampleRate = 44100;
    PieceRings fRings;
    std::vector<Group> fGroups; // line by line in turn; channel by channel too
    LineAbsorption::Values fInputGains{};
    LineAbsorption fLost;
    LineAbsorption fHeard;
    Lines fLines{}; // the piece that is being made

    PieceGlide<Settings> fGlide;
    Voice fFrom;
    Voice fTo;
};

} // namespace qoc::dsp
