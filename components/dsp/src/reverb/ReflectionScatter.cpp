#include "qoc/dsp/reverb/ReflectionScatter.h"

#include "PieceLoops.h"

#include <cmath>

namespace qoc::dsp {

namespace {

constexpr std::size_t kFirstNumber = 33; // other clusters than those of the tank

// Cosine: what is reflected as from a plain wall; sine: what is scattered. At a diffusion of 80 % the former is 4 % of
// the energy: a peak at the head of its cluster that leaves it as dense as noise.
Rotation ScatteringAt(double diffusion) noexcept {
    const double plain = 1 - diffusion;
    return {static_cast<float>(plain), static_cast<float>(std::sqrt(1 - plain * plain))};
}

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
    const RotationPiece scattering(ScatteringAt(fGlide.From().diffusion), ScatteringAt(fGlide.To().diffusion), share);
    const EchoDiffuser::Glide glide = {EchoDiffuser::Voice::Of(1, fGlide.From().spread),
                                       EchoDiffuser::Voice::Of(1, fGlide.To().spread), share};
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        SoundPiece scattered;
        fDiffusers[channel].Process(channels[channel], glide, frames, scattered);
        Turn(scattering, channels[channel], scattered);
    }
    fGlide.Advance(frames);
}

} // namespace qoc::dsp
