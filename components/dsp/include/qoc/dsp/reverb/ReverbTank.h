#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qoc::dsp {

// The late reverberation of the reverbs: a feedback delay network (J. M. Jot, A. Chaigne, "Digital delay networks for
// designing artificial reverberators", 90th AES convention, 1991). Sixteen delay lines feed each other through an
// orthogonal matrix, which keeps energy, so that the decay is that of the gains behind the lines alone: 60 dB in the
// decay time at all low frequencies and, where that is wanted, faster at high ones. Allpass filters in front thicken
// the echoes. The matrix is made of rotations and may turn slowly, which keeps resonances from being heard and stays
// orthogonal meanwhile (S. J. Schlecht, E. A. P. Habets, "Time-varying feedback matrices in feedback delay networks",
// JASA 138, 2015).
//
// The lines are shared out among the channels: a channel goes into its own lines and is the sum of them, so that
// channels sound alike and are not correlated. The impulse response of a channel that all channels are fed into has the
// energy 1 whatever is set. Other settings are glided to. Owned by its effect; everything but Prepare is real time
// safe.
class ReverbTank {
public:
    static constexpr std::size_t kLines = 16;
    static constexpr double kLongestMean = 0.08; // seconds

    struct Settings {
        double decay = 1;         // seconds until the sound has decayed by 60 dB
        double highDecay = 1;     // the share of that which the highest frequencies take: above 0, at most 1
        double meanLength = 0.05; // of the lines, in seconds, up to kLongestMean
        double diffusion = 1;     // 0...1: from single echoes to a smooth start
        double mixing = 1;        // 0...1: how much the lines feed others; at little, echoes stay single
        double movement = 0;      // 0...1: how far the matrix turns

        bool operator==(const Settings&) const = default;
    };

    // `sampleRate` in hertz.
    void Prepare(double sampleRate, std::size_t channels);
    // Forgets all sound.
    void Reset() noexcept;
    // `settle`: to be there now, without a glide.
    void Set(const Settings& settings, bool settle) noexcept;
    // One sample a channel.
    void Process(const float* inputs, float* outputs) noexcept;

private:
    static constexpr std::size_t kDiffusers = 4;
    static constexpr std::size_t kStages = 4; // of rotations: 2 to the power of it is kLines
    using Lines = std::array<float, kLines>;

    // What a set of settings comes to.
    struct Voice {
        std::array<std::uint32_t, kLines> length{}; // samples
        Lines b0{};                                 // the lines' absorption: y = b0 x + b1 x[-1] - a1 y[-1]
        Lines b1{};
        Lines a1{};
        std::array<float, kDiffusers> diffusion{};
        float onset = 0; // of the diffused sound itself
        float level = 1;
    };
    // The channels that share lines: more than one only when there are more channels than lines.
    struct Group {
        std::array<std::vector<float>, kDiffusers> allpasses; // rings
        std::array<std::size_t, kDiffusers> positions{};
        float diffused = 0;
        float output = 0;
    };

    Voice VoiceOf(const Settings& settings) const noexcept;
    void SetAbsorption(const Settings& settings, std::size_t line, Voice& voice) const noexcept;
    void StartGlide() noexcept;
    void AdvanceGlide() noexcept;
    void Turn() noexcept;
    void Diffuse(Group& group) const noexcept;
    void ReadLines(Lines& sound) const noexcept;
    void Absorb(Lines& sound) noexcept;
    void Mix(Lines& sound) noexcept;

    double fSampleRate = 44100;
    std::vector<float> fRings; // of the lines one behind the other
    std::size_t fStride = 0;   // from one to the next
    std::size_t fMask = 0;
    std::size_t fPosition = 0;
    std::vector<Group> fGroups;
    std::vector<std::size_t> fGroupOf; // by channel
    std::array<std::size_t, kLines> fGroupOfLine{};
    Lines fInputGain{};
    Lines fOutputGain{};
    Lines fInputBefore{}; // of the absorption
    Lines fOutputBefore{};

    Settings fSettings; // glided to, or there
    Settings fPending;  // waits for the glide to end
    bool fHasPending = false;
    Voice fFrom;
    Voice fTo;
    Voice fNow; // its lengths are those of fTo
    std::size_t fGlideLength = 1;
    std::size_t fGlideRemaining = 0;
    float fShare = 1; // of fTo

    double fAngle = 0; // radians, without the movement; lags behind the settings
    std::uint64_t fTurns = 0;
    std::size_t fUntilTurn = 0;
    std::array<double, kStages> fTurnedTo{};
    std::array<float, kStages> fCosine{};
    std::array<float, kStages> fSine{};
    std::array<float, kStages> fStepCosine{};
    std::array<float, kStages> fStepSine{};
};

} // namespace qoc::dsp
