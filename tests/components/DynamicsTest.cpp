#include "qoc/components/Dynamics.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <map>

using namespace qoc::components;
using test::Channels;

namespace {

using Filter = boost::intrusive_ptr<Dynamics>;
using Values = std::map<int, double>; // natural, by parameter
using Points = std::vector<TransferCurve::Point>;

void Set(Dynamics& filter, const Values& values) {
    for (const auto& [index, value] : values)
        filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
}

void SetCurve(Dynamics& filter, const Points& points) {
    Set(filter, {{kDynamicsPointCount, static_cast<double>(points.size())}});
    int index = kDynamicsFirstPoint;
    for (const auto& [input, output] : points) {
        Set(filter, {{index, input}, {index + 1, output}});
        index += 2;
    }
}

Filter Prepared(const Points& points, const Values& values = {}, std::size_t channels = 1, float rate = 44100) {
    Filter filter(new Dynamics);
    SetCurve(*filter, points);
    Set(*filter, values);
    filter->Prepare(rate, 8192, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// 4:1 above -40 dB, 1:1 down to -60, 1:3 below.
const Points kCurve = {{-100, -100}, {-80, -100}, {-60, -60}, {-40, -40}, {0, -30}};

double OutputLevel(double input) {
    if (input > -40) return -40 + (input + 40) / 4;
    if (input > -60) return input;
    return input > -80 ? -100 + (input + 80) * 2 : -100;
}

double Peak(const std::vector<float>& sound, std::size_t begin) {
    double peak = 0;
    for (std::size_t i = begin; i < sound.size(); ++i)
        peak = std::max(peak, std::abs(double{sound[i]}));
    return peak;
}

// The peak of a tone that has come to rest, found from its power.
double ToneLevel(const std::vector<float>& sound, std::size_t begin) {
    return 10 * std::log10(2 * test::Energy({sound.begin() + static_cast<std::ptrdiff_t>(begin), sound.end()}) /
                           static_cast<double>(sound.size() - begin));
}

TEST(Dynamics, SteadyTonesComeOutAtTheCurvesLevels) {
    const Values modes[] = {
        {{kDynamicsDetectorRelease, 30}},
        {{kDynamicsDetectorMode, 0}, {kDynamicsDetectorRelease, 500}, {kDynamicsAttack, 1}},
    };
    for (const float rate : {44100.0F, 192000.0F}) {
        for (const Values& mode : modes) {
            for (const double level : {-75.0, -65.0, -50.0, -30.0, -12.0, -1.0}) {
                const auto filter = Prepared(kCurve, mode, 1, rate);
                const auto frames = static_cast<std::size_t>(rate);
                const auto tone = test::Sine(1000, 2 * frames, rate, std::pow(10, level / 20));
                const Channels output = test::Processed(*filter, {tone});
                EXPECT_NEAR(ToneLevel(output[0], frames + frames / 2), OutputLevel(level), 0.1) << rate << " " << level;
            }
        }
    }
}

// A level that jumps, up or down by 20 dB at a curve of 1:infinity: the part of the gain that is still missing after
// the time is 1/e of all, in decibels.
TEST(Dynamics, AttackAndReleaseAreTimeConstants) {
    const Points limit = {{-100, -100}, {-40, -40}, {0, -40}};
    struct Case {
        double attack, release;
        bool isUp;
    };
    for (const float rate : {44100.0F, 192000.0F}) {
        for (const Case& c :
             {Case{2, 100, true}, Case{50, 100, true}, Case{300, 1, true}, Case{1, 20, false}, Case{1, 400, false}}) {
            const auto filter = Prepared(limit,
                                         {{kDynamicsDetectorMode, 0},
                                          {kDynamicsDetectorRelease, 0},
                                          {kDynamicsAttack, c.attack},
                                          {kDynamicsRelease, c.release}},
                                         1, rate);
            // A level without waves, so that the detector needs no time.
            const float low = 0.01F, high = 0.1F; // -40 and -20 dB: gains of 0 and -20 dB
            const auto change = static_cast<std::size_t>(2 * rate);
            std::vector<float> sound(2 * change, c.isUp ? low : high);
            std::fill(sound.begin() + static_cast<std::ptrdiff_t>(change), sound.end(), c.isUp ? high : low);
            const auto output = test::Processed(*filter, {sound})[0];
            const double time = (c.isUp ? c.attack : c.release) / 1000;
            const std::size_t at = change - 1 + static_cast<std::size_t>(std::lround(time * rate));
            const double gain = test::Decibels(output[at] / sound[at]);
            const double missing = c.isUp ? (gain + 20) / 20 : -gain / 20;
            // 5 % of the time moves what is missing by that share.
            EXPECT_NEAR(missing, std::exp(-1.0), 0.05 * std::exp(-1.0)) << rate << " " << c.attack << " " << c.release;
        }
    }
}

TEST(Dynamics, TheHoldPutsTheReleaseOff) {
    const auto filter = Prepared({{-100, -100}, {-40, -40}, {0, -40}}, {{kDynamicsDetectorMode, 0},
                                                                        {kDynamicsDetectorRelease, 0},
                                                                        {kDynamicsAttack, 0.01},
                                                                        {kDynamicsRelease, 1},
                                                                        {kDynamicsHold, 100}});
    std::vector<float> sound(20000, 0.1F);
    std::fill(sound.begin() + 10000, sound.end(), 0.01F);
    const auto output = test::Processed(*filter, {sound})[0];
    EXPECT_NEAR(test::Decibels(output[10000 + 4400] / 0.01), -20, 0.01);
    EXPECT_NEAR(test::Decibels(output[10000 + 5400] / 0.01), 0, 0.01);
}

TEST(Dynamics, OneToOneIsTheSoundItselfLaterByTheLookAhead) {
    const Values settings[] = {
        {},
        {{kDynamicsLookAhead, 20}, {kDynamicsKnee, 12}},
        {{kDynamicsLimitBand, 1}, {kDynamicsLowCutoff, 500}, {kDynamicsHighCutoff, 2000}, {kDynamicsSmoothCurve, 1}},
    };
    const std::size_t delays[] = {0, 960, 0};
    for (std::size_t i = 0; i < std::size(delays); ++i) {
        const auto filter = Prepared({{-100, -100}, {-30, -30}, {0, 0}}, settings[i], 6, 48000);
        ASSERT_EQ(filter->Latency(), delays[i]);
        const Channels input = test::NoiseChannels(6, 5000);
        const Channels output = test::Processed(*filter, input);
        for (std::size_t channel = 0; channel < 6; ++channel)
            EXPECT_TRUE(std::equal(output[channel].begin() + static_cast<std::ptrdiff_t>(delays[i]),
                                   output[channel].end(), input[channel].begin()))
                << i;
    }
}

TEST(Dynamics, WithLookAheadABurstFindsTheGainDown) {
    Values settings = {{kDynamicsDetectorMode, 0}, {kDynamicsAttack, 1}, {kDynamicsRelease, 500}};
    std::vector<float> sound(8820);
    std::fill(sound.begin() + 4410, sound.end(), 1.0F);
    const Points limit = {{-100, -100}, {-20, -20}, {0, -20}};
    EXPECT_GT(Peak(test::Processed(*Prepared(limit, settings), {sound})[0], 0), 0.9);
    settings[kDynamicsLookAhead] = 10;
    // 10 time constants have gone by: 20 dB * exp(-10) is missing.
    EXPECT_NEAR(test::Decibels(Peak(test::Processed(*Prepared(limit, settings), {sound})[0], 0)), -20, 0.01);
}

// A loud channel and one 20 dB below it, where a curve takes half of the level above -40 dB away.
TEST(Dynamics, ChannelsAreTakenTogetherOrEachByItself) {
    const double kLevels[] = {-10, -30};
    const Channels input = {test::Sine(1000, 88200, 44100, std::pow(10, -0.5)),
                            test::Sine(1000, 88200, 44100, std::pow(10, -1.5))};
    const double average = 10 * std::log10((0.1 + 0.001) / 2);
    const double gains[][2] = {{-15, -15}, {(-40 - average) / 2, (-40 - average) / 2}, {-15, -5}};
    for (int channels = 0; channels < 3; ++channels) {
        const auto filter = Prepared({{-100, -100}, {-40, -40}, {0, -20}},
                                     {{kDynamicsDetectorChannels, channels}, {kDynamicsDetectorRelease, 30}}, 2);
        const Channels output = test::Processed(*filter, input);
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_NEAR(ToneLevel(output[i], 44100), kLevels[i] + gains[channels][i], 0.1) << channels << " " << i;
    }
}

TEST(Dynamics, GainsAroundTheCurveAddUp) {
    // -20 dB in: a gain of -15 dB.
    const Points curve = {{-100, -100}, {-40, -40}, {0, -30}};
    struct Case {
        Values values;
        double gain;
    };
    const Case cases[] = {
        {{{kDynamicsMakeUpGain, 6}}, -15 + 6},
        {{{kDynamicsAutoMakeUp, 1}}, -15 + 30},
        {{{kDynamicsRange, 4}}, -4},
        {{{kDynamicsRange, 4}, {kDynamicsAutoMakeUp, 1}}, 0},
        {{{kDynamicsMix, 50}}, 20 * std::log10(0.5 + 0.5 * std::pow(10, -0.75))},
        {{{kDynamicsMix, 0}, {kDynamicsMakeUpGain, 6}}, 0},
        {{{kDynamicsDetectorGain, -10}}, -7.5},
        {{{kDynamicsListen, 1}}, 0},
    };
    const auto tone = test::Sine(1000, 44100, 44100, 0.1);
    for (const Case& c : cases) {
        Values values = c.values;
        values[kDynamicsDetectorRelease] = 30;
        const auto output = test::Processed(*Prepared(curve, values), {tone})[0];
        EXPECT_NEAR(ToneLevel(output, 30000), -20 + c.gain, 0.1) << c.gain;
    }
}

// A tone in the band is limited as if there were no other, one outside neither counts nor changes. The detector's
// filters take 0.02 dB away two octaves inside, which a curve of 1:infinity gives back.
TEST(Dynamics, OnlyALimitedBandIsHeardAndChanged) {
    for (const float rate : {44100.0F, 192000.0F}) {
        const auto filter = Prepared({{-100, -100}, {-40, -40}, {0, -40}},
                                     {{kDynamicsLimitBand, 1},
                                      {kDynamicsLowCutoff, 100},
                                      {kDynamicsHighCutoff, 10000},
                                      {kDynamicsDetectorRelease, 30}},
                                     1, rate);
        for (const auto& [hertz, level] :
             {std::pair(1000.0, -40.0), {400.0, -40.0}, {2500.0, -40.0}, {20000.0, -20.0}, {20.0, -20.0}}) {
            const auto frames = static_cast<std::size_t>(rate);
            const auto output = test::Processed(*filter, {test::Sine(hertz, 2 * frames, rate, 0.1)})[0];
            EXPECT_NEAR(ToneLevel(output, frames), level, 0.1) << hertz << " " << rate;
        }
    }
}

// Where the two lines meet, the quadratic knee lies an eighth of its width times the change of slope below.
// Neither what was heard of the band before it was off nor where it was then.
TEST(Dynamics, ABandThatComesOnBeginsAsANewOne) {
    const Points limit = {{-100, -100}, {-40, -40}, {0, -40}};
    // A band that rings for long, and a detector and a gain that do not.
    const Values far = {{kDynamicsLowCutoff, 20}, {kDynamicsHighCutoff, 24},  {kDynamicsLimitBand, 1},
                        {kDynamicsRelease, 1},    {kDynamicsDetectorMode, 0}, {kDynamicsDetectorRelease, 0}};
    const Values near = {{kDynamicsLowCutoff, 100}, {kDynamicsHighCutoff, 4000}};
    const Filter used = Prepared(limit, far);
    Values off = far;
    for (const auto& [index, value] : near)
        off[index] = value;
    off[kDynamicsLimitBand] = 0;
    const Filter fresh = Prepared(limit, off);
    const auto tone = test::Sine(30, 9000, 44100);
    test::Processed(*used, {tone});
    test::Processed(*fresh, {tone});
    Set(*used, {{kDynamicsLimitBand, 0}});
    for (const Filter& filter : {used, fresh})
        test::Processed(*filter, {std::vector<float>(6000)}); // a little longer than anything glides
    Set(*used, near);
    for (const Filter& filter : {used, fresh})
        Set(*filter, {{kDynamicsLimitBand, 1}});
    const Channels sound = test::Processed(*used, {tone});
    const Channels expected = test::Processed(*fresh, {tone});
    for (std::size_t i = 0; i < tone.size(); ++i)
        ASSERT_NEAR(sound[0][i], expected[0][i], 1e-5) << i;
}

TEST(TransferCurve, TheKneeRoundsCornersAndNothingElse) {
    const Points points = {{-100, -100}, {-40, -40}, {0, -30}};
    const TransferCurve hard(points, {});
    const TransferCurve soft(points, {.knee = 12});
    EXPECT_NEAR(soft.GainAt(-40), -12 * 0.75 / 8, 1e-9);
    EXPECT_NEAR(soft.GainAt(-46), 0, 1e-9);
    EXPECT_NEAR(soft.GainAt(-34), hard.GainAt(-34), 1e-9);
    EXPECT_NEAR(hard.GainAt(-20), -15, 1e-9);
    EXPECT_NEAR(hard.GainAt(20), -30, 1e-9);
    EXPECT_NEAR(soft.GainAt(20), -30, 1e-9);
}

TEST(TransferCurve, TakesPointsInAnyOrderAndStepsAtTheSameInput) {
    const Points points = {{0, -10}, {-100, -100}, {-50, -90}, {-50, -30}};
    for (const bool smooth : {false, true}) {
        const TransferCurve curve(points, {.isSmooth = smooth});
        EXPECT_NEAR(curve.GainAt(-50.000001), -40, 1e-4) << smooth;
        EXPECT_NEAR(curve.GainAt(-50), 20, 1e-9);
        EXPECT_NEAR(curve.GainAt(0), -10, 1e-9);
        double before = -101;
        for (double level = -100; level <= 0; level += 0.25) {
            const double output = level + curve.GainAt(level);
            EXPECT_GE(output, before - 1e-9) << smooth << " " << level;
            before = output;
        }
    }
}

TEST(Dynamics, TheCurveOfThePanelIsTheStaticCurve) {
    const auto filter = Prepared(kCurve, {{kDynamicsMakeUpGain, 10}});
    std::vector<float> levels;
    ASSERT_TRUE(filter->GetResponseCurve(0, 101, levels));
    for (int i = 0; i <= 100; ++i)
        EXPECT_NEAR(levels[static_cast<std::size_t>(i)], OutputLevel(i - 100), 1e-3);
    EXPECT_FALSE(filter->GetResponseCurve(1, 101, levels));
    EXPECT_FALSE(filter->GetResponseCurve(0, 0, levels));
    EXPECT_EQ(levels.size(), 101U);
}

} // namespace
