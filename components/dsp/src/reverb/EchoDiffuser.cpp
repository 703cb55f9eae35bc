#include "qoc/dsp/reverb/EchoDiffuser.h"

#include "PieceLoops.h"

#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr double kLongestSeconds[] = {0.0037, 0.0091, 0.0205};
constexpr double kBend = 1.5; // more short delays than long ones, so that the cluster begins at once

// Where among a stage's delays that of a line lies, 0...1: the golden ratio's multiples are evenly spread and nowhere
// regular. The first line has no delay in any stage.
double PlaceOf(std::size_t number, std::size_t stage, std::size_t line) noexcept {
    if (line == 0) return 0;
    const double turns = std::numbers::phi * static_cast<double>(1 + line + (23 * stage + 7) * (number + 1));
    return std::pow(turns - std::floor(turns), kBend);
}

constexpr float kGain = 0.25F; // of a line, so that all of them have the energy of the sound
static_assert(kGain * kGain * EchoDiffuser::kLines == 1);

// A bent function: rotations of it are nowhere large.
constexpr float SignOf(std::size_t line) noexcept {
    const std::size_t negative = (line & (line >> 1U) & 1U) ^ ((line >> 2U) & (line >> 3U) & 1U);
    return negative != 0 ? -1.0F : 1.0F;
}

void Rotate(const RotationPiece& rotation, EchoDiffuser::Lines& lines) noexcept {
    for (std::size_t i = 0; i < EchoDiffuser::kLines; i += 4)
        RotateFour(rotation, lines[i], lines[i + 1], lines[i + 2], lines[i + 3]);
    for (std::size_t i = 0; i < EchoDiffuser::kLines / 4; ++i)
        RotateFour(rotation, lines[i], lines[i + 4], lines[i + 8], lines[i + 12]);
}

} // namespace

EchoDiffuser::Voice EchoDiffuser::Voice::Of(double diffusion, double spread) noexcept {
    const double angle = std::numbers::pi / 4 * std::sqrt(diffusion);
    return {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), static_cast<float>(spread)};
}

void EchoDiffuser::Prepare(double sampleRate, std::size_t number) {
    for (std::size_t stage = 0; stage < kStages; ++stage) {
        const double longest = kLongestSeconds[stage] * sampleRate;
        for (std::size_t line = 0; line < kLines; ++line)
            fStages[stage].longest[line] = static_cast<float>(PlaceOf(number, stage, line) * longest);
        // All lines of the first stage delay the same sound.
        fStages[stage].rings.Prepare(stage == 0 ? 1 : kLines, static_cast<std::size_t>(longest));
    }
}

void EchoDiffuser::Reset() noexcept {
    for (Stage& stage : fStages)
        stage.rings.Reset();
}

void EchoDiffuser::Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, Lines& lines) noexcept {
    Rotate(Diffuse(sound, glide, frames, lines), lines);
}

void EchoDiffuser::Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, SoundPiece& sum) noexcept {
    Lines lines;
    Diffuse(sound, glide, frames, lines);
    sum.fill(0);
    for (const SoundPiece& line : lines)
        AddScaled(line.data(), 1, sum.data());
}

// But for the last rotations, which are returned.
RotationPiece EchoDiffuser::Diffuse(const SoundPiece& sound, const Glide& glide, std::size_t frames,
                                    Lines& lines) noexcept {
    const RotationPiece rotation({glide.from.cosine, glide.from.sine}, {glide.to.cosine, glide.to.sine}, glide.share);
    fStages[0].rings.Write(0, sound);
    for (std::size_t line = 0; line < kLines; ++line)
        fStages[0].Read(0, line, glide, kGain, lines[line]);
    for (std::size_t stage = 1; stage < kStages; ++stage) {
        Rotate(rotation, lines);
        for (std::size_t line = 0; line < kLines; ++line) {
            fStages[stage].rings.Write(line, lines[line]);
            fStages[stage].Read(line, line, glide, 1, lines[line]);
        }
    }
    for (Stage& stage : fStages)
        stage.rings.Advance(frames);
    return rotation;
}

void EchoDiffuser::Stage::Read(std::size_t ring, std::size_t line, const Glide& glide, float gain,
                               SoundPiece& sound) const noexcept {
    const auto before = static_cast<std::size_t>(glide.from.spread * longest[line]);
    const auto delay = static_cast<std::size_t>(glide.to.spread * longest[line]);
    ReadFading(rings.Read(ring, before), rings.Read(ring, delay), glide.share, gain * SignOf(line), sound);
}

} // namespace qoc::dsp
