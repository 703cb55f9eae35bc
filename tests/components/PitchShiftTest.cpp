#include "qoc/components/PitchShift.h"

#include "AllocationCounter.h"
#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <gtest/gtest.h>

#include <limits>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

using std::numbers::pi;
using test::Channels;
using test::Noise;

constexpr double kRate = 44100;

void SetNatural(AudioFilter& filter, int index, double value) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
}

struct Settings {
    double ratio = 1;
    double precision = 2;
    bool useDefaults = true;
    double splicing = 52;
    double overlap = 21.5;
};

void Set(AudioFilter& filter, const Settings& settings) {
    SetNatural(filter, kPitchShiftRatio, settings.ratio);
    SetNatural(filter, kPitchShiftPrecision, settings.precision);
    SetNatural(filter, kPitchShiftSplicingFrequency, settings.splicing);
    SetNatural(filter, kPitchShiftOverlapping, settings.overlap);
    SetNatural(filter, kPitchShiftUseDefaultSettings, settings.useDefaults);
}

boost::intrusive_ptr<AudioFilter> Prepared(std::size_t channels, const Settings& settings = {}, double rate = kRate) {
    boost::intrusive_ptr<AudioFilter> filter(new PitchShift);
    Set(*filter, settings);
    filter->Prepare(static_cast<float>(rate), 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

std::vector<float> Sine(double hertz, std::size_t frames, double rate = kRate) {
    return test::Sine(hertz, frames, rate);
}

// In place.
void Process(AudioFilter& filter, Channels& sound, std::size_t begin, std::size_t end, std::size_t block = 512) {
    test::Process(filter, sound, sound, begin, end, block);
}

std::vector<float> Shifted(const Settings& settings, std::vector<float> sound, double rate = kRate) {
    const auto filter = Prepared(1, settings, rate);
    Channels channels = {std::move(sound)};
    Process(*filter, channels, 0, channels[0].size());
    return channels[0];
}

double Rms(const std::vector<float>& sound, std::size_t begin, std::size_t end) {
    double sum = 0;
    for (std::size_t i = begin; i < end; ++i)
        sum += double{sound[i]} * sound[i];
    return std::sqrt(sum / static_cast<double>(end - begin));
}

// How far a tone is from `hertz`, in cents: the slope of the phase that it has against `hertz` in windows of 0.1 s.
double CentsOff(const std::vector<float>& sound, std::size_t begin, double hertz, double rate = kRate) {
    const auto window = static_cast<std::size_t>(0.1 * rate);
    double phase = 0, sumX = 0, sumY = 0, sumXX = 0, sumXY = 0, n = 0;
    for (std::size_t start = begin; start + window <= sound.size(); start += window / 8, ++n) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < window; ++i) {
            const double hann = 1 - std::cos(2 * pi * (static_cast<double>(i) + 0.5) / static_cast<double>(window));
            sum += hann * sound[start + i] * std::polar(1.0, -2 * pi * hertz * static_cast<double>(start + i) / rate);
        }
        phase += std::remainder(std::arg(sum) - phase, 2 * pi);
        const double x = static_cast<double>(start) / rate;
        sumX += x, sumY += phase, sumXX += x * x, sumXY += x * phase;
    }
    const double slope = (n * sumXY - sumX * sumY) / (n * sumXX - sumX * sumX);
    return 1200 * std::log2(1 + slope / (2 * pi * hertz));
}

TEST(PitchShift, ASineComesOutWithinACentOfTheRatio) {
    struct Case {
        Settings settings;
        double hertz = 440;
        double rate = kRate;
    };
    const Case cases[] = {
        {{0.5}},
        {{2.0}},
        {{1.0595}},
        {{1.5, 0}},
        {{0.8, 2, false, 20, 50}},
        // Few samples to a piece: what a splice is out by counts most.
        {{1.5}, 440, 8000},
        {{0.5, 1}, 313, 8000},
        {{0.75, 2, false, 200, 50}, 80, 8000},
        {{1.5, 2, false, 200, 50}, 1000, 8000},
        {{1.9, 0, false, 200, 0}, 700, 11025},
        {{1.25, 2, false, 200, 21.5}, 2500, 22050},
        {{0.75, 0, false, 200, 50}, 1661},
        {{0.5, 0, false, 200, 0}, 220},
        // Few periods to a piece, or less than one.
        {{1.0595, 0, false, 10, 0}, 50},
        {{1.9, 2, false, 52, 21.5}, 80},
        {{1.25, 2, false, 200, 50}, 80},
        {{1.25, 2, false, 200, 0}, 313, 96000},
        {{0.9439}, 1000, 192000},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << each.hertz << " Hz, rate " << each.rate << ", ratio " << each.settings.ratio
                                        << ", splicing " << each.settings.splicing << "/" << each.settings.overlap);
        const auto second = static_cast<std::size_t>(each.rate);
        const auto sound = Shifted(each.settings, Sine(each.hertz, 2 * second, each.rate), each.rate);
        EXPECT_LT(std::abs(CentsOff(sound, second, each.hertz * each.settings.ratio, each.rate)), 0.3);
        EXPECT_NEAR(Rms(sound, second, sound.size()), 0.5 / std::sqrt(2.0), 0.002);
    }
}

// A tone from 6 s to 6.5 s comes out then, later by the latency, give or take the room in which splices are looked for.
TEST(PitchShift, EverySoundComesOutWhenItIsDue) {
    constexpr std::size_t kOn = 6 * 44100;
    constexpr std::size_t kOff = kOn + 22050;
    constexpr std::size_t kTolerance = 1000; // 23 ms
    std::vector<float> tone = Sine(500, 8 * 44100);
    std::fill(tone.begin(), tone.begin() + kOn, 0.0F);
    std::fill(tone.begin() + kOff, tone.end(), 0.0F);
    for (const Settings& each : {Settings{0.5}, Settings{2.0}, Settings{1.37}, Settings{0.7, 2, false, 200, 50},
                                 Settings{1.6, 2, false, 40, 0}}) {
        const std::size_t latency = Prepared(1)->Latency();
        const auto sound = Shifted(each, tone);
        const auto isLoud = [](float sample) { return std::abs(sample) > 0.1F; };
        const auto first = std::find_if(sound.begin(), sound.end(), isLoud) - sound.begin();
        const auto last = sound.rend() - std::find_if(sound.rbegin(), sound.rend(), isLoud);
        EXPECT_NEAR(static_cast<double>(first), kOn + latency, kTolerance) << each.ratio;
        EXPECT_NEAR(static_cast<double>(last), kOff + latency, kTolerance) << each.ratio;
    }
}

// The energy of the frequencies that are tones against that of the others, in dB, through Hann's window.
template <typename IsTone>
double ToneToRest(std::vector<float> sound, const IsTone& isTone) {
    const std::size_t size = sound.size();
    for (std::size_t i = 0; i < size; ++i)
        sound[i] *=
            static_cast<float>(1 - std::cos(2 * pi * (static_cast<double>(i) + 0.5) / static_cast<double>(size)));
    const qoc::dsp::RealFFT transform(size);
    std::vector<std::complex<float>> spectrum(transform.Bins());
    transform.Forward(sound, spectrum);
    double tones = 0, rest = 0;
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
        (isTone(static_cast<double>(bin) * kRate / static_cast<double>(size)) ? tones : rest) +=
            std::norm(spectrum[bin]);
    return 10 * std::log10(tones / rest);
}

constexpr double kHitsApart = 0.11; // seconds

// A burst of noise or a tone that dies away, every kHitsApart.
std::vector<float> Hits(std::size_t count, bool isNoise) {
    const auto apart = static_cast<std::size_t>(kHitsApart * kRate);
    const std::vector<float> noise = Noise(apart, 5, 0.5F);
    std::vector<float> sound((count + 2) * apart);
    for (std::size_t hit = 1; hit <= count; ++hit) {
        for (std::size_t i = 0; i < apart; ++i) {
            const double time = static_cast<double>(i) / kRate;
            const double source = isNoise ? noise[i] : 0.5 * std::sin(2 * pi * 800 * time);
            sound[hit * apart + i] = static_cast<float>(source * std::exp(-time / (isNoise ? 0.01 : 0.02)));
        }
    }
    return sound;
}

// When the sound, 2 ms of it at a time, becomes 9 dB louder than it has been since it last fell by 12.
std::vector<double> Attacks(const std::vector<float>& sound) {
    constexpr std::size_t kStep = 44;
    constexpr double kAudible = 0.02;
    std::vector<double> attacks;
    double least = 0;
    double most = 1;
    for (std::size_t i = 0; i + 2 * kStep <= sound.size(); i += kStep) {
        const double level = Rms(sound, i, i + 2 * kStep);
        most = std::max(most, level);
        const bool isLow = level < most / 4;
        least = isLow ? (least == 0 ? level + 1e-9 : std::min(least, level + 1e-9)) : least;
        if (least > 0 && level > std::max(kAudible, 2.8 * least)) {
            attacks.push_back(static_cast<double>(i + kStep) / kRate);
            least = 0;
            most = level;
        }
    }
    return attacks;
}

TEST(PitchShift, EveryHitIsHeardOnceAndWhenItIsDue) {
    constexpr std::size_t kHits = 12;
    constexpr double kTolerance = 0.012; // seconds
    for (const double precision : {0.0, 1.0, 2.0}) {
        for (const bool isNoise : {false, true}) {
            for (const double ratio : {0.5, 0.75, 0.9439, 1.0595, 1.5, 2.0}) {
                SCOPED_TRACE(testing::Message() << "precision " << precision << ", noise " << isNoise << ", " << ratio);
                const std::vector<double> heard = Attacks(Shifted({ratio, precision}, Hits(kHits, isNoise)));
                const double late = static_cast<double>(Prepared(1)->Latency()) / kRate;
                const auto whole = static_cast<std::size_t>((kHits + 1) - late / kHitsApart); // heard to the end
                ASSERT_GE(heard.size(), whole);
                for (std::size_t hit = 0; hit < heard.size(); ++hit)
                    ASSERT_NEAR(heard[hit], static_cast<double>(hit + 1) * kHitsApart + late, kTolerance) << hit;
            }
        }
    }
}

TEST(PitchShift, AtRatioOneTheSoundIsBitExactButLater) {
    const auto filter = Prepared(2);
    const std::size_t latency = filter->Latency();
    const Channels input = {Noise(60000, 1), Noise(60000, 2)};
    Channels sound = input;
    Process(*filter, sound, 0, 60000);
    for (std::size_t c = 0; c < 2; ++c) {
        EXPECT_EQ(std::count(sound[c].begin(), sound[c].begin() + static_cast<std::ptrdiff_t>(latency), 0.0F),
                  static_cast<std::ptrdiff_t>(latency));
        EXPECT_TRUE(
            std::equal(sound[c].begin() + static_cast<std::ptrdiff_t>(latency), sound[c].end(), input[c].begin()));
    }
}

TEST(PitchShift, GoesToARatioAndBackWithoutClickOrDropOut) {
    const auto filter = Prepared(1);
    const auto latency = static_cast<std::ptrdiff_t>(filter->Latency());
    const std::vector<float> input = Sine(300, 4 * 44100);
    Channels sound = {input};
    Process(*filter, sound, 0, 44100);
    SetNatural(*filter, kPitchShiftRatio, 2);
    Process(*filter, sound, 44100, 2 * 44100);
    SetNatural(*filter, kPitchShiftRatio, 0.5);
    Process(*filter, sound, 2 * 44100, 3 * 44100);
    SetNatural(*filter, kPitchShiftRatio, 1);
    Process(*filter, sound, 3 * 44100, 4 * 44100);
    // At twice 300 Hz and amplitude 0.5 the sound moves by at most 0.5 * 2 pi * 600 / 44100 = 0.043 a frame.
    for (std::size_t i = static_cast<std::size_t>(latency) + 10; i < sound[0].size(); ++i)
        ASSERT_LT(std::abs(sound[0][i] - sound[0][i - 1]), 0.06F) << i;
    EXPECT_LT(std::abs(CentsOff({sound[0].begin() + 66150, sound[0].begin() + 2 * 44100}, 0, 600)), 2.0);
    EXPECT_LT(std::abs(CentsOff({sound[0].begin() + 110250, sound[0].begin() + 3 * 44100}, 0, 150)), 2.0);
    const auto settled = 3 * 44100 + 12000; // two ramps of 5513 frames
    EXPECT_TRUE(std::equal(sound[0].begin() + settled + latency, sound[0].end(), input.begin() + settled));
}

TEST(PitchShift, NewSplicingSettingsCountWithoutGapOrClick) {
    const auto filter = Prepared(1, {1.3});
    Channels sound = {Sine(440, 3 * 44100)};
    Process(*filter, sound, 0, 44100);
    SetNatural(*filter, kPitchShiftUseDefaultSettings, 0);
    Process(*filter, sound, 44100, 60000);
    SetNatural(*filter, kPitchShiftSplicingFrequency, 10);
    SetNatural(*filter, kPitchShiftOverlapping, 50);
    Process(*filter, sound, 60000, 62000);
    SetNatural(*filter, kPitchShiftSplicingFrequency, 200); // in a long fade
    Process(*filter, sound, 62000, 3 * 44100);
    for (std::size_t i = 30000; i < sound[0].size(); ++i)
        ASSERT_LT(std::abs(sound[0][i] - sound[0][i - 1]), 0.06F) << i;
    EXPECT_LT(std::abs(CentsOff(sound[0], 2 * 44100, 572)), 2.0);
    EXPECT_NEAR(Rms(sound[0], 2 * 44100, 3 * 44100), 0.354, 0.02);
}

TEST(PitchShift, SplicingSettingsChangeNothingWhileTheDefaultsAreInUse) {
    const auto filter = Prepared(1, {1.3});
    Channels sound = {Noise(44100, 3)};
    const auto expected = Shifted({1.3}, sound[0]);
    Process(*filter, sound, 0, 20000);
    SetNatural(*filter, kPitchShiftSplicingFrequency, 150);
    SetNatural(*filter, kPitchShiftOverlapping, 5);
    Process(*filter, sound, 20000, 44100);
    EXPECT_EQ(sound[0], expected);
}

// Levels at frequencies of a sound, as parts of the sample rate, against a sine of 0.5: through a window after Harris
// 1978 (four terms, side lobes 92 dB down).
class Spectrum {
public:
    explicit Spectrum(std::vector<float> sound) : fSound(std::move(sound)) {
        for (std::size_t i = 0; i < fSound.size(); ++i) {
            const double x = 2 * pi * (static_cast<double>(i) + 0.5) / static_cast<double>(fSound.size());
            fSound[i] *= static_cast<float>(0.35875 - 0.48829 * std::cos(x) + 0.14128 * std::cos(2 * x) -
                                            0.01168 * std::cos(3 * x));
        }
    }
    // Wide enough that a tone does not show in its neighbours.
    double Resolution() const { return 8 / static_cast<double>(fSound.size()); }
    double DecibelsAt(double frequency) const {
        const double sine = 0.5 * 0.35875 * static_cast<double>(fSound.size()) / 2;
        return test::Decibels(std::abs(test::ResponseAt(fSound, frequency, 1)) / sine + 1e-15);
    }

private:
    std::vector<float> fSound;
};

// A tone at f is read as one at m - f and m + f too, m being every whole multiple of the rate, and comes out at the
// ratio times that, folded back below half of the rate.
TEST(PitchShift, NothingFoldsBack) {
    constexpr double kLow = 16000;
    const double kLoudest[] = {-60, -75, -90}; // dB, by precision
    const double kFallsFrom[] = {0.27, 0.35, 0.41};
    for (const std::size_t precision : {0U, 1U, 2U}) {
        for (const double ratio : {0.5, 0.63, 0.9439, 1.0595, 1.4142, 2.0}) {
            for (const double tone : {0.27, 0.317, 0.35, 0.41, 0.449, 0.498}) {
                SCOPED_TRACE(testing::Message() << "precision " << precision << ", ratio " << ratio << ", " << tone);
                const auto filter = Prepared(1, {ratio, static_cast<double>(precision)}, kLow);
                const double exact =
                    filter->GetParameterInfo(kPitchShiftRatio)->ToNatural(filter->GetParameterValue(kPitchShiftRatio));
                Channels sound = {Sine(tone * kLow, 6000, kLow)};
                Process(*filter, sound, 0, 6000);
                const Spectrum spectrum({sound[0].end() - 3000, sound[0].end()});
                const double wanted = exact * tone;
                for (const double read : {tone, 1 - tone, 1 + tone, 2 - tone}) {
                    const double heard = std::abs(exact * read - std::round(exact * read));
                    if (wanted < 0.5 && std::abs(heard - wanted) < spectrum.Resolution()) continue;
                    EXPECT_LT(spectrum.DecibelsAt(heard), kLoudest[precision]) << "at " << heard;
                }
                if (std::max(wanted, tone) <= kFallsFrom[precision]) {
                    EXPECT_NEAR(spectrum.DecibelsAt(wanted), 0, 0.05);
                }
            }
        }
    }
}

// Tones that share no short period, by what lies more than 4 Hz beside where they are to be.
TEST(PitchShift, AChordComesOutCleanAtHighPrecision) {
    constexpr std::size_t kFrames = 3 * 44100;
    struct Case {
        double ratio;
        std::vector<double> tones;
        double least; // dB; splices leave 3 to 28
    };
    const Case cases[] = {
        {0.75, {261.63, 329.63, 392.0}, 50},      {0.75, {220, 277.18, 329.63, 415.3}, 50},
        {0.5, {196, 233.08, 277.18, 329.63}, 50}, {0.9439, {220, 277.18, 329.63}, 50},
        {1.2599, {220, 261.63, 329.63}, 45},      {2.0, {220, 277.18, 329.63, 415.3}, 40},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << each.ratio << ", from " << each.tones.front() << " Hz");
        std::vector<float> chord(kFrames);
        for (const double hertz : each.tones)
            std::ranges::transform(chord, test::Sine(hertz, kFrames, kRate, 0.2), chord.begin(), std::plus<>());
        const auto filter = Prepared(1, {each.ratio});
        const double exact =
            filter->GetParameterInfo(kPitchShiftRatio)->ToNatural(filter->GetParameterValue(kPitchShiftRatio));
        Channels sound = {std::move(chord)};
        Process(*filter, sound, 0, kFrames);
        std::vector<float> steady(sound[0].end() - 65536, sound[0].end());
        const auto isTone = [&](double hertz) {
            return std::ranges::any_of(each.tones, [&](double tone) { return std::abs(hertz - exact * tone) < 4; });
        };
        EXPECT_GT(ToneToRest(std::move(steady), isTone), each.least);
    }
}

TEST(PitchShift, ProcessingAllocatesNothingWhateverIsSet) {
    const auto filter = Prepared(3, {1.0});
    std::mt19937 generator(8);
    std::uniform_real_distribution<float> value(0, 1);
    Channels sound(3, Noise(40000, 9));
    float* channels[] = {sound[0].data(), sound[1].data(), sound[2].data()};
    const float* const inputs[] = {channels[0], channels[1], channels[2]};
    for (int round = 0; round < 40; ++round) {
        filter->SetParameterValue(kPitchShiftRatio, round % 3 == 0 ? static_cast<float>(round % 2) : value(generator));
        filter->SetParameterValue(kPitchShiftPrecision, value(generator));
        if (round % 4 == 1) {
            for (int index = kPitchShiftSplicingFrequency; index <= kPitchShiftUseDefaultSettings; ++index)
                filter->SetParameterValue(index, value(generator));
        }
        const std::size_t before = AllocationCount();
        for (int block = 0; block < 10; ++block)
            filter->Process({inputs, channels, 512});
        ASSERT_EQ(AllocationCount(), before) << round;
    }
}

TEST(PitchShift, BadSamplesAreForgotten) {
    const auto filter = Prepared(1, {1.4});
    std::vector<float> input = Sine(440, 3 * 44100);
    input[20000] = std::numeric_limits<float>::quiet_NaN();
    input[20100] = std::numeric_limits<float>::infinity();
    Channels sound = {input};
    Process(*filter, sound, 0, input.size());
    for (const float sample : sound[0])
        ASSERT_TRUE(std::isfinite(sample));
    EXPECT_LT(std::abs(CentsOff(sound[0], 2 * 44100, 616)), 1.0);
}

// All channels are spliced at the same places, or their sounds would drift against each other.
TEST(PitchShift, KeepsThirtyTwoChannelsTogether) {
    const auto filter = Prepared(32, {1.25});
    Channels sound(32, Sine(400, 66150));
    for (const std::size_t channel : {1, 17, 31}) {
        for (float& sample : sound[channel])
            sample *= -0.5F;
    }
    Process(*filter, sound, 0, 66150);
    for (const std::size_t channel : {1, 17, 31}) {
        for (float& sample : sound[channel])
            sample *= -2;
    }
    EXPECT_LT(std::abs(CentsOff(sound[0], 30000, 500)), 1.0);
    for (const std::size_t channel : {1, 15, 16, 17, 31})
        EXPECT_EQ(sound[channel], sound[0]) << channel;
}

} // namespace
