#include "qoc/components/AutoPhaseCorrection.h"

#include "SoundMaterial.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <gtest/gtest.h>

#include <bit>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

using Filter = boost::intrusive_ptr<AudioFilter>;
using Settings = std::vector<std::pair<int, double>>; // natural values

Filter Prepared(const Settings& settings, float rate = 44100, std::size_t channels = 2) {
    Filter filter(new AutoPhaseCorrection);
    for (const auto& [index, natural] : settings)
        filter->SetParameterValue(index, filter->GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
    filter->Prepare(rate, 512, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// Noise below 0.35 times the sample rate, `late` samples late: a sinc of 128 samples under a Hann window in double
// precision.
std::vector<float> LateNoise(std::size_t frames, double late, unsigned seed = 1) {
    constexpr int kReach = 64;
    constexpr double kCutoff = 0.35;
    const std::vector<float> noise = test::Noise(frames + 2048, seed, 0.25F);
    const double whole = std::floor(late);
    std::vector<double> weights;
    for (int tap = -kReach; tap <= kReach; ++tap) {
        const double place = tap - (late - whole);
        const double angle = 2 * std::numbers::pi * kCutoff * place;
        const double sinc = angle == 0 ? 1 : std::sin(angle) / angle;
        weights.push_back(2 * kCutoff * sinc * (0.5 + 0.5 * std::cos(std::numbers::pi * place / (kReach + 1))));
    }
    std::vector<float> sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const auto first = static_cast<std::ptrdiff_t>(i + 1024) - static_cast<std::ptrdiff_t>(whole) + kReach;
        double sum = 0;
        for (std::size_t tap = 0; tap < weights.size(); ++tap)
            sum += weights[tap] * noise[static_cast<std::size_t>(first) - tap];
        sound[i] = static_cast<float>(sum);
    }
    return sound;
}

double FoundSamples(const AudioFilter& filter) {
    const float milliseconds =
        filter.GetParameterInfo(kAutoPhaseFoundShift)->ToNatural(filter.GetParameterValue(kAutoPhaseFoundShift));
    return static_cast<double>(milliseconds) / 1000 * filter.GetSampleRate();
}

// From where the effect has settled.
std::vector<float> End(const std::vector<float>& sound) {
    return {sound.end() - 30000, sound.end()};
}

TEST(AutoPhaseCorrection, FindsAKnownDelayAndTakesItOut) {
    struct Case {
        float rate;
        double late;
    };
    for (const auto& [rate, late] :
         {Case{44100, 0}, Case{44100, 3}, Case{44100, 100.5}, Case{44100, -200.25}, Case{192000, -31.62}}) {
        const auto frames = static_cast<std::size_t>(1.2 * rate) + 50000;
        const Channels input = {LateNoise(frames, 0), LateNoise(frames, late)};
        const Filter filter = Prepared({}, rate);
        const Channels output = test::Processed(*filter, input);
        EXPECT_NEAR(FoundSamples(*filter), late, 0.1) << rate;
        EXPECT_LT(test::NullDecibels(End(output[0]), End(output[1]), 0), -40) << late << " at " << rate;
        // The reference is only later.
        const std::vector<float> ended(input[0].end() - 30000 - static_cast<std::ptrdiff_t>(filter->Latency()),
                                       input[0].end() - static_cast<std::ptrdiff_t>(filter->Latency()));
        EXPECT_LT(test::NullDecibels(ended, End(output[0]), 0), -110);
    }
}

TEST(AutoPhaseCorrection, EverySizeAndResolutionFindsTheDelayBesideOtherSounds) {
    Channels input = {LateNoise(120000, 0), LateNoise(120000, 12.4)};
    const auto beside = LateNoise(120000, 0, 77); // on the right alone, 6 dB below
    for (std::size_t i = 0; i < beside.size(); ++i)
        input[1][i] += beside[i] / 2;
    for (const double size : {0.0, 2.0, 4.0}) {
        for (const double resolution : {0.0, 2.0}) {
            const Filter filter = Prepared({{kAutoPhaseAnalysisSize, size}, {kAutoPhaseTimeResolution, resolution}});
            test::Processed(*filter, input);
            EXPECT_NEAR(FoundSamples(*filter), 12.4, 0.1) << size << " " << resolution;
        }
    }
}

TEST(AutoPhaseCorrection, LeavesSoundsAloneThatHaveNothingInCommon) {
    const Channels input = {LateNoise(100000, 0, 1), LateNoise(100000, 0, 99)};
    const Filter filter = Prepared({});
    const Channels output = test::Processed(*filter, input);
    EXPECT_EQ(FoundSamples(*filter), 0);
    EXPECT_LT(test::NullDecibels(input[1], output[1], filter->Latency()), -60);
}

// The channels of a mix have sounds in common, but are no copies of each other.
TEST(AutoPhaseCorrection, LeavesStereoSoundAsItIs) {
    for (const test::Material kind : {test::Material::kMusic, test::Material::kPad, test::Material::kNoise}) {
        const Channels input = test::MakeMaterial(kind, 40000, 44100, 3);
        const Filter filter = Prepared({});
        const Channels output = test::Processed(*filter, input);
        for (std::size_t channel = 0; channel < 2; ++channel)
            EXPECT_LT(test::NullDecibels(input[channel], output[channel], filter->Latency()), -60)
                << test::kMaterialNames[static_cast<std::size_t>(kind)];
    }
}

// `sound`, limited to 0.45 times the sample rate, that much later: by the transform of all of it.
std::vector<float> Late(const std::vector<float>& sound, double late) {
    constexpr std::size_t kBefore = 4096;
    constexpr double kLimit = 0.45;
    constexpr double kFade = 0.02;
    const std::size_t size = std::bit_ceil(sound.size() + 2 * kBefore);
    qoc::dsp::RealFFT transform(size);
    std::vector<float> time(size);
    std::ranges::copy(sound, time.begin() + kBefore);
    std::vector<std::complex<float>> spectrum(transform.Bins());
    transform.Forward(time, spectrum);
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin) {
        const double frequency = static_cast<double>(bin) / static_cast<double>(size);
        spectrum[bin] *= std::complex<float>(
            std::polar(std::clamp((kLimit - frequency) / kFade, 0.0, 1.0), -2 * std::numbers::pi * frequency * late));
    }
    transform.Inverse(spectrum, time);
    return {time.begin() + kBefore, time.begin() + kBefore + static_cast<std::ptrdiff_t>(sound.size())};
}

// Halves of a sample too, between the two lags of which a search may swing for ever.
TEST(AutoPhaseCorrection, AlignsEveryKindOfSoundToAFractionOfASample) {
    using test::Material;
    struct Case {
        Material kind;
        double late;
    };
    for (const auto& [kind, late] :
         {Case{Material::kNoise, 3.5}, Case{Material::kDrums, -17.5}, Case{Material::kSpeech, 57.37},
          Case{Material::kBrass, -200.25}, Case{Material::kBass, 100.5}}) {
        const auto sound = test::MakeMaterial(kind, 88200, 44100, 2)[0];
        const Filter filter = Prepared({});
        const Channels output = test::Processed(*filter, {Late(sound, 0), Late(sound, late)});
        EXPECT_LT(test::NullDecibels(End(output[0]), End(output[1]), 0), -40)
            << test::kMaterialNames[static_cast<std::size_t>(kind)] << " " << late;
    }
}

// The longest delay that can be asked for is a large part of short frames, and longer than some of them. Steady chords
// tell little but at their beginnings.
TEST(AutoPhaseCorrection, AlignsWhatIsAsLateAsCanBeAtEverySizeAndRate) {
    using test::Material;
    struct Case {
        Material kind;
        float rate;
        double size; // 0: 1024, 2: 4096
        double late; // milliseconds
    };
    for (const auto& [kind, rate, size, late] :
         {Case{Material::kNoise, 44100, 0, -20}, Case{Material::kMusic, 44100, 2, 15.2},
          Case{Material::kChords, 44100, 2, -20}, Case{Material::kDrums, 96000, 0, -17.21}}) {
        const auto frames = static_cast<std::size_t>(1.6F * rate);
        const auto sound = test::MakeMaterial(kind, frames, rate, 3)[0];
        const Filter filter = Prepared({{kAutoPhaseAnalysisSize, size}, {kAutoPhaseLongestShift, 20}}, rate);
        const Channels output =
            test::Processed(*filter, {Late(sound, 0), Late(sound, late / 1000 * static_cast<double>(rate))});
        EXPECT_LT(test::NullDecibels(End(output[0]), End(output[1]), 0), -40)
            << test::kMaterialNames[static_cast<std::size_t>(kind)] << " " << late << " at " << rate;
    }
}

// Opposite polarity, and an all-pass of first order.
TEST(AutoPhaseCorrection, TurnsPhasesFrequencyByFrequency) {
    Channels input(2, LateNoise(100000, 0));
    for (float& sample : input[1])
        sample = -sample;
    EXPECT_LT(test::NullDecibels(End(test::Processed(*Prepared({}), input)[0]),
                                 End(test::Processed(*Prepared({}), input)[1]), 0),
              -60);
    float before = 0;
    float after = 0;
    constexpr float kAllPass = -0.7F; // turns by 90 degrees at 2.4 kHz
    for (std::size_t i = 0; i < input[0].size(); ++i) {
        after = kAllPass * input[0][i] + before - kAllPass * after;
        before = input[0][i];
        input[1][i] = after;
    }
    const double apart = test::NullDecibels(End(input[0]), End(input[1]), 0);
    const Settings settings = {{kAutoPhaseGlobalTimeShift, 0}, {kAutoPhaseSmoothing, 0}};
    const Channels output = test::Processed(*Prepared(settings), input);
    EXPECT_LT(test::NullDecibels(End(output[0]), End(output[1]), 0), std::min(apart - 20, -20.0));
}

TEST(AutoPhaseCorrection, AlignsEveryChannelToTheReferenceThatIsChosen) {
    Channels input;
    for (const double late : {5.0, -8.25, 0.0, 14.5, 2.75, -3.5})
        input.push_back(LateNoise(90000, late));
    const Channels output = test::Processed(*Prepared({{kAutoPhaseChannel, 2}}, 48000, 6), input);
    for (const auto& channel : output)
        EXPECT_LT(test::NullDecibels(End(output[2]), End(channel), 0), -40);
}

TEST(AutoPhaseCorrection, BalancesLevelsWhenAsked) {
    Channels input(2, LateNoise(100000, 0));
    for (float& sample : input[1])
        sample *= 0.5F;
    const Channels output = test::Processed(*Prepared({{kAutoPhaseBalance, 1}}), input);
    EXPECT_NEAR(10 * std::log10(test::Energy(End(output[1])) / test::Energy(End(output[0]))), 0, 0.05);
}

// 1 ms later and a quarter turn ahead, whatever the sounds.
TEST(AutoPhaseCorrection, MovesAndTurnsByHand) {
    const Filter filter =
        Prepared({{kAutoPhaseAutoAlign, 0}, {kAutoPhaseTimeShift, 1}, {kAutoPhasePhaseShift, 90}}, 48000);
    const Channels input(2, test::Sine(1000, 60000, 48000));
    const Channels output = test::Processed(*filter, input);
    // A whole period later is where it was; a quarter turn makes a cosine of a sine.
    for (std::size_t i = 40000; i < 60000; ++i) {
        const double angle = 2 * std::numbers::pi * 1000 * static_cast<double>(i - filter->Latency()) / 48000;
        ASSERT_NEAR(output[0][i], 0.5 * std::sin(angle), 1e-4);
        ASSERT_NEAR(output[1][i], 0.5 * std::cos(angle), 1e-3);
    }
}

TEST(AutoPhaseCorrection, OneChannelComesOutAtOnceAndUntouched) {
    const Channels mono = test::NoiseChannels(1, 2000);
    const Filter filter = Prepared({}, 48000, 1);
    EXPECT_EQ(filter->Latency(), 0U);
    EXPECT_TRUE(test::Processed(*filter, mono) == mono);
}

} // namespace
