#include "qoc/components/GraphicEQ.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;
using test::Channels;
using Bands = GraphicEQ::Bands;

namespace {

constexpr Bands kAllBands[] = {Bands::kOctave, Bands::kHalfOctave, Bands::kThirdOctave};

void SetNatural(AudioFilter& filter, int index, double value) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
}

double NaturalOf(const AudioFilter& filter, int index) {
    return filter.GetParameterInfo(index)->ToNatural(filter.GetParameterValue(index));
}

boost::intrusive_ptr<AudioFilter> Made(Bands bands, const std::vector<double>& gains = {}) {
    boost::intrusive_ptr<AudioFilter> filter(new GraphicEQ(bands));
    int index = kGraphicEQFirstGain;
    for (const double gain : gains)
        SetNatural(*filter, index++, gain);
    return filter;
}

boost::intrusive_ptr<AudioFilter> Prepared(Bands bands, const std::vector<double>& gains = {}, float rate = 44100,
                                           std::size_t channels = 1) {
    auto filter = Made(bands, gains);
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

std::vector<double> RandomGains(std::size_t count, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> decibels(-15, 15);
    std::vector<double> gains(count);
    std::ranges::generate(gains, [&] { return decibels(generator); });
    return gains;
}

double ToldGainAt(const AudioFilter& filter, double hertz) {
    std::vector<float> decibels;
    EXPECT_TRUE(filter.GetMagnitudeResponse(1, {hertz, hertz, false}, decibels));
    return decibels.at(0);
}

double LargestError(const AudioFilter& filter, Bands bands, const std::vector<double>& gains) {
    double largest = 0;
    for (std::size_t i = 0; i < gains.size(); ++i)
        largest = std::max(largest, std::abs(ToldGainAt(filter, GraphicEQ::Centres(bands)[i]) - gains[i]));
    return largest;
}

TEST(GraphicEQ, TheSoundMeetsTheSlidersAtTheCentres) {
    for (const Bands bands : kAllBands) {
        for (const float rate : {44100.0F, 192000.0F}) {
            const auto centres = GraphicEQ::Centres(bands);
            const std::vector<double> gains = RandomGains(centres.size(), static_cast<unsigned>(rate));
            const auto filter = Prepared(bands, gains, rate, 2);
            const auto response = test::ImpulseResponse(*filter, filter->Tail())[1];
            for (std::size_t i = 0; i < gains.size(); ++i) {
                const double measured = test::Decibels(std::abs(test::ResponseAt(response, centres[i], rate)));
                EXPECT_NEAR(measured, gains[i], 0.5) << centres[i] << " Hz of " << gains.size() << " at " << rate;
                EXPECT_NEAR(ToldGainAt(*filter, centres[i]), measured, 0.01) << centres[i];
            }
        }
    }
}

// Neighbours at both ends of the range are the hardest.
TEST(GraphicEQ, EveryPassOfTheSolverComesNearer) {
    for (const Bands bands : kAllBands) {
        std::vector<double> gains(GraphicEQ::Centres(bands).size());
        for (std::size_t i = 0; i < gains.size(); ++i)
            gains[i] = i % 3 == 0 ? 15 : -15;
        const auto filter = Made(bands, gains);
        const auto errorWith = [&](int passes) {
            SetNatural(*filter, kGraphicEQAccuracy, passes);
            return LargestError(*filter, bands, gains);
        };
        EXPECT_GT(errorWith(0), 3);
        EXPECT_LT(errorWith(1), errorWith(0));
        EXPECT_LT(errorWith(2), errorWith(1));
        EXPECT_LT(errorWith(4), 0.5);
        EXPECT_LT(errorWith(8), 0.2);
    }
}

TEST(GraphicEQ, DefaultsAreBitExact) {
    for (const Bands bands : kAllBands) {
        const auto filter = Prepared(bands, {}, 48000, 6);
        const Channels input = test::NoiseChannels(6, 5000);
        EXPECT_TRUE(test::Processed(*filter, input) == input);
        EXPECT_EQ(filter->Tail(), 0U);
    }
}

TEST(GraphicEQ, TheRangeHoldsTheGains) {
    const auto filter = Made(Bands::kOctave, std::vector<double>(10, 30));
    for (const double range : {30.0, 60.0, 1.5}) {
        SetNatural(*filter, kGraphicEQRange, range);
        EXPECT_NEAR(ToldGainAt(*filter, 1000), range / 2, 0.2);
    }
}

TEST(GraphicEQ, TellsTheHighestGain) {
    std::vector<double> gains(20);
    gains[9] = 12; // 500 Hz
    const auto filter = Made(Bands::kHalfOctave, gains);
    const int told = kGraphicEQFirstGain + 20;
    EXPECT_EQ(filter->GetParameterCount(), told + 1);
    EXPECT_NEAR(NaturalOf(*filter, told), 12, 0.5);
    SetNatural(*filter, kGraphicEQMasterGain, -18);
    EXPECT_NEAR(NaturalOf(*filter, told), -6, 0.5);
    SetNatural(*filter, told, 40);
    EXPECT_NEAR(NaturalOf(*filter, told), -6, 0.5);
}

TEST(GraphicEQ, GlidesToNewGainsWithoutClick) {
    const auto filter = Prepared(Bands::kThirdOctave);
    const std::vector<float> sine = test::Sine(1000, 60000, 44100, 0.1);
    const Channels input = {sine};
    Channels output = input;
    test::Process(*filter, input, output, 0, 20000, 441);
    SetNatural(*filter, kGraphicEQFirstGain + 16, 15); // 1 kHz
    test::Process(*filter, input, output, 20000, 22000, 441);
    SetNatural(*filter, kGraphicEQFirstGain + 16, -15); // on the way
    test::Process(*filter, input, output, 22000, 60000, 441);
    // The sine's own at its loudest, +15 dB, by a tenth more.
    EXPECT_LT(test::Roughness(output[0], 0, 60000), 1.1 * 5.62 * test::Roughness(sine, 0, 5000));
    const double last = *std::max_element(output[0].end() - 100, output[0].end());
    EXPECT_NEAR(test::Decibels(last / 0.1), -15, 0.5);
}

// At 22.05 kHz nothing above 10.5 kHz has a section.
TEST(GraphicEQ, BandsAboveTheNyquistFrequencyAreNotThere) {
    std::vector<double> gains(30, 0);
    std::fill(gains.end() - 3, gains.end(), 15.0);
    const auto filter = Prepared(Bands::kThirdOctave, gains, 22050);
    EXPECT_NEAR(ToldGainAt(*filter, 10000), 0, 1e-6);
}

} // namespace
