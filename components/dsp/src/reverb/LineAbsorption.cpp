#include "qoc/dsp/reverb/LineAbsorption.h"

#include "PieceLoops.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::dsp {

namespace {

// What 60 dB are as an exponent of 10.
double GainOver(double samples, double decay) noexcept {
    return std::pow(10.0, -3 * samples / decay);
}

} // namespace

// By the bilinear transform.
LineAbsorption::Voice LineAbsorption::Voice::Of(const Decay& decay, std::span<const std::uint32_t, kLines> delays,
                                                double middle) noexcept {
    Voice voice;
    voice.isFlat = decay.highShare == 1;
    for (std::size_t line = 0; line < kLines; ++line) {
        const double low = GainOver(delays[line], decay.samples);
        voice.b0[line] = static_cast<float>(low);
        if (voice.isFlat) continue;
        const double shelf = GainOver(delays[line], decay.samples * decay.highShare) / low;
        const double tangent = middle * std::sqrt(shelf);
        voice.b0[line] = static_cast<float>(low * (shelf + tangent) / (1 + tangent));
        voice.b1[line] = static_cast<float>(low * (tangent - shelf) / (1 + tangent));
        voice.a1[line] = static_cast<float>((tangent - 1) / (1 + tangent));
    }
    return voice;
}

void LineAbsorption::Voice::Scale(const Values& gains) noexcept {
    for (std::size_t line = 0; line < kLines; ++line) {
        b0[line] *= gains[line];
        b1[line] *= gains[line];
    }
}

void LineAbsorption::Reset() noexcept {
    fInputBefore = {};
    fOutputBefore = {};
}

void LineAbsorption::Process(const Voice& from, const Voice& to, const SoundPiece& share, std::size_t frames,
                             bool isGliding, Lines& sound) noexcept {
    if (!isGliding && !to.isFlat) {
        for (std::size_t first = 0; first < kLines; first += kAtOnce)
            Shelve(first, to, frames, sound);
        return;
    }
    for (std::size_t line = 0; line < kLines; ++line) {
        if (from.isFlat && to.isFlat)
            Amplify(line, from, to, share, frames, sound[line]);
        else
            ShelveGliding(line, from, to, share, frames, sound[line]);
    }
}

void LineAbsorption::Amplify(std::size_t line, const Voice& from, const Voice& to, const SoundPiece& share,
                             std::size_t frames, SoundPiece& sound) noexcept {
    fInputBefore[line] = sound[frames - 1];
    SoundPiece gain;
    SetBetween(from.b0[line], to.b0[line], share, gain);
    for (std::size_t i = 0; i < kPieceFrames; ++i)
        sound[i] *= gain[i];
    fOutputBefore[line] = sound[frames - 1];
}

void LineAbsorption::Shelve(std::size_t first, const Voice& voice, std::size_t frames, Lines& sound) noexcept {
    std::array<float, kAtOnce> a1;
    std::array<float, kAtOnce> output;
    for (std::size_t k = 0; k < kAtOnce; ++k) {
        const std::size_t line = first + k;
        std::array<float, 1 + kPieceFrames> inputs;
        inputs[0] = fInputBefore[line];
        std::ranges::copy(sound[line], inputs.begin() + 1);
        const float b0 = voice.b0[line];
        const float b1 = voice.b1[line];
        for (std::size_t i = 0; i < kPieceFrames; ++i)
            sound[line][i] = b0 * inputs[1 + i] + b1 * inputs[i];
        fInputBefore[line] = inputs[frames];
        a1[k] = voice.a1[line];
        output[k] = fOutputBefore[line];
    }
    for (std::size_t i = 0; i < frames; ++i) {
        for (std::size_t k = 0; k < kAtOnce; ++k)
            sound[first + k][i] = output[k] = sound[first + k][i] - a1[k] * output[k];
    }
    std::ranges::copy(output, fOutputBefore.begin() + static_cast<std::ptrdiff_t>(first));
}

void LineAbsorption::ShelveGliding(std::size_t line, const Voice& from, const Voice& to, const SoundPiece& share,
                                   std::size_t frames, SoundPiece& sound) noexcept {
    SoundPiece b0;
    SoundPiece b1;
    SoundPiece a1;
    SetBetween(from.b0[line], to.b0[line], share, b0);
    SetBetween(from.b1[line], to.b1[line], share, b1);
    SetBetween(from.a1[line], to.a1[line], share, a1);
    float input = fInputBefore[line];
    float output = fOutputBefore[line];
    for (std::size_t i = 0; i < frames; ++i) {
        output = b0[i] * sound[i] + b1[i] * std::exchange(input, sound[i]) - a1[i] * output;
        sound[i] = output;
    }
    fInputBefore[line] = input;
    fOutputBefore[line] = output;
}

} // namespace qoc::dsp
