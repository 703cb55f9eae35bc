#include "host/TestSignal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <map>
#include <numbers>
#include <utility>
#include <vector>

namespace qohost {

namespace {

constexpr double kBeatsPerMinute = 100;
constexpr double kBeatSeconds = 60 / kBeatsPerMinute;
constexpr int kBeatsPerChord = 4;
constexpr int kPlucksPerBeat = 2;
constexpr float kPeak = 0.5F; // -6 dBFS

// MIDI note numbers: A minor, F major, C major, G major, in close position.
constexpr std::array<std::array<int, 4>, 4> kChords = {
    {{57, 60, 64, 69}, {57, 60, 65, 69}, {55, 60, 64, 67}, {55, 59, 62, 67}}};
constexpr std::array<int, 4> kBassNotes = {33, 29, 36, 31};

double FrequencyOf(int note) {
    return 440.0 * std::exp2((note - 69) / 12.0);
}

// A tone's harmonics, the higher ones dying sooner: each a number in the complex plane that turns and shrinks from one
// sample to the next.
class Harmonics {
public:
    // `decay`: of the fundamental, 1 / seconds.
    Harmonics(double frequency, double decay, double sampleRate) {
        for (int i = 0; i < kCount && (i + 1) * frequency < sampleRate / 2; ++i) {
            const double turn = 2 * std::numbers::pi * frequency * (i + 1) / sampleRate;
            fValues[i] = 1.0 / (i + 1);
            fSteps[i] = std::polar(std::exp(-decay * (i + 1) / sampleRate), turn);
        }
    }
    double Next() {
        double sum = 0;
        for (int i = 0; i < kCount; ++i) {
            sum += fValues[i].imag();
            const auto [real, imaginary] = std::pair(fValues[i].real(), fValues[i].imag());
            fValues[i] = {real * fSteps[i].real() - imaginary * fSteps[i].imag(),
                          real * fSteps[i].imag() + imaginary * fSteps[i].real()};
        }
        return sum;
    }

private:
    static constexpr int kCount = 6;

    std::array<std::complex<double>, kCount> fValues{};
    std::array<std::complex<double>, kCount> fSteps{};
};

// Decaying tones by their notes, each made once however often it sounds.
class Plucks {
public:
    // `frames`: of the whole sound, which no tone is longer than. Where a tone begins and ends is rounded down each,
    // from sums that are rounded themselves: it may take two frames more than its length rounded down.
    Plucks(double seconds, double sampleRate, std::size_t frames)
        : fSeconds(seconds), fSampleRate(sampleRate),
          fFrames(std::min(frames, static_cast<std::size_t>(seconds * sampleRate) + 2)) {}

    double Seconds() const { return fSeconds; }
    const std::vector<double>& Of(int note) {
        std::vector<double>& tone = fTones[note];
        if (tone.empty()) tone = Make(note);
        return tone;
    }

private:
    std::vector<double> Make(int note) const {
        constexpr double kDecays = 5.0; // of the fundamental, within the tone
        constexpr double kAttackSeconds = 0.004;
        Harmonics harmonics(FrequencyOf(note), kDecays / fSeconds, fSampleRate);
        std::vector<double> tone(fFrames);
        for (std::size_t i = 0; i < tone.size(); ++i) {
            const double t = static_cast<double>(i) / fSampleRate;
            tone[i] = harmonics.Next() * std::min({1.0, t / kAttackSeconds, (fSeconds - t) / kAttackSeconds});
        }
        return tone;
    }

    double fSeconds;
    double fSampleRate;
    std::size_t fFrames;
    std::map<int, std::vector<double>> fTones;
};

// Adds a tone at `start` seconds with equal-power panning (0 left, 1 right).
void AddPluck(Sound& sound, double start, Plucks& plucks, int note, double level, double pan) {
    const std::vector<double>& tone = plucks.Of(note);
    const double left = level * std::cos(pan * std::numbers::pi / 2);
    const double right = level * std::sin(pan * std::numbers::pi / 2);
    const auto first = static_cast<std::size_t>(start * sound.sampleRate);
    const auto last = std::min(sound.Frames(), static_cast<std::size_t>((start + plucks.Seconds()) * sound.sampleRate));
    for (std::size_t i = first; i < last; ++i) {
        sound.channels[0][i] += static_cast<float>(left * tone[i - first]);
        sound.channels[1][i] += static_cast<float>(right * tone[i - first]);
    }
}

// White noise from a linear congruential generator (Numerical Recipes, 3rd edition, section 7.1), so that it is the
// same everywhere.
void AddNoiseHit(Sound& sound, double start, double level, std::uint32_t& seed) {
    constexpr double kSeconds = 0.06;
    constexpr double kDecays = 7.0;
    const auto first = static_cast<std::size_t>(start * sound.sampleRate);
    const auto last = std::min(sound.Frames(), static_cast<std::size_t>((start + kSeconds) * sound.sampleRate));
    for (std::size_t i = first; i < last; ++i) {
        const double envelope =
            level * std::exp(-kDecays * static_cast<double>(i - first) / (kSeconds * sound.sampleRate));
        for (auto& channel : sound.channels) {
            seed = seed * 1664525U + 1013904223U;
            channel[i] += static_cast<float>(envelope * (static_cast<std::int32_t>(seed) / 2147483648.0));
        }
    }
}

struct Instruments {
    Plucks bass;
    Plucks chords;
};

void AddBeat(Sound& sound, int beat, Instruments& instruments, std::uint32_t& seed) {
    const double start = beat * kBeatSeconds;
    const std::size_t chord = static_cast<std::size_t>(beat / kBeatsPerChord) % kChords.size();
    if (beat % 2 == 0) AddPluck(sound, start, instruments.bass, kBassNotes[chord], 0.8, 0.5);
    for (int i = 0; i < kPlucksPerBeat; ++i) {
        const std::size_t voice = static_cast<std::size_t>(beat * kPlucksPerBeat + i) % kChords[chord].size();
        const double pan = 0.2 + 0.2 * static_cast<double>(voice);
        AddPluck(sound, start + i * kBeatSeconds / kPlucksPerBeat, instruments.chords, kChords[chord][voice], 0.6, pan);
    }
    AddNoiseHit(sound, start + kBeatSeconds / 2, 0.15, seed);
}

void ScaleToPeak(Sound& sound) {
    float peak = 0;
    for (const auto& channel : sound.channels) {
        for (const float sample : channel)
            peak = std::max(peak, std::abs(sample));
    }
    if (peak == 0) return;
    for (auto& channel : sound.channels) {
        for (float& sample : channel)
            sample *= kPeak / peak;
    }
}

} // namespace

Sound MakeTestSignal(double seconds, float sampleRate) {
    const auto frames = static_cast<std::size_t>(std::llround(std::max(seconds, 0.0) * sampleRate));
    Sound sound = Sound::Silent(sampleRate, kromediatypes::AudioChannelLayout::Stereo(), frames);
    Instruments instruments{{2 * kBeatSeconds, sampleRate, frames}, {1.5 * kBeatSeconds, sampleRate, frames}};
    std::uint32_t seed = 1;
    for (int beat = 0; beat * kBeatSeconds < seconds; ++beat)
        AddBeat(sound, beat, instruments, seed);
    ScaleToPeak(sound);
    return sound;
}

} // namespace qohost
