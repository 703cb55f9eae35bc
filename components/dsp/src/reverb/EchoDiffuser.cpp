#include "qoc/dsp/reverb/EchoDiffuser.h"

#include "LineVectors.h"
#include "PieceLoops.h"

#include <cmath>
#include <numbers>
#include <utility>

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

} // namespace

// Sounds are turned by tangents, and scaled before by the fourth power of the cosine: once for each stride.
struct EchoDiffuser::Rotations {
    Rotations(const Voice& from, const Voice& to, const SoundPiece& share) noexcept {
        SetBetween(from.tangent, to.tangent, share, tangent);
        for (std::size_t i = 0; i < kPieceFrames; ++i) {
            const float squared = 1 / (1 + tangent[i] * tangent[i]);
            gain[i] = squared * squared;
        }
    }

    SoundPiece tangent;
    SoundPiece gain;
};

EchoDiffuser::Voice EchoDiffuser::Voice::Of(double diffusion, double spread) noexcept {
    const double angle = std::numbers::pi / 4 * std::sqrt(diffusion);
    return {static_cast<float>(std::tan(angle)), static_cast<float>(spread)};
}

void EchoDiffuser::Prepare(double sampleRate, std::size_t number) {
    for (std::size_t index = 0; index < kStages; ++index) {
        Stage& stage = fStages[index];
        const double longest = kLongestSeconds[index] * sampleRate;
        for (std::size_t line = 0; line < kLines; ++line)
            stage.longest[line] = static_cast<float>(PlaceOf(number, index, line) * longest);
        stage.isOneRing = index == 0;
        stage.rings.Prepare(stage.isOneRing ? 1 : kLines, static_cast<std::size_t>(longest));
        stage.from = stage.to = {};
    }
}

void EchoDiffuser::Reset() noexcept {
    for (Stage& stage : fStages)
        stage.rings.Reset();
}

// What a stage's lines send at present.
struct EchoDiffuser::Delayed {
    Delayed(const Stage& stage, const Glide& glide) noexcept {
        for (std::size_t line = 0; line < kLines; ++line) {
            sound[line] = stage.SoundAt(line, stage.to);
            if (glide.from.spread == glide.to.spread) continue;
            Fade(stage.SoundAt(line, stage.from), sound[line], glide.share, faded[line]);
            sound[line] = faded[line].data();
        }
    }

    std::array<const float*, kLines> sound;
    Lines faded;
};

void EchoDiffuser::Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, Lines& lines) noexcept {
    const Rotations rotations(glide.from, glide.to, glide.share);
    Begin(sound, glide, rotations);
    std::array<float*, kLines> to;
    for (std::size_t line = 0; line < kLines; ++line)
        to[line] = lines[line].data();
    TurnLines(rotations.tangent, rotations.gain, Delayed(fStages.back(), glide).sound, to);
    Advance(frames);
}

// What is turned last would only be added up.
void EchoDiffuser::Process(const SoundPiece& sound, const Glide& glide, std::size_t frames, SoundPiece& sum) noexcept {
    Begin(sound, glide, Rotations(glide.from, glide.to, glide.share));
    SumLines(Delayed(fStages.back(), glide).sound, sum);
    Advance(frames);
}

// Up to the last stage's delays.
void EchoDiffuser::Begin(const SoundPiece& sound, const Glide& glide, const Rotations& rotations) noexcept {
    for (Stage& stage : fStages) {
        stage.from.Set(glide.from.spread, stage.longest);
        stage.to.Set(glide.to.spread, stage.longest);
    }
    SoundPiece share = sound;
    Scale(share, kGain);
    fStages[0].rings.Write(0, share);
    for (std::size_t stage = 1; stage < kStages; ++stage) {
        PieceRings& rings = fStages[stage].rings;
        std::array<float*, kLines> to;
        for (std::size_t line = 0; line < kLines; ++line)
            to[line] = rings.Place(line);
        TurnLines(rotations.tangent, rotations.gain, Delayed(fStages[stage - 1], glide).sound, to);
        for (std::size_t line = 0; line < kLines; ++line)
            rings.Written(line);
    }
}

void EchoDiffuser::Advance(std::size_t frames) noexcept {
    for (Stage& stage : fStages)
        stage.rings.Advance(frames);
}

void EchoDiffuser::Places::Set(float newSpread, const std::array<float, kLines>& longest) noexcept {
    if (newSpread == std::exchange(spread, newSpread)) return;
    for (std::size_t line = 0; line < kLines; ++line)
        delays[line] = static_cast<std::uint32_t>(newSpread * longest[line]);
}

} // namespace qoc::dsp
