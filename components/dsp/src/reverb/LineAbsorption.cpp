#include "qoc/dsp/reverb/LineAbsorption.h"

#include "LineVectors.h"
#include "PieceLoops.h"

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

void LineAbsorption::Process(const Source& from, const Source& to, const SoundPiece& share, std::size_t frames,
                             bool isGliding, Lines& lines) noexcept {
    if (isGliding) {
        for (std::size_t line = 0; line < kLines; ++line) {
            Fade(from.sound[line], to.sound[line], share, lines[line]);
            ShelveGliding(line, from.voice, to.voice, share, frames, lines[line]);
        }
        return;
    }
    if (to.voice.isFlat)
        ScaleLines(to.voice.b0, to.sound, lines);
    else
        ShelveLines({to.voice.b0, to.voice.b1, to.voice.a1, fInputBefore, fOutputBefore}, to.sound, lines);
    for (std::size_t line = 0; line < kLines; ++line) {
        fInputBefore[line] = to.sound[line][frames - 1];
        fOutputBefore[line] = lines[line][frames - 1];
    }
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
