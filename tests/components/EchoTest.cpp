#include "qoc/components/Echo.h"

#include "MeasureSound.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kromediatypes::AudioChannelLayout;

namespace {

struct Side {
    double time = 10; // ms
    double feedback = 50;
    double level = 100;
};

void Set(AudioFilter& filter, const Side& side, int first) {
    filter.SetParameterValue(first, static_cast<float>(side.time / 10000));
    filter.SetParameterValue(first + 1, static_cast<float>(side.feedback / 100));
    filter.SetParameterValue(first + 2, static_cast<float>(side.level / 100));
}

void SetBand(AudioFilter& filter, int band, double decibels) {
    filter.SetParameterValue(kEchoFirstBand + band, static_cast<float>((decibels + 15) / 15));
}

boost::intrusive_ptr<AudioFilter> Made(const Side& left, const Side& right) {
    boost::intrusive_ptr<AudioFilter> filter(new Echo);
    Set(*filter, left, kEchoLeftTime);
    Set(*filter, right, kEchoRightTime);
    return filter;
}

boost::intrusive_ptr<AudioFilter> Prepared(boost::intrusive_ptr<AudioFilter> filter, std::size_t channels = 1,
                                           float rate = 48000) {
    filter->Prepare(rate, 8192, AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

TEST(Echo, EveryRepeatIsQuieterByTheFeedback) {
    for (const float rate : {44100.0F, 48000.0F, 96000.0F, 192000.0F}) {
        for (const double feedback : {0.0, 30.0, 90.0, 100.0}) {
            const auto filter = Prepared(Made({.time = 25.3, .feedback = feedback, .level = 80}, {}), 1, rate);
            const auto response = test::ImpulseResponse(*filter, 100000)[0];
            const auto distance = static_cast<std::size_t>(std::lround(0.0253 * rate));
            EXPECT_EQ(response[0], 1);
            for (std::size_t repeat = 1; repeat <= 12; ++repeat) {
                const double expected = 0.8 * std::pow(feedback / 100, static_cast<double>(repeat - 1));
                if (expected == 0) {
                    EXPECT_EQ(response[repeat * distance], 0);
                } else {
                    EXPECT_NEAR(test::Decibels(response[repeat * distance]), test::Decibels(expected), 0.001);
                }
            }
            EXPECT_EQ(response[distance + 1], 0);
        }
    }
}

// Each echo alone, at the centre of a band: the n-th has gone through the equaliser n times.
TEST(Echo, EveryRepeatGoesThroughTheEqualiserOnceMore) {
    const double gains[] = {-3, -6, -1, -8, 0, -12, -4, -15};
    for (const float rate : {44100.0F, 96000.0F}) {
        const auto filter = Made({.time = 500, .feedback = 70, .level = 100}, {});
        for (int band = 0; band < 8; ++band)
            SetBand(*filter, band, gains[band]);
        Prepared(filter, 1, rate);
        const auto distance = static_cast<std::size_t>(rate / 2);
        const auto response = test::ImpulseResponse(*filter, 5 * distance)[0];
        for (std::size_t band = 0; band < 8; ++band) {
            double first = 0;
            for (int repeat = 1; repeat <= 4; ++repeat) {
                const auto begin = response.begin() + static_cast<std::ptrdiff_t>(distance) * repeat;
                const std::vector<float> echo(begin, begin + static_cast<std::ptrdiff_t>(distance));
                const double level = test::Decibels(std::abs(test::ResponseAt(echo, Echo::Centres()[band], rate))) -
                                     (repeat - 1) * test::Decibels(0.7);
                if (repeat == 1) first = level;
                EXPECT_NEAR(first, gains[band], 0.5) << band;
                EXPECT_NEAR(level, repeat * first, 0.05) << band << " " << repeat;
            }
        }
    }
}

// The greatest wiggles of the equaliser, all of the feedback.
TEST(Echo, NothingGetsLouderHoweverTheEqualiserIsSet) {
    for (const unsigned pattern : {0x55U, 0xAAU, 0x0FU, 0xF0U, 0x18U, 0xE7U}) {
        const auto filter = Made({.time = 1, .feedback = 100, .level = 100}, {});
        for (int band = 0; band < 8; ++band)
            SetBand(*filter, band, (pattern >> band & 1) != 0 ? 0 : -15);
        Prepared(filter, 1, 44100);
        const auto response = test::ImpulseResponse(*filter, 20 * 44100)[0];
        const auto energy = [&](std::size_t second) {
            const auto begin = response.begin() + static_cast<std::ptrdiff_t>(44100 * second);
            return test::Energy({begin, begin + 44100});
        };
        EXPECT_LE(energy(10), energy(1)) << pattern;
        EXPECT_LE(energy(19), energy(10)) << pattern;
    }
}

TEST(Echo, SidesHaveSettingsOfTheirOwnUnlessTheyAreLocked) {
    const Side left{.time = 10, .feedback = 0, .level = 50};
    const Side right{.time = 15, .feedback = 0, .level = 25};
    auto filter = Prepared(Made(left, right), 6);
    auto response = test::ImpulseResponse(*filter, 2000);
    const bool isRight[] = {false, true, false, false, false, true};
    for (std::size_t channel = 0; channel < 6; ++channel)
        EXPECT_NEAR(response[channel][isRight[channel] ? 720 : 480], isRight[channel] ? 0.25 : 0.5, 1e-6) << channel;
    EXPECT_EQ(filter->GetParameterValue(kEchoChannelCount), 6.0F / 32);

    filter->SetParameterValue(kEchoLock, 1);
    filter->Reset();
    response = test::ImpulseResponse(*filter, 2000);
    EXPECT_NEAR(response[1][480], 0.5, 1e-6);
    EXPECT_EQ(response[1][720], 0);
}

// What stands in the middle as well, which has no side of its own.
TEST(Echo, BouncingEchoesChangeSidesWithEveryRepeat) {
    const auto filter = Made({.time = 10, .feedback = 50}, {.time = 10, .feedback = 50});
    filter->SetParameterValue(kEchoBounce, 1);
    Prepared(filter, 2);
    struct {
        const char* name;
        float left, right;
    } const sounds[] = {{"middle", 1, 1}, {"left", 2, 0}, {"right", 0, 2}};
    for (const auto& sound : sounds) {
        test::Channels input(2, std::vector<float>(2500));
        input[0][0] = sound.left;
        input[1][0] = sound.right;
        filter->Reset();
        const auto output = test::Processed(*filter, input);
        for (std::size_t repeat = 1; repeat <= 4; ++repeat) {
            const std::size_t side = (repeat + 1) % 2;
            EXPECT_NEAR(output[side][480 * repeat], std::pow(0.5, static_cast<double>(repeat - 1)), 1e-6)
                << sound.name << " " << repeat;
            EXPECT_EQ(output[1 - side][480 * repeat], 0) << sound.name << " " << repeat;
        }
    }
}

TEST(Echo, TheTailEndsWhereTheEchoesHaveDecayed) {
    const auto filter = Prepared(Made({.time = 100, .feedback = 50}, {}));
    const std::size_t tail = filter->Tail();
    const auto response = test::ImpulseResponse(*filter, tail + 20000)[0];
    for (std::size_t i = tail + 1; i < response.size(); ++i)
        ASSERT_LT(std::abs(response[i]), 1e-5);
    // Of several channels, that of the longest time and of the most feedback.
    const auto leftIsLonger = Prepared(Made({.time = 100, .feedback = 50}, {.time = 10, .feedback = 20}), 2);
    const auto rightIsLonger = Prepared(Made({.time = 10, .feedback = 20}, {.time = 100, .feedback = 50}), 2);
    EXPECT_EQ(leftIsLonger->Tail(), tail);
    EXPECT_EQ(rightIsLonger->Tail(), tail);
    Set(*filter, {.time = 10000, .feedback = 100}, kEchoLeftTime);
    EXPECT_EQ(filter->Tail(), 600U * 48000);
}

} // namespace
