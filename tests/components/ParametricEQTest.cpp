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

// The magnitude of an analogue filter at the frequency that the bilinear transform puts where it is asked for: s is
// j times this.
double Bent(double hertz, double centre, double rate) {
    return std::tan(pi * hertz / rate) / std::tan(pi * centre / rate);
}

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
    std::function<double(double hertz, double rate)> decibels;
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"peak",
         {{Frequency(kPeak1), 400}, {Gain(kPeak1), 12}, {kParametricEQFirstQ, 2}},
         [](double f, double rate) { return PeakDecibels(Bent(f, 400, rate), 12, 2); }},
        {"cut",
         {{Frequency(kPeak3), 5000}, {Gain(kPeak3), -20}, {kParametricEQFirstQ + 2, 8}},
         [](double f, double rate) { return PeakDecibels(Bent(f, 5000, rate), -20, 8); }},
        {"constant width",
         {{kParametricEQConstantWidth, 1},
          {Frequency(kPeak1), 3000},
          {Gain(kPeak1), 6},
          {kParametricEQFirstWidth, 600}},
         [](double f, double rate) { return PeakDecibels(Bent(f, 3000, rate), 6, 5); }},
        {"steep low shelf",
         {{Frequency(kLowShelf), 300}, {Gain(kLowShelf), 9}},
         [](double f, double rate) { return LowShelfDecibels(Bent(f, 300, rate), 9, true); }},
        {"gentle low shelf",
         {{Frequency(kLowShelf), 300}, {Gain(kLowShelf), -15}, {kParametricEQFirstSteep, 0}},
         [](double f, double rate) { return LowShelfDecibels(Bent(f, 300, rate), -15, false); }},
        {"steep high shelf",
         {{Frequency(kHighShelf), 4000}, {Gain(kHighShelf), -12}},
         [](double f, double rate) { return LowShelfDecibels(1 / Bent(f, 4000, rate), -12, true); }},
        {"gentle high shelf",
         {{Frequency(kHighShelf), 4000}, {Gain(kHighShelf), 18}, {kParametricEQFirstSteep + 1, 0}},
         [](double f, double rate) { return LowShelfDecibels(1 / Bent(f, 4000, rate), 18, false); }},
        {"high pass of the third order",
         {{On(kHighPass), 1}, {Frequency(kHighPass), 200}, {kParametricEQFirstSlope, 18}},
         [](double f, double rate) { return LowPassDecibels(1 / Bent(f, 200, rate), 3); }},
        {"low pass of the eighth order",
         {{On(kLowPass), 1}, {Frequency(kLowPass), 6000}, {kParametricEQFirstSlope + 1, 48}},
         [](double f, double rate) { return LowPassDecibels(Bent(f, 6000, rate), 8); }},
        {"low pass of the first order",
         {{On(kLowPass), 1}, {Frequency(kLowPass), 6000}, {kParametricEQFirstSlope + 1, 6}},
         [](double f, double rate) { return LowPassDecibels(Bent(f, 6000, rate), 1); }},
        {"all at once, and the master gain",
         {{On(kHighPass), 1},
          {Gain(kLowShelf), 9},
          {Gain(kPeak1), 5},
          {Gain(kHighShelf), -7},
          {kParametricEQMasterGain, -3}},
         [](double f, double rate) {
             return LowPassDecibels(1 / Bent(f, 30, rate), 4) + LowShelfDecibels(Bent(f, 100, rate), 9, true) +
                    PeakDecibels(Bent(f, 200, rate), 5, 1) + LowShelfDecibels(1 / Bent(f, 10000, rate), -7, true) - 3;
         }},
    };
    return cases;
}

// What is heard, and what the panel is told, at 44.1 to 192 kHz.
TEST(ParametricEQ, TheResponseIsThatOfTheFormulas) {
    for (const float rate : {44100.0F, 48000.0F, 96000.0F, 192000.0F}) {
        for (const Case& c : Cases()) {
            const auto filter = Prepared(c.values, 1, rate);
            const auto response = test::ImpulseResponse(*filter, static_cast<std::size_t>(rate))[0];
            std::vector<float> told;
            for (const double hertz : {50.0, 140.0, 300.0, 420.0, 1000.0, 3000.0, 4900.0, 7000.0, 12000.0}) {
                const double expected = c.decibels(hertz, rate);
                if (expected < -90) continue; // below what single precision tells
                EXPECT_NEAR(test::Decibels(std::abs(test::ResponseAt(response, hertz, rate))), expected, 0.01)
                    << c.name << " " << rate << " " << hertz;
                ASSERT_TRUE(filter->GetMagnitudeResponse(1, {hertz, hertz, true}, told));
                EXPECT_NEAR(told[0], expected, 0.001) << c.name << " " << rate << " " << hertz;
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
        EXPECT_NEAR(decibels[1], 10, 0.001);
        EXPECT_NEAR(decibels[2], 0, 0.05);
        EXPECT_FALSE(filter->GetResponseCurve(1, 3, decibels));
    }
}

} // namespace
