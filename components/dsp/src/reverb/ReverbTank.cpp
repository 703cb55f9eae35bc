#include "qoc/dsp/reverb/ReverbTank.h"

#include "LineVectors.h"
#include "PieceLoops.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

// The lines' lengths form a geometric series, whose mean is 1.
constexpr double kShortestLine = 0.48;
constexpr double kLongestLine = 1.81;

constexpr double kHighFrequency = 3500; // hertz: where the decay is midway between that of low and high frequencies
constexpr double kLeastAngle = 0.24;    // of the matrix, in radians: every line feeds the others a little

bool IsPrime(std::uint32_t number) noexcept {
    for (std::uint32_t divisor = 3; divisor * divisor <= number; divisor += 2) {
        if (number % divisor == 0) return false;
    }
    return true;
}

// Lengths without common divisors keep echoes of several lines from falling together.
std::uint32_t PrimeFrom(std::uint32_t least) noexcept {
    std::uint32_t number = least | 1U;
    while (!IsPrime(number))
        number += 2;
    return number;
}

double LineRatio(std::size_t line) noexcept {
    return kShortestLine * std::pow(kLongestLine / kShortestLine, static_cast<double>(line) / (ReverbTank::kLines - 1));
}

// By which lines are heard upside down: a bent function, so that the sum is akin to none of the vectors that the matrix
// is made of.
constexpr float SignOf(std::size_t line) noexcept {
    const std::size_t negative = (line & (line >> 1U)) ^ ((line >> 2U) & (line >> 3U)) ^ ((line >> 4U) & line);
    return (negative & 1U) != 0 ? -1.0F : 1.0F;
}

// The lines of a diffuser by turns; the second time in another order.
constexpr std::size_t DiffusedLine(std::size_t turn) noexcept {
    constexpr std::size_t kCount = EchoDiffuser::kLines;
    return turn < kCount ? turn : (5 * turn + 3) % kCount;
}

} // namespace

double ReverbTank::SpreadOf(double meanLength) noexcept {
    constexpr double kUsualMean = 0.05; // seconds
    return std::min(1.0, meanLength / kUsualMean);
}

void ReverbTank::Prepare(double sampleRate, std::size_t channels) {
    fSampleRate = sampleRate;
    // Primes are not far apart: a hundred samples are room enough for the next ones.
    constexpr double kMore = 100;
    fRings.Prepare(kLines, static_cast<std::size_t>(kLongestMean * kLongestLine * sampleRate + kMore));
    fGlide.Prepare(sampleRate);
    fGroups.resize(std::clamp<std::size_t>(channels, 1, kMostGroups));
    for (std::size_t i = 0; i < fGroups.size(); ++i)
        fGroups[i].diffuser.Prepare(sampleRate, i);
    // In proportion to the lengths, so that as much sound is on every part of every line.
    for (std::size_t line = 0; line < kLines; ++line) {
        const auto lines = static_cast<double>(LinesOf(line % fGroups.size()));
        fInputGains[line] = static_cast<float>(std::sqrt(EchoDiffuser::kLines * LineRatio(line) / lines));
    }
}

void ReverbTank::Reset() noexcept {
    fRings.Reset();
    for (Group& group : fGroups)
        group.diffuser.Reset();
    fLost.Reset();
    fHeard.Reset();
}

void ReverbTank::Set(const Settings& settings, bool settle) noexcept {
    if (fGlide.Set(settings, settle)) FollowGlide();
}

void ReverbTank::Process(std::span<SoundPiece> channels, std::size_t frames) noexcept {
    const SoundPiece& share = fGlide.Share(frames);
    Take(channels);
    const bool isGliding = fGlide.IsMoving();
    fLost.Process({SoundAt(fFrom.length), fFrom.lost}, {SoundAt(fTo.length), fTo.lost}, share, frames, isGliding,
                  fLines);
    Mix(share);
    for (std::size_t group = 0; group < fGroups.size(); ++group)
        Feed(group, share, frames);
    for (std::size_t line = 0; line < kLines; ++line)
        fRings.Write(line, fLines[line]);
    fHeard.Process({SoundAt(fFrom.tap), fFrom.heard}, {SoundAt(fTo.tap), fTo.heard}, share, frames, isGliding, fLines);
    for (std::size_t group = 0; group < fGroups.size(); ++group)
        Hear(group);
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        channels[channel] = fGroups[channel % fGroups.size()].sound;
    fRings.Advance(frames);
    if (fGlide.Advance(frames)) FollowGlide();
}

ReverbTank::Voice ReverbTank::VoiceOf(const Settings& settings) const noexcept {
    Voice voice;
    const double mean = std::min(settings.meanLength, kLongestMean) * fSampleRate;
    std::uint32_t least = kPieceFrames; // what is read was written with the piece before
    for (std::size_t line = 0; line < kLines; ++line) {
        voice.length[line] = PrimeFrom(std::max(static_cast<std::uint32_t>(LineRatio(line) * mean), least));
        least = voice.length[line] + 1;
        // Where along their lines a group's lie: evenly spread and nowhere regular, the first at once.
        const std::size_t turn = line / fGroups.size();
        const double turns = std::numbers::phi * static_cast<double>(turn);
        voice.tap[line] = static_cast<std::uint32_t>((turns - std::floor(turns)) * voice.length[line]);
    }
    const LineAbsorption::Decay decay = {settings.decay * fSampleRate, settings.highDecay};
    const double middle = std::tan(std::numbers::pi * std::min(kHighFrequency / fSampleRate, 0.4));
    voice.lost = LineAbsorption::Voice::Of(decay, voice.length, middle);
    voice.heard = LineAbsorption::Voice::Of(decay, voice.tap, middle);
    voice.heard.Scale(OutputGains(settings, voice.length));
    voice.diffuser = EchoDiffuser::Voice::Of(settings.diffusion, SpreadOf(settings.meanLength));
    const double angle = kLeastAngle + (std::numbers::pi / 2 - kLeastAngle) * settings.mixing;
    voice.kept = static_cast<float>(std::cos(angle));
    voice.fed = static_cast<float>(std::sin(angle));
    return voice;
}

// Energy that is spread over all lines passes a place of each with so much in every sample.
LineAbsorption::Values ReverbTank::OutputGains(const Settings& settings, const Delays& lengths) const noexcept {
    double samples = 0;
    for (const std::uint32_t length : lengths)
        samples += length;
    const double sixtyDecibels = 6 * std::numbers::ln10; // of energy, as an exponent
    const double power = samples * sixtyDecibels / (settings.decay * fSampleRate);
    LineAbsorption::Values gains{};
    for (std::size_t line = 0; line < kLines; ++line) {
        const std::size_t heard = fGroups.size() * LinesOf(line % fGroups.size());
        gains[line] = SignOf(line) * static_cast<float>(std::sqrt(power / static_cast<double>(heard)));
    }
    return gains;
}

std::size_t ReverbTank::LinesOf(std::size_t group) const noexcept {
    return (kLines - 1 - group) / fGroups.size() + 1;
}

void ReverbTank::FollowGlide() noexcept {
    fFrom = fTo;
    fTo = VoiceOf(fGlide.To());
    if (!fGlide.IsMoving()) fFrom = fTo;
}

void ReverbTank::Take(std::span<const SoundPiece> channels) noexcept {
    for (Group& group : fGroups)
        group.sound.fill(0);
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        AddScaled(channels[channel].data(), 1, fGroups[channel % fGroups.size()].sound.data());
}

std::array<const float*, ReverbTank::kLines> ReverbTank::SoundAt(const Delays& delays) const noexcept {
    std::array<const float*, kLines> sound;
    for (std::size_t line = 0; line < kLines; ++line)
        sound[line] = fRings.Read(line, delays[line]);
    return sound;
}

void ReverbTank::Mix(const SoundPiece& share) noexcept {
    const RotationPiece rotation({fFrom.kept, fFrom.fed}, {fTo.kept, fTo.fed}, share);
    MixLines(rotation.cosine, rotation.sine, fLines);
}

void ReverbTank::Feed(std::size_t group, const SoundPiece& share, std::size_t frames) noexcept {
    EchoDiffuser::Lines echoes;
    fGroups[group].diffuser.Process(fGroups[group].sound, {fFrom.diffuser, fTo.diffuser, share}, frames, echoes);
    std::size_t turn = 0;
    for (std::size_t line = group; line < kLines; line += fGroups.size(), ++turn)
        AddScaled(echoes[DiffusedLine(turn)].data(), fInputGains[line], fLines[line].data());
}

void ReverbTank::Hear(std::size_t group) noexcept {
    SoundPiece& sound = fGroups[group].sound;
    sound.fill(0);
    std::array<const float*, kLines> lines;
    std::array<float, kLines> gains;
    gains.fill(1);
    std::size_t count = 0;
    for (std::size_t line = group; line < kLines; line += fGroups.size(), ++count)
        lines[count] = fLines[line].data();
    AddLines(std::span(lines).first(count), gains, sound);
}

} // namespace qoc::dsp
