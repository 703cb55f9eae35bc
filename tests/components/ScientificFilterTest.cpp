#include "qoc/components/ScientificFilter.h"

#include "AllocationCounter.h"
#include "ProcessSound.h"
#include "SourcePaths.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <numbers>
#include <random>
#include <sstream>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::FrequencyAxis;
using kromediatypes::AudioChannelLayout;
using test::Channels;

namespace {

constexpr double kHalfPower = -3.0103; // dB
constexpr FilterFamily kFamilies[] = {FilterFamily::kBessel, FilterFamily::kButterworth, FilterFamily::kChebyshev1,
                                      FilterFamily::kChebyshev2};
constexpr FilterMode kModes[] = {FilterMode::kLowPass, FilterMode::kHighPass, FilterMode::kBandPass,
                                 FilterMode::kBandStop};

double Decibels(double amplitude) {
    return 20 * std::log10(amplitude);
}

struct ReferencePoint {
    double hertz, decibels, degrees, milliseconds;
};

// A line of data/scientific_filter.txt.
struct ReferenceFilter {
    std::string name;
    ScientificFilterSettings settings;
    double sampleRate = 0;
    std::vector<ReferencePoint> points;
};

ReferenceFilter ParseReference(const std::string& line) {
    static const std::vector<std::string> kFamilyNames = {"bessel", "butterworth", "chebyshev1", "chebyshev2"};
    static const std::vector<std::string> kModeNames = {"lowpass", "highpass", "bandpass", "bandstop"};
    const auto itemOf = [](const std::vector<std::string>& names, const std::string& name) {
        return std::ranges::find(names, name) - names.begin();
    };
    std::istringstream stream(line);
    ReferenceFilter filter;
    ScientificFilterSettings& settings = filter.settings;
    std::string family;
    std::string mode;
    stream >> family >> mode >> settings.order >> filter.sampleRate >> settings.cutoff >> settings.highCutoff >>
        settings.passRipple >> settings.stopAttenuation;
    settings.family = static_cast<FilterFamily>(itemOf(kFamilyNames, family));
    settings.mode = static_cast<FilterMode>(itemOf(kModeNames, mode));
    filter.name = family + " " + mode + " " + std::to_string(settings.order);
    for (ReferencePoint point{}; stream >> point.hertz >> point.decibels >> point.degrees >> point.milliseconds;)
        filter.points.push_back(point);
    return filter;
}

std::vector<ReferenceFilter> ReferenceFilters() {
    std::ifstream file(QO_SOURCE_DIR "/tests/components/data/scientific_filter.txt");
    std::vector<ReferenceFilter> filters;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("#")) filters.push_back(ParseReference(line));
    }
    EXPECT_EQ(filters.size(), 128U);
    return filters;
}

void SetNatural(AudioFilter& filter, int index, double value) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(value)));
}

void Set(AudioFilter& filter, const ScientificFilterSettings& settings) {
    SetNatural(filter, kSFType, static_cast<int>(settings.family));
    SetNatural(filter, kSFMode, static_cast<int>(settings.mode));
    SetNatural(filter, kSFOrder, settings.order);
    SetNatural(filter, kSFCutoff, settings.cutoff);
    SetNatural(filter, kSFHighCutoff, settings.highCutoff);
    SetNatural(filter, kSFPassRipple, settings.passRipple);
    SetNatural(filter, kSFStopAttenuation, settings.stopAttenuation);
}

// As they are stored, rounded to single precision.
ScientificFilterSettings SettingsOf(const AudioFilter& filter) {
    const auto natural = [&](int index) {
        return filter.GetParameterInfo(index)->ToNatural(filter.GetParameterValue(index));
    };
    return {static_cast<FilterFamily>(natural(kSFType)),
            static_cast<FilterMode>(natural(kSFMode)),
            static_cast<int>(std::lround(natural(kSFOrder))),
            natural(kSFCutoff),
            natural(kSFHighCutoff),
            natural(kSFPassRipple),
            natural(kSFStopAttenuation)};
}

boost::intrusive_ptr<AudioFilter> PreparedFilter(const ScientificFilterSettings& settings, double sampleRate = 44100,
                                                 std::size_t channels = 1) {
    auto filter = CreateEffect(kScientificFilterComponentID);
    Set(*filter, settings);
    filter->Prepare(static_cast<float>(sampleRate), 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

Channels Sine(double hertz, std::size_t frames, double sampleRate = 44100) {
    Channels sine(1, std::vector<float>(frames));
    for (std::size_t i = 0; i < frames; ++i)
        sine[0][i] = static_cast<float>(std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / sampleRate));
    return sine;
}

Channels Impulse(std::size_t frames) {
    Channels impulse(1, std::vector<float>(frames));
    impulse[0][0] = 1;
    return impulse;
}

Channels Noise(std::size_t channels, std::size_t frames) {
    std::mt19937 generator(3);
    std::uniform_real_distribution<float> distribution(-1, 1);
    Channels noise(channels, std::vector<float>(frames));
    for (auto& channel : noise) {
        for (float& sample : channel)
            sample = distribution(generator);
    }
    return noise;
}

double AmplitudeAt(const std::vector<float>& sound, double hertz, double sampleRate) {
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < sound.size(); ++i)
        sum += std::polar<double>(sound[i], -2 * std::numbers::pi * hertz * static_cast<double>(i) / sampleRate);
    return std::abs(sum);
}

float PeakBetween(const std::vector<float>& sound, std::size_t begin, std::size_t end) {
    float peak = 0;
    for (std::size_t i = begin; i < end; ++i)
        peak = std::max(peak, std::abs(sound[i]));
    return peak;
}

TEST(ScientificFilter, DesignsAgreeWithSciPyInLevelPhaseAndDelay) {
    for (const ReferenceFilter& reference : ReferenceFilters()) {
        const FilterSections sections(reference.settings, reference.sampleRate);
        for (const ReferencePoint& point : reference.points) {
            const std::complex<double> response = sections.Response(point.hertz);
            EXPECT_NEAR(Decibels(std::abs(response)), point.decibels, 0.001) << reference.name << " " << point.hertz;
            const double degrees = std::arg(response) * 180 / std::numbers::pi;
            EXPECT_NEAR(std::remainder(degrees - point.degrees, 360), 0, 0.01) << reference.name << " " << point.hertz;
            EXPECT_NEAR(sections.GroupDelay(point.hertz) * 1000, point.milliseconds, 1e-4 * point.milliseconds + 1e-6)
                << reference.name << " " << point.hertz;
        }
    }
}

// The whole way: from stored parameters through the processing to the spectrum of what an impulse becomes.
TEST(ScientificFilter, TheSoundHasTheLevelsOfSciPysFilters) {
    constexpr double kLongest = 60000;
    constexpr double kFaintest = -90; // dB, that single precision still resolves beside the rest
    int heard = 0;
    for (const ReferenceFilter& reference : ReferenceFilters()) {
        const double decay = FilterSections(reference.settings, reference.sampleRate).DecaySamples();
        if (decay > kLongest) continue;
        const auto filter = PreparedFilter(reference.settings, reference.sampleRate);
        const Channels output = test::Processed(*filter, Impulse(static_cast<std::size_t>(1.5 * decay) + 100));
        ++heard;
        for (const ReferencePoint& point : reference.points) {
            if (point.decibels < kFaintest) continue;
            EXPECT_NEAR(Decibels(AmplitudeAt(output[0], point.hertz, reference.sampleRate)), point.decibels, 0.01)
                << reference.name << " " << point.hertz;
        }
    }
    EXPECT_GT(heard, 90);
}

// The designed response at a place of the z plane, rather than on the unit circle only.
std::complex<double> ResponseAt(const FilterSections& sections, std::complex<double> z) {
    const std::complex<double> s = (z - 1.0) / (z + 1.0);
    std::complex<double> response = 1;
    for (const FilterSection& section : sections.Sections()) {
        const std::complex<double> g = section.tuning;
        response *= (section.high * s * s + section.band * g * s + section.low * g * g) /
                    (s * s + section.damping * g * s + g * g);
    }
    return response;
}

// A walk over all that can be set, with a bias to the ends of the ranges and to high orders.
class DesignWalk {
public:
    explicit DesignWalk(unsigned seed) : fGenerator(seed) {}

    ScientificFilterSettings Next(FilterFamily family, FilterMode mode) {
        const int order = static_cast<int>(AnyOf({Between(1, 20.99), 10, 20, 20}));
        return {family,
                mode,
                order,
                Edge(),
                Edge(),
                AnyOf({0.01, 12, Between(0.01, 12)}),
                AnyOf({10, 140, Between(10, 140)})};
    }

private:
    double AnyOf(std::initializer_list<double> values) {
        return values.begin()[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(fGenerator)];
    }
    double Between(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(fGenerator); }
    double Edge() { return AnyOf({1, 20, 100, 10000, 20000, 96000, std::exp(Between(0, std::log(96000)))}); }

    std::mt19937 fGenerator;
};

// The level at z of a sound that begins at 0.
double DecibelsAt(const std::vector<float>& sound, std::complex<double> z) {
    const std::complex<double> delay = 1.0 / z;
    std::complex<double> sum = 0;
    for (std::size_t i = sound.size(); i-- > 0;)
        sum = sum * delay + double{sound[i]};
    return Decibels(std::abs(sum));
}

// At, beside and far from what the filter is about, in hertz.
std::vector<double> TellingPlaces(const ScientificFilterSettings& settings, double rate) {
    const WarpedEdges edges(settings, rate);
    std::vector<double> places = {1, 0.4 * rate};
    for (const double edge : {edges.low, edges.high, std::sqrt(edges.CentreSquared())}) {
        const double hertz = std::atan(edge) / std::numbers::pi * rate;
        if (edge > 0) places.insert(places.end(), {0.7 * hertz, hertz, std::min(1.2 * hertz, 0.4999 * rate)});
    }
    return places;
}

// What an impulse becomes, against the graph. Where it rings for long both are taken on a circle in the z plane that is
// a little larger than that of unit radius: there the beginning tells all.
TEST(ScientificFilter, SoundsAsTheGraphTellsWhateverIsSet) {
    constexpr double kLongest = 20000; // samples
    constexpr double kFaintest = -80;  // dB
    DesignWalk walk(1);
    int compared = 0;
    for (int i = 0; i < 3 * 4 * 4 * 3; ++i) {
        const double rate = std::array{8000.0, 44100.0, 192000.0}[static_cast<std::size_t>(i % 3)];
        const auto filter = PreparedFilter(walk.Next(kFamilies[i / 3 % 4], kModes[i / 12 % 4]), rate);
        const ScientificFilterSettings settings = SettingsOf(*filter);
        SCOPED_TRACE(testing::Message() << i << ": order " << settings.order << ", " << settings.cutoff << " to "
                                        << settings.highCutoff << " Hz at " << rate);
        const FilterSections sections(settings, rate);
        const double decayed = 1.3 * sections.DecaySamples();
        const double radius = decayed < kLongest ? 1 : std::exp(std::log(1e8) / kLongest);
        const auto frames = static_cast<std::size_t>(std::min(decayed, kLongest)) + 100;
        const std::vector<float> sound = test::Processed(*filter, Impulse(frames))[0];
        for (const double hertz : TellingPlaces(settings, rate)) {
            const std::complex<double> z = std::polar(radius, 2 * std::numbers::pi * hertz / rate);
            std::vector<float> told = {static_cast<float>(Decibels(std::abs(ResponseAt(sections, z))))};
            if (radius == 1) filter->GetMagnitudeResponse(1, {hertz, hertz, false}, told);
            if (told[0] < kFaintest) continue;
            ++compared;
            EXPECT_NEAR(DecibelsAt(sound, z), told[0], 0.05) << hertz << " Hz";
        }
    }
    EXPECT_GT(compared, 700);
}

TEST(ScientificFilter, EdgesHaveTheLossThatTheyAreDefinedBy) {
    for (const FilterFamily family : kFamilies) {
        for (const FilterMode mode : kModes) {
            for (const int order : {1, 6, 9, 20}) {
                const ScientificFilterSettings settings{family, mode, order, 500, 3000, 0.5, 70};
                const FilterSections sections(settings, 44100);
                const double expected = family == FilterFamily::kChebyshev1 ? -0.5 : kHalfPower;
                EXPECT_NEAR(Decibels(std::abs(sections.Response(500))), expected, 0.001) << order;
                if (settings.IsBand()) {
                    EXPECT_NEAR(Decibels(std::abs(sections.Response(3000))), expected, 0.001) << order;
                }
            }
        }
    }
}

TEST(ScientificFilter, TheTransitionBandwidthEndsWhereTheStopBandBegins) {
    for (const FilterMode mode : kModes) {
        const bool goesUp = mode == FilterMode::kLowPass || mode == FilterMode::kBandStop;
        double wider = std::numeric_limits<double>::infinity();
        for (int order = 1; order <= ScientificFilterSettings::kHighestOrder; ++order) {
            const ScientificFilterSettings settings{FilterFamily::kChebyshev2, mode, order, 800, 2500, 1, 55};
            const double width = TransitionBandwidth(settings, 48000);
            EXPECT_LT(width, wider);
            wider = width;
            const FilterSections sections(settings, 48000);
            EXPECT_NEAR(Decibels(std::abs(sections.Response(goesUp ? 800 + width : 800 - width))), -55, 0.001) << order;
            EXPECT_EQ(OrderForTransitionBandwidth(settings, 48000, width), order);
            EXPECT_EQ(OrderForTransitionBandwidth(settings, 48000, width * 0.98), std::min(order + 1, 20));
        }
    }
}

TEST(ScientificFilter, TellsTheTransitionBandwidthThatItsSettingsMake) {
    ScientificFilterSettings settings{FilterFamily::kChebyshev2, FilterMode::kLowPass, 6, 1000, 4000, 1, 40};
    const auto filter = PreparedFilter(settings);
    const auto told = [&] {
        return filter->GetParameterInfo(kSFTransitionBandwidth)
            ->ToNatural(filter->GetParameterValue(kSFTransitionBandwidth));
    };
    EXPECT_NEAR(told() / TransitionBandwidth(settings, 44100), 1, 1e-4);
    filter->SetParameterValue(kSFTransitionBandwidth, 0.1F);
    EXPECT_NEAR(told() / TransitionBandwidth(settings, 44100), 1, 1e-4) << "it can't be set";
    settings.order = 12;
    SetNatural(*filter, kSFOrder, 12);
    EXPECT_NEAR(told() / TransitionBandwidth(settings, 44100), 1, 1e-4);
    filter->Prepare(8000, 64, AudioChannelLayout::Mono());
    EXPECT_NEAR(told() / TransitionBandwidth(settings, 8000), 1, 1e-4);
}

TEST(ScientificFilter, IsStableAndFiniteAtTheEndsOfEveryRange) {
    for (const FilterFamily family : kFamilies) {
        for (const FilterMode mode : kModes) {
            for (const int order : {1, 2, 19, 20}) {
                for (const auto& [low, high] : {std::pair{1.0, 1.0}, {1.0, 96000.0}, {96000.0, 1.0}, {499.0, 500.0}}) {
                    for (const double rate : {1000.0, 192000.0}) {
                        const FilterSections sections({family, mode, order, low, high, 0.01, 140}, rate);
                        for (const FilterSection& section : sections.Sections()) {
                            EXPECT_GT(section.tuning, 0);
                            EXPECT_GT(section.damping, 0);
                            EXPECT_LT(section.LogarithmOfPoleRadius(), 0);
                        }
                        for (const double hertz : {0.0, 0.5, 100.0, rate / 2})
                            EXPECT_TRUE(std::isfinite(std::abs(sections.Response(hertz))));
                        EXPECT_TRUE(std::isfinite(sections.GroupDelay(1)));
                    }
                }
            }
        }
    }
}

// A sine in the pass band all along. Cut over hard, the new filter would begin from silence; its second difference
// would then be that of the whole signal instead of w^2 of it.
TEST(ScientificFilter, ChangesOfAnyKindAreHeardWithoutClick) {
    constexpr double kHertz = 300;
    const std::pair<int, double> changes[] = {{kSFCutoff, 4000}, {kSFOrder, 9}, {kSFType, 3}, {kSFMasterGain, -20}};
    for (const auto& [index, value] : changes) {
        const auto filter = PreparedFilter({.cutoff = 2000});
        const Channels input = Sine(kHertz, 20000);
        Channels output = input;
        test::Process(*filter, input, output, 0, 10000, 100);
        SetNatural(*filter, index, value);
        test::Process(*filter, input, output, 10000, 20000, 100);
        const double w = 2 * std::numbers::pi * kHertz / 44100;
        double largest = 0;
        for (std::size_t i = 2000; i < output[0].size(); ++i)
            largest = std::max(largest, std::abs(double{output[0][i]} - 2 * output[0][i - 1] + output[0][i - 2]));
        EXPECT_LT(largest, 1.1 * w * w) << index;
        EXPECT_NE(output[0][15000], input[0][15000]);
    }
}

TEST(ScientificFilter, TheLastOfManyQuickChangesIsTheOneThatStays) {
    const auto filter = PreparedFilter({.order = 8, .cutoff = 200});
    const Channels input = Sine(1000, 44100);
    Channels output = input;
    for (std::size_t i = 0; i < 10; ++i) {
        test::Process(*filter, input, output, i * 441, (i + 1) * 441, 441);
        SetNatural(*filter, kSFCutoff, i < 9 ? 100.0 * static_cast<double>(i + 1) : 1000);
    }
    test::Process(*filter, input, output, 4410, 44100, 441);
    EXPECT_NEAR(Decibels(PeakBetween(output[0], 40000, 44100)), kHalfPower, 0.02);
}

TEST(ScientificFilter, BadSamplesCountAsSilence) {
    Channels input = Noise(1, 3000);
    input[0][100] = input[0][200] = input[0][300] = 0;
    const Channels expected = test::Processed(*PreparedFilter({.order = 12}), input);
    input[0][100] = std::numeric_limits<float>::quiet_NaN();
    input[0][200] = -std::numeric_limits<float>::infinity();
    input[0][300] = 1e30F;
    EXPECT_EQ(test::Processed(*PreparedFilter({.order = 12}), input), expected);
}

TEST(ScientificFilter, ProcessingAllocatesNothingEvenWhenItDesignsAFilter) {
    const auto filter = PreparedFilter({.mode = FilterMode::kBandPass}, 44100, 6);
    const Channels input = Noise(6, 8192);
    Channels output = input;
    SetNatural(*filter, kSFType, 0);
    SetNatural(*filter, kSFOrder, 20);
    std::vector<const float*> inputs;
    std::vector<float*> outputs;
    for (std::size_t channel = 0; channel < 6; ++channel) {
        inputs.push_back(input[channel].data());
        outputs.push_back(output[channel].data());
    }
    const std::size_t before = AllocationCount();
    filter->Process({inputs, outputs, 8192});
    EXPECT_EQ(AllocationCount(), before);
}

TEST(ScientificFilter, HasDecayedByTheEndOfItsTail) {
    const ScientificFilterSettings cases[] = {
        {.order = 1, .cutoff = 50},
        {.family = FilterFamily::kChebyshev1, .order = 11},
        {.mode = FilterMode::kBandPass, .order = 6, .cutoff = 900, .highCutoff = 1000}};
    for (const ScientificFilterSettings& settings : cases) {
        const auto filter = PreparedFilter(settings);
        const std::size_t tail = filter->Tail();
        const Channels output = test::Processed(*filter, Impulse(2 * tail));
        const float peak = PeakBetween(output[0], 0, tail);
        EXPECT_LT(Decibels(PeakBetween(output[0], tail, 2 * tail) / peak), -85) << settings.order;
        EXPECT_GT(Decibels(PeakBetween(output[0], tail / 2, tail) / peak), -85) << "no longer than need be";
    }
}

TEST(ScientificFilter, CurvesCoverTheFrequenciesThatAreShown) {
    const ScientificFilterSettings settings{.family = FilterFamily::kBessel, .order = 5, .cutoff = 700};
    const auto filter = PreparedFilter(settings, 48000);
    SetNatural(*filter, kSFMasterGain, 6);
    const FilterSections sections(settings, 48000);
    const auto expectCurves = [&](const FrequencyAxis& axis) {
        for (const int curve : {0, 1, 2}) {
            std::vector<float> values;
            ASSERT_TRUE(filter->GetResponseCurve(curve, 33, values));
            ASSERT_EQ(values.size(), 33U);
            for (const std::size_t i : {0U, 10U, 20U, 31U}) {
                const double hertz = axis.HertzAt(i, 33);
                const std::complex<double> response = sections.Response(hertz);
                const double expected[] = {Decibels(std::abs(response)) + 6,
                                           std::arg(response) * 180 / std::numbers::pi,
                                           sections.GroupDelay(hertz) * 1000};
                EXPECT_NEAR(values[i], expected[curve], 1e-3 * std::abs(expected[curve]) + 1e-4) << curve << " " << i;
            }
        }
    };
    expectCurves({20, 24000, true});
    filter->SetParameterValueQuietly(kSFLogarithmicAxis, 0);
    filter->SetParameterValueQuietly(kSFViewStart, 0.25F);
    filter->SetParameterValueQuietly(kSFViewEnd, 0.5F);
    expectCurves({6000, 12000, false});
    filter->SetParameterValueQuietly(kSFViewEnd, 0.1F); // ends before it starts: everything is shown
    expectCurves({20, 24000, false});

    std::vector<float> untouched = {7};
    EXPECT_FALSE(filter->GetResponseCurve(3, 10, untouched));
    EXPECT_FALSE(filter->GetResponseCurve(1, 0, untouched));
    EXPECT_FALSE(filter->GetMagnitudeResponse(0, {20, 20000, false}, untouched));
    EXPECT_EQ(untouched, std::vector<float>{7});
}

TEST(ScientificFilter, WhereNothingComesThroughTheCurveEndsAtItsLowestLevel) {
    const auto filter = PreparedFilter({.order = 20});
    std::vector<float> decibels;
    ASSERT_TRUE(filter->GetMagnitudeResponse(2, {1000, 22050, false}, decibels));
    EXPECT_NEAR(decibels[0], kHalfPower, 0.001);
    EXPECT_EQ(decibels[1], ScientificFilter::kLowestLevel);
}

// The zeros of a Chebyshev 2 low pass of order 4 lie at the stop edge divided by cos(22.5) and cos(67.5 degrees).
TEST(ScientificFilter, ACurveThroughFewPlacesShowsEveryZero) {
    const ScientificFilterSettings settings{.family = FilterFamily::kChebyshev2, .order = 4};
    const auto filter = PreparedFilter(settings);
    const double stopEdge = std::tan(std::numbers::pi * (1000 + TransitionBandwidth(settings, 44100)) / 44100);
    std::vector<float> decibels;
    ASSERT_TRUE(filter->GetMagnitudeResponse(400, {100, 20050, false}, decibels)); // every 50 Hz
    std::vector<std::size_t> expected;
    for (const double degrees : {22.5, 67.5}) {
        const double zero = stopEdge / std::cos(degrees * std::numbers::pi / 180);
        const double hertz = std::atan(zero) * 44100 / std::numbers::pi;
        expected.push_back(static_cast<std::size_t>(std::ceil((hertz - 100) / 50)));
    }
    std::vector<std::size_t> silent;
    for (std::size_t i = 0; i < decibels.size(); ++i) {
        if (decibels[i] < -200) silent.push_back(i);
    }
    EXPECT_EQ(silent, expected);
}

} // namespace
