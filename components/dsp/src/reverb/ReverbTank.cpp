#include "qoc/dsp/reverb/ReverbTank.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

// The lines' lengths form a geometric series around the mean.
constexpr double kShortestLine = 0.6; // of the mean
constexpr double kLongestLine = 1.5;

constexpr double kDiffuserSeconds[] = {0.0019, 0.0033, 0.0057, 0.0098};
constexpr double kDiffuserSpread = 0.043; // by which each group's are longer than those of the group before
constexpr double kMostDiffusion = 0.7;
// An allpass rings as well: at most for that part of the decay time.
constexpr double kDiffuserDecay = 0.4;

constexpr double kHighFrequency = 3500; // hertz: where the decay is midway between that of low and high frequencies
constexpr double kGlideSeconds = 0.05;

// Samples between the lines' rings. Their sizes are powers of two, and at the same distance from each other all of them
// would take the same place in the processor's cache.
constexpr std::size_t kApart = 80;

constexpr std::size_t kTurnPeriod = 32;             // samples from which to which the matrix turns evenly
constexpr double kAngleLag = 0.03;                  // seconds
constexpr double kFullAngle = std::numbers::pi / 4; // every line feeds all lines alike
constexpr double kLeastAngle = 0.12;
constexpr double kMovement = 0.35; // radians
constexpr double kMovementHertz[] = {0.37, 0.61, 0.83, 1.13};

// What 60 dB are as an exponent of 10.
double GainOver(double seconds, double decay) noexcept {
    return std::pow(10.0, -3 * seconds / decay);
}

bool IsPrime(std::uint32_t number) noexcept {
    for (std::uint32_t divisor = 3; divisor * divisor <= number; divisor += 2) {
        if (number % divisor == 0) return false;
    }
    return true;
}

// Lengths without common divisors keep echoes of several lines from falling together.
std::uint32_t PrimeFrom(double least) noexcept {
    auto number = static_cast<std::uint32_t>(std::max(least, 3.0)) | 1U;
    while (!IsPrime(number))
        number += 2;
    return number;
}

double LineRatio(std::size_t line) noexcept {
    return kShortestLine * std::pow(kLongestLine / kShortestLine, static_cast<double>(line) / (ReverbTank::kLines - 1));
}

float Between(float from, float to, float share) noexcept {
    return from + share * (to - from);
}

template <std::size_t kCount>
void SetBetween(std::array<float, kCount>& values, const std::array<float, kCount>& from,
                const std::array<float, kCount>& to, float share) noexcept {
    for (std::size_t i = 0; i < kCount; ++i)
        values[i] = Between(from[i], to[i], share);
}

// The lines that are a stride apart, by pairs.
template <std::size_t kStride, std::size_t kCount>
void Rotate(std::array<float, kCount>& sound, float cosine, float sine) noexcept {
    for (std::size_t first = 0; first < kCount; first += 2 * kStride) {
        for (std::size_t line = first; line < first + kStride; ++line) {
            const float one = sound[line];
            const float other = sound[line + kStride];
            sound[line] = cosine * one + sine * other;
            sound[line + kStride] = cosine * other - sine * one;
        }
    }
}

// By which lines are heard upside down: a bent function, so that the sum is akin to none of the vectors that the matrix
// turns about.
constexpr float SignOf(std::size_t line) noexcept {
    const std::size_t negative = (line & (line >> 1U) & 1U) ^ ((line >> 2U) & (line >> 3U) & 1U);
    return negative != 0 ? -1.0F : 1.0F;
}

} // namespace

void ReverbTank::Prepare(double sampleRate, std::size_t channels) {
    fSampleRate = sampleRate;
    // Primes are not far apart: a hundred samples are room enough for the next one.
    const double longest = kLongestMean * kLongestLine * sampleRate + 100;
    const std::size_t size = std::bit_ceil(static_cast<std::size_t>(longest));
    fMask = size - 1;
    fStride = size + kApart;
    fRings.assign(fStride * kLines, 0.0F);
    fGlideLength = static_cast<std::size_t>(std::ceil(kGlideSeconds * sampleRate));

    const std::size_t groups = std::clamp<std::size_t>(channels, 1, kLines);
    fGroupOf.resize(channels);
    for (std::size_t channel = 0; channel < channels; ++channel)
        fGroupOf[channel] = channel % groups;
    fGroups.assign(groups, {});
    for (std::size_t i = 0; i < groups; ++i) {
        const double lines = std::floor(static_cast<double>(kLines - 1 - i) / static_cast<double>(groups)) + 1;
        for (std::size_t line = i; line < kLines; line += groups) {
            fGroupOfLine[line] = i;
            fInputGain[line] = static_cast<float>(1 / std::sqrt(lines));
            fOutputGain[line] =
                SignOf(line) * static_cast<float>(std::sqrt(kLines / (lines * static_cast<double>(groups))));
        }
        for (std::size_t stage = 0; stage < kDiffusers; ++stage) {
            const double seconds = kDiffuserSeconds[stage] * (1 + kDiffuserSpread * static_cast<double>(i));
            fGroups[i].allpasses[stage].resize(PrimeFrom(seconds * sampleRate));
        }
    }
}

void ReverbTank::Reset() noexcept {
    std::ranges::fill(fRings, 0.0F);
    fPosition = 0;
    for (Group& group : fGroups) {
        for (std::vector<float>& allpass : group.allpasses)
            std::ranges::fill(allpass, 0.0F);
        group.positions = {};
    }
    fInputBefore = fOutputBefore = {};
    fTurns = 0;
    fUntilTurn = 0;
}

void ReverbTank::Set(const Settings& settings, bool settle) noexcept {
    if (settle) {
        fSettings = settings;
        fFrom = fTo = fNow = VoiceOf(settings);
        fGlideRemaining = 0;
        fShare = 1;
        fHasPending = false;
        fAngle = kLeastAngle + (kFullAngle - kLeastAngle) * settings.mixing;
        fTurnedTo.fill(fAngle);
        return;
    }
    fPending = settings;
    fHasPending = settings != fSettings;
    if (fGlideRemaining == 0) StartGlide();
}

void ReverbTank::Process(const float* inputs, float* outputs) noexcept {
    AdvanceGlide();
    if (fUntilTurn == 0) Turn();
    --fUntilTurn;
    for (Group& group : fGroups)
        group.diffused = 0;
    for (std::size_t channel = 0; channel < fGroupOf.size(); ++channel)
        fGroups[fGroupOf[channel]].diffused += inputs[channel];
    for (Group& group : fGroups)
        Diffuse(group);

    Lines sound;
    ReadLines(sound);
    Absorb(sound);
    for (Group& group : fGroups)
        group.output = fNow.onset * group.diffused;
    for (std::size_t line = 0; line < kLines; ++line)
        fGroups[fGroupOfLine[line]].output += fOutputGain[line] * sound[line];
    for (std::size_t channel = 0; channel < fGroupOf.size(); ++channel)
        outputs[channel] = fNow.level * fGroups[fGroupOf[channel]].output;

    Mix(sound);
    for (std::size_t line = 0; line < kLines; ++line)
        fRings[line * fStride + fPosition] = sound[line] + fInputGain[line] * fGroups[fGroupOfLine[line]].diffused;
    fPosition = (fPosition + 1) & fMask;
}

ReverbTank::Voice ReverbTank::VoiceOf(const Settings& settings) const noexcept {
    Voice voice;
    double kept = 0; // of the energy, from one pass through the lines to the next
    for (std::size_t line = 0; line < kLines; ++line) {
        const double samples = LineRatio(line) * std::min(settings.meanLength, kLongestMean) * fSampleRate;
        voice.length[line] = PrimeFrom(samples);
        SetAbsorption(settings, line, voice);
        const double gain = GainOver(voice.length[line] / fSampleRate, settings.decay);
        kept += gain * gain / kLines;
    }
    for (std::size_t stage = 0; stage < kDiffusers; ++stage) {
        const double longest = GainOver(kDiffuserSeconds[stage], kDiffuserDecay * settings.decay);
        voice.diffusion[stage] = static_cast<float>(std::min(kMostDiffusion * settings.diffusion, longest));
    }
    voice.onset = static_cast<float>(settings.diffusion);
    voice.level = static_cast<float>(1 / std::sqrt(settings.diffusion * settings.diffusion + kept / (1 - kept)));
    return voice;
}

// A first-order shelf by the bilinear transform. In decibels it is proportional to the line's length, as the decay of
// all lines is to be the same.
void ReverbTank::SetAbsorption(const Settings& settings, std::size_t line, Voice& voice) const noexcept {
    const double seconds = voice.length[line] / fSampleRate;
    const double low = GainOver(seconds, settings.decay);
    const double shelf = GainOver(seconds, settings.decay * settings.highDecay) / low;
    const double hertz = std::min(kHighFrequency, 0.4 * fSampleRate);
    const double middle = std::tan(std::numbers::pi * hertz / fSampleRate) * std::sqrt(shelf);
    voice.b0[line] = static_cast<float>(low * (shelf + middle) / (1 + middle));
    voice.b1[line] = static_cast<float>(low * (middle - shelf) / (1 + middle));
    voice.a1[line] = static_cast<float>((middle - 1) / (1 + middle));
}

void ReverbTank::StartGlide() noexcept {
    if (!fHasPending) return;
    fHasPending = false;
    fSettings = fPending;
    fFrom = fTo;
    fTo = VoiceOf(fSettings);
    fGlideRemaining = fGlideLength;
}

void ReverbTank::AdvanceGlide() noexcept {
    if (fGlideRemaining == 0) return;
    if (--fGlideRemaining == 0) {
        fFrom = fNow = fTo;
        fShare = 1;
        StartGlide();
        return;
    }
    fShare = 1 - static_cast<float>(fGlideRemaining) / static_cast<float>(fGlideLength);
    SetBetween(fNow.b0, fFrom.b0, fTo.b0, fShare);
    SetBetween(fNow.b1, fFrom.b1, fTo.b1, fShare);
    SetBetween(fNow.a1, fFrom.a1, fTo.a1, fShare);
    SetBetween(fNow.diffusion, fFrom.diffusion, fTo.diffusion, fShare);
    fNow.onset = Between(fFrom.onset, fTo.onset, fShare);
    fNow.level = Between(fFrom.level, fTo.level, fShare);
}

// Finds the rotation by which every stage turns with each of the next samples. The rotations begin exact again, so that
// rounding does not add up.
void ReverbTank::Turn() noexcept {
    const double period = static_cast<double>(kTurnPeriod) / fSampleRate;
    const double wanted = kLeastAngle + (kFullAngle - kLeastAngle) * fSettings.mixing;
    fAngle += (wanted - fAngle) * (1 - std::exp(-period / kAngleLag));
    ++fTurns;
    for (std::size_t stage = 0; stage < kStages; ++stage) {
        const double phase = std::fmod(kMovementHertz[stage] * period * static_cast<double>(fTurns), 1.0);
        const double movement = kMovement * fSettings.movement * std::sin(2 * std::numbers::pi * phase);
        const double from = fTurnedTo[stage];
        // The movement may begin to move at any time.
        const double to = from + std::clamp(fAngle + movement - from, -0.01, 0.01);
        const double step = (to - from) / kTurnPeriod;
        fCosine[stage] = static_cast<float>(std::cos(from));
        fSine[stage] = static_cast<float>(std::sin(from));
        fStepCosine[stage] = static_cast<float>(std::cos(step));
        fStepSine[stage] = static_cast<float>(std::sin(step));
        fTurnedTo[stage] = to;
    }
    fUntilTurn = kTurnPeriod;
}

void ReverbTank::Diffuse(Group& group) const noexcept {
    float sound = group.diffused;
    for (std::size_t stage = 0; stage < kDiffusers; ++stage) {
        float& kept = group.allpasses[stage][group.positions[stage]];
        const float gain = fNow.diffusion[stage];
        const float before = kept;
        kept = sound + gain * before;
        sound = before - gain * kept;
        if (++group.positions[stage] == group.allpasses[stage].size()) group.positions[stage] = 0;
    }
    group.diffused = sound;
}

void ReverbTank::ReadLines(Lines& sound) const noexcept {
    for (std::size_t line = 0; line < kLines; ++line)
        sound[line] = fRings[line * fStride + ((fPosition - fTo.length[line]) & fMask)];
    if (fGlideRemaining == 0) return;
    for (std::size_t line = 0; line < kLines; ++line) {
        const float before = fRings[line * fStride + ((fPosition - fFrom.length[line]) & fMask)];
        sound[line] = Between(before, sound[line], fShare);
    }
}

void ReverbTank::Absorb(Lines& sound) noexcept {
    Lines output; // nothing else can be the same memory, so that the loop becomes one of vectors
    for (std::size_t line = 0; line < kLines; ++line)
        output[line] =
            fNow.b0[line] * sound[line] + fNow.b1[line] * fInputBefore[line] - fNow.a1[line] * fOutputBefore[line];
    fInputBefore = sound;
    sound = fOutputBefore = output;
}

void ReverbTank::Mix(Lines& sound) noexcept {
    Rotate<1>(sound, fCosine[0], fSine[0]);
    Rotate<2>(sound, fCosine[1], fSine[1]);
    Rotate<4>(sound, fCosine[2], fSine[2]);
    Rotate<8>(sound, fCosine[3], fSine[3]);
    for (std::size_t stage = 0; stage < kStages; ++stage) {
        const float cosine = fCosine[stage];
        const float sine = fSine[stage];
        fCosine[stage] = cosine * fStepCosine[stage] - sine * fStepSine[stage];
        fSine[stage] = sine * fStepCosine[stage] + cosine * fStepSine[stage];
    }
}

} // namespace qoc::dsp
