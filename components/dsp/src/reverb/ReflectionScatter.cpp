#include "qoc/dsp/reverb/ReflectionScatter.h"

#include "PieceLoops.h"

#include <cmath>

namespace qoc::dsp {

namespace {

constexpr std::size_t kFirstNumber = 33; // other clusters than those of the tank

} // namespace

void ReflectionScatter::Prepare(double sampleRate, std::size_t channels) {
    fGlide.Prepare(sampleRate);
    fDiffusers.resize(channels);
    for (std::size_t channel = 0; channel < channels; ++channel)
        fDiffusers[channel].Prepare(sampleRate, kFirstNumber + channel);
}

void ReflectionScatter::Reset() noexcept {
    for (EchoDiffuser& diffuser : fDiffusers)
        diffuser.Reset();
}

void ReflectionScatter::Process(std::span<SoundPiece> channels, std::size_t frames) noexcept {
    const SoundPiece& share = fGlide.Share(frames);
    const RotationPiece scattering({fFrom.plain, fFrom.scattered}, {fTo.plain, fTo.scattered}, share);
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        SoundPiece scattered;
        fDiffusers[channel].Process(channels[channel], {fFrom.cluster, fTo.cluster, share}, frames, scattered);
        Turn(scattering, channels[channel], scattered);
    }
    if (fGlide.Advance(frames)) FollowGlide();
}

// Cosine and sine. At a diffusion of 80 % what is reflected as from a plain wall is 4 % of the energy: a peak at the
// head of its cluster that leaves it as dense as noise.
ReflectionScatter::Voice ReflectionScatter::VoiceOf(const Settings& settings) noexcept {
    const double plain = 1 - settings.diffusion;
    return {static_cast<float>(plain), static_cast<float>(std::sqrt(1 - plain * plain)),
            EchoDiffuser::Voice::Of(1, settings.spread)};
}

void ReflectionScatter::FollowGlide() noexcept {
    fFrom = VoiceOf(fGlide.From());
    fTo = VoiceOf(fGlide.To());
}

} // namespace qoc::dsp
