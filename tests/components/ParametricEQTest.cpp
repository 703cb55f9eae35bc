#include "qoc/components/ParametricEQ.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <map>

using namespace qoc::components;
using test::Channels;

namespace {

using Filter = boost::intrusive_ptr<ParametricEQ>;
using Values = std::map<int, double>; // natural, by parameter
using std::numbers::pi;

enum Band { kHighPass, kLowShelf, kPeak1, kPeak3 = 4, kHighShelf = 7, kLowPass };

constexpr int On(int band) {
    return kParametricEQFirstEnable + band;
}
constexpr int Frequency(int band) {
    return kParametricEQFirstFrequency + band;
}
constexpr int Gain(int band) {
    return kParametricEQFirstGain + band - kLowShelf;
}

void Set(ParametricEQ& filter, const Values& values) {
    for (const auto& [index, value] : values)
        filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
}

Filter Prepared(const Values& values, std::size_t channels = 1, float rate = 44100) {
    Filter filter(new ParametricEQ);
    Set(*filter, values);
    filter->Prepare(rate, 8192, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// Of analogue filters, at w times their frequency.
double Quadratic(double s2, double s1, double s0, double w) {
    return std::hypot(s0 - s2 * w * w, s1 * w);
}

double PeakDecibels(double w, double decibels, double q) {
    const double a = std::pow(10, decibels / 40);
    return test::Decibels(Quadratic(1, a / q, 1, w) / Quadratic(1, 1 / (a * q), 1, w));
}

double LowShelfDecibels(double w, double decibels, bool steep) {
    const double a = std::pow(10, decibels / 40);
    if (!steep) return test::Decibels(std::hypot(w, a) / std::hypot(w, 1 / a));
    const double middle = std::sqrt(2 * a);
    return test::Decibels(a * Quadratic(1, middle, a, w) / Quadratic(a, middle, 1, w));
}

double LowPassDecibels(double w, int order) {
    return -10 * std::log10(1 + std::pow(w, 2 * order));
}

struct Case {
    const char* name;
    Values values;
    std::function<double(double hertz)> decibels;
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"peak",
         {{Frequency(kPeak1), 400}, {Gain(kPeak1), 12}, {kParametricEQFirstQ, 2}},
         [](double f) { return PeakDecibels(f / 400, 12, 2); }},
        {"cut",
         {{Frequency(kPeak3), 5000}, {Gain(kPeak3), -20}, {kParametricEQFirstQ + 2, 8}},
         [](double f) { return PeakDecibels(f / 5000, -20, 8); }},
        {"constant width",
         {{kParametricEQConstantWidth, 1},
          {Frequency(kPeak1), 3000},
          {Gain(kPeak1), 6},
          {kParametricEQFirstWidth, 600}},
         [](double f) { return PeakDecibels(f / 3000, 6, 5); }},
        {"steep low shelf",
         {{Frequency(kLowShelf), 300}, {Gain(kLowShelf), 9}},
         [](double f) { return LowShelfDecibels(f / 300, 9, true); }},
        {"gentle low shelf",
         {{Frequency(kLowShelf), 300}, {Gain(kLowShelf), -15}, {kParametricEQFirstSteep, 0}},
         [](double f) { return LowShelfDecibels(f / 300, -15, false); }},
        {"steep high shelf",
         {{Frequency(kHighShelf), 4000}, {Gain(kHighShelf), -12}},
         [](double f) { return LowShelfDecibels(4000 / f, -12, true); }},
        {"gentle high shelf",
         {{Frequency(kHighShelf), 4000}, {Gain(kHighShelf), 18}, {kParametricEQFirstSteep + 1, 0}},
         [](double f) { return LowShelfDecibels(4000 / f, 18, false); }},
        {"high pass of the third order",
         {{On(kHighPass), 1}, {Frequency(kHighPass), 200}, {kParametricEQFirstSlope, 18}},
         [](double f) { return LowPassDecibels(200 / f, 3); }},
        {"low pass of the eighth order",
         {{On(kLowPass), 1}, {Frequency(kLowPass), 6000}, {kParametricEQFirstSlope + 1, 48}},
         [](double f) { return LowPassDecibels(f / 6000, 8); }},
        {"low pass of the first order",
         {{On(kLowPass), 1}, {Frequency(kLowPass), 6000}, {kParametricEQFirstSlope + 1, 6}},
         [](double f) { return LowPassDecibels(f / 6000, 1); }},
        {"peak near the top",
         {{Frequency(kPeak3), 16000}, {Gain(kPeak3), 6}},
         [](double f) { return PeakDecibels(f / 16000, 6, 1); }},
        {"low pass near the top",
         {{On(kLowPass), 1}, {Frequency(kLowPass), 18000}, {kParametricEQFirstSlope + 1, 24}},
         [](double f) { return LowPassDecibels(f / 18000, 4); }},
        {"all at once, and the master gain",
         {{On(kHighPass), 1},
          {Gain(kLowShelf), 9},
          {Gain(kPeak1), 5},
          {Gain(kHighShelf), -7},
          {kParametricEQMasterGain, -3}},
         [](double f) {
             return LowPassDecibels(30 / f, 4) + LowShelfDecibels(f / 100, 9, true) + PeakDecibels(f / 200, 5, 1) +
                    LowShelfDecibels(10000 / f, -7, true) - 3;
         }},
    };
    return cases;
}

// What the panel is told, and what is heard, at 44.1 to 192 kHz.
TEST(ParametricEQ, TheResponseIsThatOfTheAnalogueFiltersUpTo20Kilohertz) {
    for (const float rate : {44100.0F, 48000.0F, 96000.0F, 192000.0F}) {
        for (const Case& c : Cases()) {
            const auto filter = Prepared(c.values, 1, rate);
            const auto response = test::ImpulseResponse(*filter, static_cast<std::size_t>(rate))[0];
            std::vector<float> told;
            for (const double hertz : {50.0, 140.0, 420.0, 1000.0, 3000.0, 4900.0, 7000.0, 12000.0, 16000.0, 20000.0}) {
                const double expected = c.decibels(hertz);
                if (expected < -80) continue; // below what single precision tells
                ASSERT_TRUE(filter->GetMagnitudeResponse(1, {hertz, hertz, true}, told));
                EXPECT_NEAR(told[0], expected, 0.2) << c.name << " " << rate << " " << hertz;
                EXPECT_NEAR(test::Decibels(std::abs(test::ResponseAt(response, hertz, rate))), told[0], 0.01)
                    << c.name << " " << rate << " " << hertz;
            }
        }
    }
}

TEST(ParametricEQ, LeavesTheSoundAloneWhenNothingIsSet) {
    const Channels noise = test::NoiseChannels(6, 5000);
    EXPECT_TRUE(test::Processed(*Prepared({}, 6), noise) == noise) << "the defaults";
    Values off;
    for (int band = 0; band < ParametricEQ::kBands; ++band)
        off[On(band)] = 0;
    for (int band = kLowShelf; band <= kHighShelf; ++band)
        off[Gain(band)] = 15;
    EXPECT_TRUE(test::Processed(*Prepared(off, 6), noise) == noise) << "all off";
}

// No step is rougher than the tone itself is at its loudest meanwhile: 15 dB in the middle of the peak, 0 dB once that
// has gone. Back at 0 dB, the bands are out of the way bit by bit again.
TEST(ParametricEQ, MovesWithoutClicksAndComesToRest) {
    const double peakGain = std::pow(10, 15 / 20.0);
    const double angle = 2 * pi * 200; // of the tone, in a second
    // A peak that moves turns the tone's phase as well: by 2 Q (A - 1 / A) radians a neper in its middle, and through
    // ln 5 nepers it goes at 1 / e of the way in a time constant at most.
    const double turning = 2 * (std::sqrt(peakGain) - 1 / std::sqrt(peakGain)) * std::log(5) / (std::exp(1) * 0.005);
    struct Step {
        Values values;
        double roughest; // second difference, as a share of the tone's
    };
    const Step steps[] = {
        {{{Gain(kPeak1), 15}, {Gain(kLowShelf), -15}}, peakGain},
        {{{On(kHighPass), 1}, {Frequency(kPeak1), 1000}}, peakGain * std::pow(1 + turning / angle, 2)},
        {{{On(kHighPass), 0}, {Gain(kPeak1), 0}, {Gain(kLowShelf), 0}}, 1.1},
    };
    const auto filter = Prepared({});
    const std::vector<float> tone = test::Sine(200, 60000, 44100, 0.5);
    Channels output = {tone};
    test::Process(*filter, {tone}, output, 0, 15000, 512);
    std::size_t done = 15000;
    for (const Step& step : steps) {
        Set(*filter, step.values);
        test::Process(*filter, {tone}, output, done, done + 15000, 512);
        EXPECT_LT(test::Roughness(output[0], done - 2, done + 15000), step.roughest * 0.5 * std::pow(angle / 44100, 2))
            << done;
        done += 15000;
    }
    EXPECT_TRUE(std::equal(output[0].begin() + 55000, output[0].end(), tone.begin() + 55000));
}

TEST(ParametricEQ, HeadroomTakesTheHighestGainOff) {
    const auto filter = Prepared({{Gain(kPeak1), 12}, {kParametricEQHeadroom, 1}});
    const auto& info = *filter->GetParameterInfo(kParametricEQHighestGain);
    EXPECT_NEAR(info.ToNatural(filter->GetParameterValue(kParametricEQHighestGain)), 12, 0.01);
    std::vector<float> decibels;
    ASSERT_TRUE(filter->GetMagnitudeResponse(2, {200, 20000, false}, decibels));
    EXPECT_NEAR(decibels[0], 0, 0.01);
    EXPECT_NEAR(decibels[1], -12, 0.01);
    Set(*filter, {{Gain(kPeak1), -12}});
    ASSERT_TRUE(filter->GetMagnitudeResponse(2, {200, 20000, false}, decibels));
    EXPECT_NEAR(decibels[1], 0, 0.01) << "nothing to take off";
    filter->SetParameterValue(kParametricEQHighestGain, 1);
    EXPECT_NEAR(info.ToNatural(filter->GetParameterValue(kParametricEQHighestGain)), 0, 0.1) << "told, not set";
}

// Curve 0 ends at 20 kHz, or at half the sample rate; in the middle of a logarithmic axis is the geometric mean.
TEST(ParametricEQ, TheCurveOfThePanelRunsOverTheFrequenciesThatThereAre) {
    for (const auto& [rate, middle] :
         {std::pair(48000.0F, std::sqrt(20.0 * 20000)), {16000.0F, std::sqrt(20.0 * 8000)}}) {
        const auto filter = Prepared({{Frequency(kPeak3), middle}, {Gain(kPeak3), 10}}, 1, rate);
        std::vector<float> decibels;
        ASSERT_TRUE(filter->GetResponseCurve(0, 3, decibels));
        EXPECT_NEAR(decibels[0], 0, 0.05);
        EXPECT_NEAR(decibels[1], 10, 0.01);
        EXPECT_NEAR(decibels[2], 0, 0.05);
        EXPECT_FALSE(filter->GetResponseCurve(1, 3, decibels));
    }
}

} // namespace
