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
constexpr bool IsUpsideDown(std::size_t line) noexcept {
    return (((line & (line >> 1U)) ^ ((line >> 2U) & (line >> 3U))) & 1U) != 0;
}

} // namespace

// Sounds are turned by tangents, and scaled before by the fourth power of the cosine: once for each stride.
struct EchoDiffuser::Rotations {
    Rotations(const Voice& from, const Voice& to, const SoundPiece& share) noexcept {
        SetBetween(from.tangent, to.tangent, share, tangent);
        for (std::size_t i = 0; i < kPieceFrames; ++i) {
            const float squared = 1 / (1 + tangent[i] * tangent[i]);
            gain[i] = squared * squared;
            opposite[i] = -gain[i];
        }
    }

    void Turn(Lines& lines) const noexcept {
        for (std::size_t i = 0; i < kLines; i += 4)
            RotateFour(tangent, lines[i], lines[i + 1], lines[i + 2], lines[i + 3]);
        for (std::size_t i = 0; i < kLines / 4; ++i)
            RotateFour(tangent, lines[i], lines[i + 4], lines[i + 8], lines[i + 12]);
    }

    SoundPiece tangent;
    SoundPiece gain;
    SoundPiece opposite;
};

EchoDiffuser::Voice EchoDiffuser::Voice::Of(double diffusion, double spread) noexcept {
    const double angle = std::numbers::pi / 4 * std::sqrt(diffusion);
    return {static_cast<float>(std::tan(angle)), static_cast<float>(spread)};
}

void EchoDiffuser::Prepare(double sampleRate, std::size_t number) {
    for (std::size_t stage = 0; stage < kStages; ++stage) {
        const double longest = kLongestSeconds[stage] * sampleRate;
        for (std::size_t line = 0; line < kLines; ++line)
            fStages[stage].longest[line] = static_cast<float>(PlaceOf(number, stage, line) * longest);
        fStages[stage].isOneRing = stage == 0;
        fStages[stage].rings.Prepare(stage == 0 ? 1 : kLines, static_cast<std::size_t>(longest));
    }
}

void EchoDiffuser::Reset() noexcept {
    for (Stage& stage : fStages)
        stage.rings.Reset();
}

void EchoDiffuser::Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, Lines& lines) noexcept {
    const Rotations rotations(glide.from, glide.to, glide.share);
    Begin(sound, glide, rotations, lines);
    fStages[kStages - 1].Read(glide, rotations, lines);
    rotations.Turn(lines);
    Advance(frames);
}

// What is turned last would only be added up.
void EchoDiffuser::Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, SoundPiece& sum) noexcept {
    Lines lines;
    Begin(sound, glide, Rotations(glide.from, glide.to, glide.share), lines);
    fStages[kStages - 1].Read(glide, Rotations({0, 1}, {0, 1}, glide.share), lines);
    sum.fill(0);
    for (const SoundPiece& line : lines)
        AddScaled(line.data(), 1, sum.data());
    Advance(frames);
}

// Up to the last stage's delays.
void EchoDiffuser::Begin(const SoundPiece& sound, const Glide& glide, const Rotations& rotations,
                         Lines& lines) noexcept {
    SoundPiece share = sound;
    Scale(share, kGain);
    fStages[0].rings.Write(0, share);
    for (std::size_t stage = 1; stage < kStages; ++stage) {
        fStages[stage - 1].Read(glide, rotations, lines);
        rotations.Turn(lines);
        for (std::size_t line = 0; line < kLines; ++line)
            fStages[stage].rings.Write(line, lines[line]);
    }
}

void EchoDiffuser::Advance(std::size_t frames) noexcept {
    for (Stage& stage : fStages)
        stage.rings.Advance(frames);
}

void EchoDiffuser::Stage::Read(const Glide& glide, const Rotations& rotations, Lines& lines) const noexcept {
    for (std::size_t line = 0; line < kLines; ++line) {
        const std::size_t ring = isOneRing ? 0 : line;
        const SoundPiece& gain = IsUpsideDown(line) ? rotations.opposite : rotations.gain;
        const float* const heard = rings.Read(ring, static_cast<std::size_t>(glide.to.spread * longest[line]));
        if (glide.from.spread == glide.to.spread) {
            Multiply(heard, gain, lines[line]);
            continue;
        }
        const float* const before = rings.Read(ring, static_cast<std::size_t>(glide.from.spread * longest[line]));
        SoundPiece both;
        Fade(before, heard, glide.share, both);
        Multiply(both.data(), gain, lines[line]);
    }
}

} // namespace qoc::dsp
