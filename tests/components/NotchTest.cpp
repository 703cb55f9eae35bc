#include "qoc/components/Notch.h"

#include "AllocationCounter.h"
#include "ProcessSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using kroaudiofilterhost::FrequencyAxis;
using kromediatypes::AudioChannelLayout;

namespace {

using test::Channels;
using test::Processed;
using Complex = std::complex<double>;

constexpr double kPi = std::numbers::pi;
constexpr double kQualities[] = {10, 30, 100};
constexpr std::size_t kLargestBlock = 8192;

struct Section {
    double hertz;
    double decibels;
};

// Sections from the first on, the others off.
struct NotchSetup {
    std::vector<Section> sections;
    int width = 0;
    bool ultraQuiet = false;
    float rate = 44100;
    std::size_t channels = 1;
};

float StoredGain(double decibels) {
    return static_cast<float>(decibels / 96 * 0.5 + 0.5);
}

boost::intrusive_ptr<AudioFilter> Prepared(const NotchSetup& setup) {
    boost::intrusive_ptr<AudioFilter> filter(new Notch);
    for (int i = 0; i < Notch::kSections; ++i) {
        const bool on = static_cast<std::size_t>(i) < setup.sections.size();
        filter->SetParameterValue(kNotchFirstEnable + i, on ? 1 : 0);
        if (!on) continue;
        const Section& section = setup.sections[static_cast<std::size_t>(i)];
        filter->SetParameterValue(kNotchFirstFrequency + i,
                                  static_cast<float>((section.hertz - 0.5) / (setup.rate / 2)));
        filter->SetParameterValue(kNotchFirstGain + i, StoredGain(section.decibels));
    }
    filter->SetParameterValue(kNotchWidth, static_cast<float>(setup.width) * 0.5F);
    filter->SetParameterValue(kNotchUltraQuiet, setup.ultraQuiet ? 1 : 0);
    filter->Prepare(setup.rate, kLargestBlock, AudioChannelLayout::ForChannelCount(setup.channels));
    return filter;
}

Channels Noise(std::size_t channels, std::size_t frames) {
    std::mt19937 generator(5);
    std::uniform_real_distribution<float> distribution(-1, 1);
    Channels noise(channels, std::vector<float>(frames));
    for (auto& channel : noise)
        for (float& sample : channel)
            sample = distribution(generator);
    return noise;
}

// The cookbook's peaking equalizer, worked out from its analogue form: with A the square root of the gain and the q
// divided by it, (s^2 + s gain / q + 1) / (s^2 + s / q + 1).
double Formula(const NotchSetup& setup, double hertz) {
    double decibels = 0;
    for (const Section& section : setup.sections) {
        const double q = kQualities[setup.width];
        const double gain = std::pow(10.0, section.decibels / 20);
        const Complex s(0, std::tan(kPi * hertz / setup.rate) / std::tan(kPi * section.hertz / setup.rate));
        decibels += 20 * std::log10(std::abs((s * s + s * gain / q + 1.0) / (s * s + s / q + 1.0)));
    }
    return decibels;
}

double ResponseAt(const AudioFilter& filter, double hertz) {
    std::vector<float> decibels;
    return filter.GetMagnitudeResponse(1, FrequencyAxis{hertz, hertz, true}, decibels) ? decibels[0] : NAN;
}

// Of the sound that comes out for an impulse.
double MeasuredAt(const std::vector<float>& impulseResponse, double hertz, double rate) {
    const double w = 2 * kPi * hertz / rate;
    Complex sum = 0;
    for (std::size_t i = 0; i < impulseResponse.size(); ++i)
        sum += static_cast<double>(impulseResponse[i]) * std::polar(1.0, -w * static_cast<double>(i));
    return 20 * std::log10(std::abs(sum));
}

TEST(Notch, ResponseAndSoundFollowTheFormula) {
    const NotchSetup setups[] = {
        {{{60, -36}, {120, -24}, {180, -48}, {1000, -12}, {9000, -30}, {20000, -6}}, 0, false},
        {{{60, -36}, {120, -24}, {180, -48}, {1000, -12}, {9000, -30}, {20000, -6}}, 0, true, 192000},
        {{{440, -96}, {450, 12}}, 1, true, 48000},
        {{{440, -30}, {450, 12}}, 1, false, 48000},
        {{{5000, -60}, {21000, -20}}, 2, true},
    };
    for (const NotchSetup& setup : setups) {
        const auto filter = Prepared(setup);
        Channels impulse(1, std::vector<float>(static_cast<std::size_t>(3 * setup.rate)));
        impulse[0][0] = 1;
        const std::vector<float> sound = Processed(*filter, impulse)[0];
        std::vector<double> places = {20, 59, 61, 400, 445, 4990, 15000, 0.499 * setup.rate};
        for (const Section& section : setup.sections)
            places.push_back(section.hertz * 1.0005);
        for (const double hertz : places) {
            EXPECT_NEAR(ResponseAt(*filter, hertz), Formula(setup, hertz), 0.01) << hertz;
            EXPECT_NEAR(MeasuredAt(sound, hertz, setup.rate), Formula(setup, hertz), 0.01) << hertz;
        }
    }
}

TEST(Notch, ResponseReachesTheBottomBetweenThePlacesAskedFor) {
    const auto filter = Prepared({{{60, -90}, {1234, -50}}, 2});
    for (const bool logarithmic : {false, true}) {
        std::vector<float> decibels;
        ASSERT_TRUE(filter->GetMagnitudeResponse(500, FrequencyAxis{20, 22050, logarithmic}, decibels));
        ASSERT_EQ(decibels.size(), 500U);
        EXPECT_NEAR(*std::min_element(decibels.begin(), decibels.end()), -90, 0.1);
        EXPECT_GT(decibels.back(), -0.1);
    }
    std::vector<float> untouched = {7};
    EXPECT_FALSE(filter->GetMagnitudeResponse(0, FrequencyAxis{20, 22050, true}, untouched));
    EXPECT_EQ(untouched, std::vector<float>{7});
}

TEST(Notch, LinkedSectionsShareTheFixedGain) {
    const NotchSetup apart{{{1000, -10}, {5000, 20}}};
    const NotchSetup linked{{{1000, -40}, {5000, -40}}};
    const auto filter = Prepared(apart);
    filter->SetParameterValue(kNotchFixGain, StoredGain(-40));
    EXPECT_NEAR(ResponseAt(*filter, 1000), Formula(apart, 1000), 0.01);
    filter->SetParameterValue(kNotchFixGainEnable, 1);
    for (const double hertz : {1000.0, 5000.0})
        EXPECT_NEAR(ResponseAt(*filter, hertz), Formula(linked, hertz), 0.01);
}

// A section as the textbook has it (transposed direct form II), in double.
class Reference {
public:
    explicit Reference(const BiquadCoefficients& coefficients) : fCoefficients(coefficients) {}

    double Process(double input) {
        const auto& [b0, b1, b2, a1, a2] = fCoefficients;
        const double output = b0 * input + fFirst;
        fFirst = b1 * input - a1 * output + fSecond;
        fSecond = b2 * input - a2 * output;
        return output;
    }

private:
    BiquadCoefficients fCoefficients;
    double fFirst = 0;
    double fSecond = 0;
};

// How far the sound is from what the same filters make of it in double throughout, in dB of full scale: for a tone at
// the bottom of six notches, where all that is left of it is error.
double RoundingError(bool ultraQuiet) {
    constexpr float kRate = 192000;
    const auto filter = Prepared({std::vector<Section>(Notch::kSections, {1000, -96}), 2, ultraQuiet, kRate});
    const auto natural = [&](int index) {
        return filter->GetParameterInfo(index)->ToNatural(filter->GetParameterValue(index));
    };
    const auto gain = static_cast<float>(std::pow(10.0, natural(kNotchFirstGain) / 20.0));
    std::vector<Reference> references(Notch::kSections,
                                      Reference(NotchSection::ToBiquad(kRate, {natural(0), 100, gain})));
    Channels input(1, std::vector<float>(static_cast<std::size_t>(kRate)));
    for (std::size_t i = 0; i < input[0].size(); ++i)
        input[0][i] = static_cast<float>(std::sin(2 * kPi * 1000 / kRate * static_cast<double>(i)));
    const std::vector<float> output = Processed(*filter, input)[0];
    double sum = 0;
    for (std::size_t i = 0; i < output.size(); ++i) {
        double expected = input[0][i];
        for (Reference& reference : references)
            expected = reference.Process(expected);
        if (i >= output.size() / 2) sum += (output[i] - expected) * (output[i] - expected);
    }
    return 10 * std::log10(sum / static_cast<double>(output.size() / 2));
}

TEST(Notch, UltraQuietTakesAwayTheRoundingNoise) {
    EXPECT_LT(RoundingError(true), -144) << "a 24-bit output's resolution";
    EXPECT_LT(RoundingError(false), -90);
    EXPECT_GT(RoundingError(false), -144) << "there would be nothing to switch";
}

TEST(Notch, DefaultsAreTheSameFrequenciesAtEveryRateAndSetOnesStay) {
    for (const float rate : {44100.0F, 48000.0F, 192000.0F}) {
        boost::intrusive_ptr<AudioFilter> filter(new Notch);
        filter->SetParameterValue(kNotchFirstFrequency + 5, 0.25F);
        filter->Prepare(rate, kLargestBlock, AudioChannelLayout::Stereo());
        for (int i = 0; i < 5; ++i) {
            const int index = kNotchFirstFrequency + i;
            EXPECT_NEAR(filter->GetParameterInfo(index)->ToNatural(filter->GetParameterValue(index)), 60 * (i + 1),
                        0.01);
        }
        EXPECT_EQ(filter->GetParameterValue(kNotchFirstFrequency + 5), 0.25F);
        EXPECT_NEAR(ResponseAt(*filter, 60), -36, 0.1);
        EXPECT_NEAR(ResponseAt(*filter, 120), 0, 0.1) << "only the first is on";
    }
}

TEST(Notch, ParametersKeepTheirIndicesAndConversions) {
    const boost::intrusive_ptr<AudioFilter> filter(new Notch);
    EXPECT_EQ(filter->GetParameterCount(), 29);
    for (const int free : {19, 20, 23, 24, 26})
        EXPECT_EQ(filter->GetParameterInfo(free), nullptr) << free;
    filter->Prepare(48000, kLargestBlock, AudioChannelLayout::Stereo());
    const auto natural = [&](int index, float value) { return filter->GetParameterInfo(index)->ToNatural(value); };
    EXPECT_FLOAT_EQ(natural(kNotchFirstFrequency + 2, 0.25F), 6000.5F);
    EXPECT_FLOAT_EQ(natural(kNotchFirstGain + 5, 0.25F), -48);
    EXPECT_FLOAT_EQ(natural(kNotchFixGain, 1), 96);
    EXPECT_EQ(filter->GetParameterInfo(kNotchWidth)->FromItem(1), 0.5F);
    EXPECT_EQ(filter->GetParameterInfo(kNotchFirstEnable + 3)->GetName(), u"Notch 4");
    EXPECT_EQ(filter->GetParameterInfo(kNotchUltraQuiet)->GetKind(), AudioFilterParameterInfo::Kind::kSwitch);
}

TEST(Notch, SectionsThatAreOffOrAtZeroDecibelsAreBitExact) {
    for (const bool ultraQuiet : {false, true}) {
        for (const auto& filter : {Prepared({{}, 0, ultraQuiet}), Prepared({{{60, 0}, {900, 0}}, 1, ultraQuiet})}) {
            const Channels input = Noise(1, 3000);
            EXPECT_EQ(Processed(*filter, input), input);
            EXPECT_EQ(filter->Tail(), 0U);
        }
    }
    const auto filter = Prepared({{{300, -40}}});
    const Channels input = Noise(1, 44100);
    Channels output = input;
    test::Process(*filter, input, output, 0, 22050, 512);
    filter->SetParameterValue(kNotchFirstEnable, 0);
    test::Process(*filter, input, output, 22050, 44100, 512);
    EXPECT_NE(output[0][22060], input[0][22060]) << "fades out";
    EXPECT_TRUE(std::equal(output[0].end() - 10000, output[0].end(), input[0].end() - 10000));
}

TEST(Notch, NoChangeOfASettingClicks) {
    // The third difference of the sine itself is its amplitude times (2 pi 100 / 44100)^3: 3e-6. A jump's is as large
    // as the jump. A notch on its way up takes along, ever more faintly, what rings in it.
    constexpr double kSmooth = 4e-6;
    struct {
        int parameter;
        float value;
        double roughest;
    } const changes[] = {
        {kNotchFirstFrequency, 0.4F, 2e-3},   // to 8820 Hz
        {kNotchFirstFrequency, 0.009F, 1e-5}, // an octave
        {kNotchFirstFrequency, 0.0045F, kSmooth}, {kNotchFirstGain, 0.4F, kSmooth}, {kNotchFirstEnable, 0, kSmooth},
        {kNotchFirstEnable + 1, 1, kSmooth},      {kNotchWidth, 1, kSmooth},        {kNotchFixGainEnable, 1, kSmooth},
        {kNotchUltraQuiet, 1, kSmooth},
    };
    for (const auto& change : changes) {
        const auto filter = Prepared({{{100, -6}}});
        filter->SetParameterValue(kNotchFirstFrequency + 1, 0.0045F); // about 100 Hz, still off
        filter->Reset();
        Channels input(1, std::vector<float>(88200));
        for (std::size_t i = 0; i < input[0].size(); ++i)
            input[0][i] = static_cast<float>(std::sin(2 * kPi * 100 / 44100 * static_cast<double>(i)));
        Channels output = input;
        test::Process(*filter, input, output, 0, 44100, 490);
        filter->SetParameterValue(change.parameter, change.value);
        test::Process(*filter, input, output, 44100, 88200, 490);
        double roughest = 0;
        const std::vector<float>& y = output[0];
        for (std::size_t i = 30000; i + 3 < y.size(); ++i)
            roughest =
                std::max(roughest, std::abs(static_cast<double>(y[i + 3]) - 3.0 * y[i + 2] + 3.0 * y[i + 1] - y[i]));
        EXPECT_LT(roughest, change.roughest) << change.parameter << " to " << change.value;
    }
}

TEST(Notch, BadSoundLeavesNoTraceAndBadSettingsStayStable) {
    for (const bool ultraQuiet : {false, true}) {
        const auto filter = Prepared({{{60, -30}, {3000, -20}}, 0, ultraQuiet});
        Channels input = Noise(1, 44100);
        input[0][10] = std::numeric_limits<float>::quiet_NaN();
        input[0][11] = std::numeric_limits<float>::infinity();
        input[0][12] = -std::numeric_limits<float>::max();
        Channels cleaned = input;
        cleaned[0][10] = cleaned[0][11] = cleaned[0][12] = 0;
        const Channels output = Processed(*filter, input);
        filter->Reset();
        EXPECT_EQ(Processed(*filter, cleaned), output);

        for (const float stored : {-3.0F, 1.0F, 9.0F}) {
            for (int i = 0; i < Notch::kSections; ++i) {
                filter->SetParameterValue(kNotchFirstFrequency + i, stored);
                filter->SetParameterValue(kNotchFirstGain + i, stored);
                filter->SetParameterValue(kNotchFirstEnable + i, 1);
            }
            const Channels sound = Processed(*filter, cleaned);
            for (const float sample : sound[0])
                ASSERT_TRUE(std::isfinite(sample)) << stored;
            EXPECT_TRUE(std::isfinite(ResponseAt(*filter, 22050))) << stored;
        }
    }
}

TEST(Notch, ProcessingDoesNotAllocate) {
    const auto filter = Prepared({{{60, -30}, {3000, -20}}, 0, false, 44100, 2});
    const Channels input = Noise(2, 4096);
    Channels output = input;
    const float* const inputs[] = {input[0].data(), input[1].data()};
    float* const outputs[] = {output[0].data(), output[1].data()};
    const std::size_t before = AllocationCount();
    filter->Process({inputs, outputs, 2048});
    filter->SetParameterValue(kNotchUltraQuiet, 1);
    filter->SetParameterValue(kNotchFirstFrequency, 0.5F);
    filter->Process({inputs, outputs, 4096});
    EXPECT_EQ(AllocationCount(), before);
}

// At 60 Hz a q of 10 has a time constant of 10 / (60 pi) s; 60 dB are 6.908 of them.
TEST(Notch, TailLastsUntilTheNarrowestNotchHasRungDown) {
    EXPECT_NEAR(static_cast<double>(Prepared({{{60, -30}, {3000, -20}}})->Tail()), 6.908 * 10 / (60 * kPi) * 44100, 20);
}

} // namespace
