#include "qoc/components/PitchCorrect.h"

#include "ProcessSound.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

using test::Channels;
using test::Process;
using test::Processed;
using Filter = boost::intrusive_ptr<AudioFilter>;

constexpr double kSampleRate = 44100;
constexpr std::size_t kLargestBlock = 4096;
constexpr std::size_t kSecond = 44100;
constexpr float kMajor = 0;
constexpr float kMinor = 0.5F;
constexpr float kChromatic = 1;

// As the panel stores it: item i is the note (2 - i) modulo 12.
float StoredKey(int item) {
    return static_cast<float>(item) / 12 + 0.041666668F;
}

Filter Prepared(std::size_t channels, float scale = kChromatic, float size = 0.5F) {
    auto filter = CreateEffect(kPitchCorrectComponentID);
    filter->SetParameterValue(kPitchCorrectScale, scale);
    filter->SetParameterValue(kPitchCorrectFFTSize, size);
    filter->Prepare(kSampleRate, kLargestBlock, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

double NoteFrequency(double note) {
    return 440 * std::exp2((note - 69) / 12);
}

std::vector<float> Tone(double frequency, std::size_t frames, int harmonics = 1) {
    std::vector<float> tone(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        double sample = 0;
        for (int h = 1; h <= harmonics; ++h)
            sample +=
                0.3 / h * std::sin(2 * std::numbers::pi * h * frequency * static_cast<double>(i) / kSampleRate + h);
        tone[i] = static_cast<float>(sample);
    }
    return tone;
}

std::vector<float> Noise(std::size_t frames) {
    std::mt19937 generator(11);
    std::uniform_real_distribution<float> distribution(-0.5F, 0.5F);
    std::vector<float> noise(frames);
    for (float& sample : noise)
        sample = distribution(generator);
    return noise;
}

// The part of the sound near a frequency, over `frames` samples from `begin` on under a Hann window.
std::complex<double> Component(const std::vector<float>& sound, std::size_t begin, std::size_t frames,
                               double frequency) {
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const double window =
            0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(frames));
        const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(begin + i) / kSampleRate;
        sum += window * sound[begin + i] * std::polar(1.0, -angle);
    }
    return sum;
}

// How far the sound's fundamental in the last second lies from `frequency`, in cents: from how its phase turns between
// the two halves of that second. Good for deviations below a hertz; what is further away shows up as a level that is
// too low.
double CentsFrom(const std::vector<float>& sound, double frequency) {
    constexpr std::size_t kHalf = kSecond / 2;
    const std::size_t begin = sound.size() - 2 * kHalf;
    const std::complex<double> first = Component(sound, begin, kHalf, frequency);
    const std::complex<double> second = Component(sound, begin + kHalf, kHalf, frequency);
    // 0.3 is the amplitude of the tones; the window's mean is a half, the other half is at the negative frequency.
    EXPECT_NEAR(std::abs(second) / (0.3 * kHalf / 4), 1, 0.05) << frequency;
    const double hertz = std::arg(second * std::conj(first)) / (2 * std::numbers::pi * kHalf / kSampleRate);
    return 1200 * std::log2((frequency + hertz) / frequency);
}

double ShownCents(const AudioFilter& filter) {
    const float stored = filter.GetParameterValue(kPitchCorrectCorrection);
    return 1200 * std::log2(filter.GetParameterInfo(kPitchCorrectCorrection)->ToNatural(stored));
}

// The input, `delay` samples later.
std::vector<float> Delayed(const std::vector<float>& sound, std::size_t delay) {
    std::vector<float> delayed(sound.size());
    std::copy(sound.begin(), sound.end() - static_cast<std::ptrdiff_t>(delay),
              delayed.begin() + static_cast<std::ptrdiff_t>(delay));
    return delayed;
}

TEST(PitchCorrect, TonesUpToFortyFiveCentsOffLandOnTheirNote) {
    struct Case {
        double off; // cents
        int harmonics;
    };
    for (const float size : {0.0F, 0.5F, 1.0F}) {
        for (const double note : {49, 69, 81}) {
            for (const Case& each : {Case{-45, 1}, Case{-20, 8}, Case{10, 1}, Case{45, 8}}) {
                const auto filter = Prepared(1, kChromatic, size);
                const double frequency = NoteFrequency(note + each.off / 100);
                const auto output = Processed(*filter, {Tone(frequency, kSecond * 3 / 2, each.harmonics)});
                EXPECT_NEAR(CentsFrom(output[0], NoteFrequency(note)), 0, 1) << note << " " << each.off << " " << size;
                EXPECT_NEAR(ShownCents(*filter), -each.off, 1) << note << " " << each.off << " " << size;
            }
        }
    }
}

struct ScaleCase {
    float scale;
    int keyItem;
    double sensitivity; // percent
    double calibration; // hertz
    double frequency;
    double expected;
};

TEST(PitchCorrect, FollowsScaleKeySensitivityAndCalibration) {
    const double eFlat = NoteFrequency(63);
    const double lowE = NoteFrequency(63.9);
    const double fSharp = NoteFrequency(66.1);
    const ScaleCase cases[] = {
        {kMajor, 2, 50, 440, lowE, NoteFrequency(64)},    // C major
        {kMinor, 2, 50, 440, lowE, lowE},                 // C minor has no E; its neighbours are out of reach
        {kMinor, 2, 100, 440, lowE, eFlat},               //
        {kMajor, 0, 50, 440, fSharp, NoteFrequency(66)},  // D major
        {kMajor, 9, 100, 440, fSharp, NoteFrequency(67)}, // F major has no F sharp, but a G
        {kChromatic, 2, 50, 445, 440, 445},
        {kChromatic, 2, 50, 415, 440, 415 * std::exp2(1.0 / 12)},
        {kChromatic, 2, 0, 440, 445, 445},
    };
    for (const ScaleCase& each : cases) {
        const auto filter = Prepared(1, each.scale);
        filter->SetParameterValue(kPitchCorrectKey, StoredKey(each.keyItem));
        filter->SetParameterValue(kPitchCorrectSensitivity, static_cast<float>(each.sensitivity / 100));
        filter->SetParameterValue(kPitchCorrectCalibration, static_cast<float>((each.calibration - 410) / 60));
        const auto output = Processed(*filter, {Tone(each.frequency, 2 * kSecond)});
        EXPECT_NEAR(CentsFrom(output[0], each.expected), 0, 1) << each.frequency << " " << each.keyItem;
    }
}

TEST(PitchCorrect, LeavesWhatItDoesNotCorrectBitExact) {
    const Channels input = {Noise(kSecond), Tone(450, kSecond)};
    for (const float size : {0.0F, 0.5F, 1.0F}) {
        const auto filter = Prepared(2, kChromatic, size); // listens to the noise
        const Channels output = Processed(*filter, input);
        // Three quarters of the frame.
        const std::size_t latency = size == 0 ? 768 : size == 1 ? 3072 : 1536;
        EXPECT_EQ(filter->Latency(), latency);
        EXPECT_TRUE(output[0] == Delayed(input[0], latency)) << size;
        EXPECT_TRUE(output[1] == Delayed(input[1], latency)) << size;
        EXPECT_EQ(ShownCents(*filter), 0);
    }
}

TEST(PitchCorrect, AllChannelsFollowTheChosenOne) {
    const std::vector<float> tone = Tone(NoteFrequency(69.3), 2 * kSecond, 5);
    std::vector<float> inverted = tone;
    for (float& sample : inverted)
        sample = -sample;
    const auto filter = Prepared(6);
    filter->SetParameterValue(kPitchCorrectChannel, 4.0F / 6 + 1.0F / 12);
    const Channels output = Processed(*filter, {Noise(tone.size()), tone, Noise(tone.size()), inverted, tone, tone});
    EXPECT_NEAR(CentsFrom(output[4], 440), 0, 1);
    EXPECT_EQ(output[1], output[4]);
    for (std::size_t i = 0; i < tone.size(); ++i)
        ASSERT_EQ(output[3][i], -output[4][i]) << i;
}

TEST(PitchCorrect, AttackDelaysTheCorrection) {
    const std::vector<float> tone = Tone(NoteFrequency(69.4), 2 * kSecond);
    const auto filter = Prepared(1);
    filter->SetParameterValue(kPitchCorrectAttack, 0); // 500 ms
    Channels output = {tone};
    // The tone comes out after 35 ms; a tenth of the 40 cents is left half a second later.
    Process(*filter, {tone}, output, 0, 1536 + kSecond / 2, 256);
    EXPECT_NEAR(ShownCents(*filter), -36, 0.5);
    Process(*filter, {tone}, output, 1536 + kSecond / 2, tone.size(), 256);
    EXPECT_NEAR(ShownCents(*filter), -40, 0.1);
    filter->Reset();
    EXPECT_EQ(ShownCents(*filter), 0);
}

// What is taken off at any moment is what the voice is off just then, not a frame sooner or later: a tenth of the depth
// is 3 ms out of step.
TEST(PitchCorrect, FastAttackFollowsAVibratoInStep) {
    constexpr double kDepth = 30;        // cents
    constexpr double kVibratoRate = 5.5; // hertz
    constexpr std::size_t kLatency = 768;
    const auto deviation = [](double frame) {
        return kDepth * std::sin(2 * std::numbers::pi * kVibratoRate * frame / kSampleRate);
    };
    std::vector<float> voice(kSecond);
    double phase = 0;
    for (std::size_t i = 0; i < voice.size(); ++i) {
        const double frequency = NoteFrequency(64 + deviation(static_cast<double>(i)) / 100);
        phase += 2 * std::numbers::pi * frequency / kSampleRate;
        voice[i] = static_cast<float>(0.3 * std::sin(phase) + 0.2 * std::sin(2 * phase));
    }
    const auto filter = Prepared(1, kChromatic, 0);
    filter->SetParameterValue(kPitchCorrectAttack, 1);
    Channels output = {voice};
    constexpr std::size_t kBlock = 64;
    for (std::size_t i = 0; i + kBlock <= voice.size(); i += kBlock) {
        Process(*filter, {voice}, output, i, i + kBlock, kBlock);
        if (i < kSecond / 10) continue;
        EXPECT_NEAR(ShownCents(*filter), -deviation(static_cast<double>(i + kBlock - kLatency)), 0.1 * kDepth) << i;
    }
}

// A tone that glides over several notes is pulled from note to note: grains are repeated and left out on the way.
TEST(PitchCorrect, GlidesAndPausesMakeNoClicks) {
    std::vector<float> glide(3 * kSecond);
    double phase = 0;
    for (std::size_t i = 0; i < glide.size(); ++i) {
        const double place = static_cast<double>(i) / static_cast<double>(glide.size());
        phase += 2 * std::numbers::pi * 220 * std::exp2(place / 3) / kSampleRate;
        const double level = i < kSecond ? 0.5 : 0.5 * std::pow(std::cos(std::numbers::pi * (place * 6 - 2)), 2);
        glide[i] = static_cast<float>(level * std::sin(phase));
    }
    const auto filter = Prepared(1);
    filter->SetParameterValue(kPitchCorrectAttack, 1);
    const auto output = Processed(*filter, {glide});
    // The steepest step of a sine of amplitude 0.5 at the highest pitch that the correction can give, a half tone above
    // the end of the glide.
    const double steepest = 0.5 * 2 * std::numbers::pi * 220 * std::exp2(1.0 / 3 + 1.0 / 24) / kSampleRate;
    for (std::size_t i = 2000; i < output[0].size(); ++i)
        ASSERT_LE(std::abs(output[0][i] - output[0][i - 1]), steepest * 1.02) << i;
}

TEST(PitchCorrect, RecoversFromBadSamples) {
    std::vector<float> tone = Tone(NoteFrequency(69.3), 3 * kSecond);
    tone[9000] = std::numeric_limits<float>::quiet_NaN();
    tone[9500] = std::numeric_limits<float>::infinity();
    tone[9700] = -std::numeric_limits<float>::max();
    tone[9800] = std::numeric_limits<float>::denorm_min();
    const auto output = Processed(*Prepared(1), {tone});
    for (const float sample : output[0])
        ASSERT_TRUE(std::isfinite(sample));
    EXPECT_NEAR(CentsFrom(output[0], 440), 0, 1);
}

TEST(PitchCorrect, StoredValuesMeanWhatThePanelWrites) {
    const auto filter = Prepared(6);
    EXPECT_EQ(filter->GetParameterCount(), 9);
    EXPECT_EQ(filter->GetParameterInfo(2), nullptr);
    const auto* channel = dynamic_cast<const GenericParameterInfo*>(filter->GetParameterInfo(kPitchCorrectChannel));
    EXPECT_EQ(channel->GetHiBound(), 6);
    const auto* key = filter->GetParameterInfo(kPitchCorrectKey);
    for (int item = 0; item < 12; ++item) {
        EXPECT_NEAR(key->FromItem(item), StoredKey(item), 1e-7);
        EXPECT_EQ(key->ToItem(StoredKey(item)), item);
    }
    EXPECT_EQ(key->GetItemName(key->ToItem(filter->GetParameterValue(kPitchCorrectKey))), u"C");
    filter->SetParameterValue(kPitchCorrectCorrection, 1); // measured, not set
    EXPECT_EQ(ShownCents(*filter), 0);
}

} // namespace
