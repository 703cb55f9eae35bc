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

void LineAbsorption::Process(const Source& from, const Source& to, const SoundPiece& share, std::size_t frames,
                             bool isGliding, Lines& lines) noexcept {
    if (isGliding) {
        for (std::size_t line = 0; line < kLines; ++line) {
            Fade(from.sound[line], to.sound[line], share, lines[line]);
            ShelveGliding(line, from.voice, to.voice, share, frames, lines[line]);
        }
    } else if (to.voice.isFlat) {
        Amplify(to, frames, lines);
    } else {
        for (std::size_t first = 0; first < kLines; first += kAtOnce)
            Shelve(first, to, frames, lines);
    }
}

void LineAbsorption::Amplify(const Source& source, std::size_t frames, Lines& lines) noexcept {
    for (std::size_t line = 0; line < kLines; ++line) {
        qoc::dsp::Scale(source.sound[line], source.voice.b0[line], lines[line]);
        fInputBefore[line] = source.sound[line][frames - 1];
        fOutputBefore[line] = lines[line][frames - 1];
    }
}

void LineAbsorption::Shelve(std::size_t first, const Source& source, std::size_t frames, Lines& lines) noexcept {
    std::array<float, kAtOnce> a1;
    std::array<float, kAtOnce> output;
    for (std::size_t k = 0; k < kAtOnce; ++k) {
        const std::size_t line = first + k;
        const float* const sound = source.sound[line];
        const float b0 = source.voice.b0[line];
        const float b1 = source.voice.b1[line];
        lines[line][0] = b0 * sound[0] + b1 * fInputBefore[line];
        for (std::size_t i = 1; i < kPieceFrames; ++i)
            lines[line][i] = b0 * sound[i] + b1 * sound[i - 1];
        fInputBefore[line] = sound[frames - 1];
        a1[k] = source.voice.a1[line];
        output[k] = fOutputBefore[line];
    }
    for (std::size_t i = 0; i < frames; ++i) {
        for (std::size_t k = 0; k < kAtOnce; ++k)
            lines[first + k][i] = output[k] = lines[first + k][i] - a1[k] * output[k];
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
