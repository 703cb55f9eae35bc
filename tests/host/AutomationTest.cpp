#include "host/Automation.h"

#include "host/OfflineRenderer.h"
#include "krocore/config/Error.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace qohost;
using testing::DoubleNear;
using testing::HasSubstr;
using testing::Pointwise;

namespace {

class AutomationTest : public testing::Test {
protected:
    static constexpr int kLink = 1;

    void SetUp() override {
        fAmplify->Prepare(1000, 512, kromediatypes::AudioChannelLayout::Stereo());
        fAmplify->SetParameterValue(kLink, 0);
    }

    // The gain in dB at frames, in order.
    std::vector<double> GainsAt(std::string_view text, const std::vector<std::uint64_t>& frames, double origin = 0) {
        Automation automation(*fAmplify, text, origin);
        std::vector<double> gains;
        for (const std::uint64_t frame : frames) {
            automation.Apply(*fAmplify, frame);
            gains.push_back(
                std::round(1000 * fAmplify->GetParameterInfo(2)->ToNatural(fAmplify->GetParameterValue(2))) / 1000);
        }
        return gains;
    }
    std::string ErrorOf(std::string_view text) {
        try {
            Automation(*fAmplify, text);
        } catch (const krocore::config::Error& error) {
            return error.what();
        }
        return "no error";
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fAmplify =
        qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
};

TEST_F(AutomationTest, PointsHoldFromTheirTimeAndLinesLeadToThem) {
    constexpr const char* kLines = "time,parameter,value\n# fade\n\n1, gain1, -6 dB\n2,gain1,-12,line\r\n2, gain2, 3\n"
                                   "3, Gain 1, 0 dB, step\n";
    const std::vector<std::uint64_t> frames = {0, 999, 1000, 1500, 1999, 2000, 2999, 3000, 90000};
    const std::vector<double> expected = {0, 0, -6, -9, -11.994, -12, -12, 0, 0};
    EXPECT_THAT(GainsAt(kLines, frames), Pointwise(DoubleNear(1e-4), expected));
    fAmplify->SetParameterValue(2, fAmplify->GetParameterInfo(2)->GetDefault());
    constexpr const char* kJSON = R"( [{"time": 2, "parameter": "gain1", "value": -12, "shape": "line"},
        {"time": 1, "parameter": "gain1", "value": "-6 dB"}, {"time": 3.0, "parameter": "gain1", "value": 0}])";
    EXPECT_THAT(GainsAt(kJSON, frames), Pointwise(DoubleNear(1e-4), expected));
    // Half a second after the line has begun.
    EXPECT_THAT(GainsAt(kLines, {0, 100, 500}, 1.5), Pointwise(DoubleNear(1e-4), std::vector<double>{-9, -9.6, -12}));
}

TEST_F(AutomationTest, LinkedParametersGoTogether) {
    fAmplify->SetParameterValue(kLink, 1);
    Automation automation(*fAmplify, "1,gain1,-6\n2,gain2,-12,line\n");
    automation.Apply(*fAmplify, 1500);
    EXPECT_EQ(fAmplify->GetParameterValue(2), fAmplify->GetParameterValue(3));
    EXPECT_NEAR(fAmplify->GetParameterInfo(2)->ToNatural(fAmplify->GetParameterValue(2)), -9, 1e-4);
}

TEST_F(AutomationTest, TellsWhereBlocksHaveToEnd) {
    Automation automation(*fAmplify, "0.1,gain1,-6\n0.2,gain1,0,line\n0.25,gain2,1\n");
    std::vector<std::uint64_t> changes;
    for (std::uint64_t frame = 0; frame < 1000;) {
        automation.Apply(*fAmplify, frame);
        frame = automation.NextChange(frame + 1);
        changes.push_back(frame);
    }
    ASSERT_EQ(changes.size(), 7U);
    EXPECT_THAT(std::vector(changes.begin(), changes.end() - 1), testing::ElementsAre(100, 128, 160, 192, 200, 250));
    EXPECT_GT(changes.back(), 1U << 30U) << "never again";
}

TEST_F(AutomationTest, WhatIsWrongIsToldWithItsPlace) {
    const std::pair<const char*, const char*> wrong[] = {
        {"0,gain1\n", "line 1: a line is"},
        {"0,gain1,1\nx,gain1,2\n", "line 2: \"x\" is no time"},
        {"\n-1,gain1,2", "line 2: \"-1\" is no time"},
        {"0,loudness,1", "line 1: "},
        {"0,gain1,loud", "line 1: "},
        {"0,gain1,99", "line 1: "},
        {"0,gain1,1,curve", "\"curve\" is no shape"},
        {"0,channels,1", "line 1: "},
        {"[{\"time\": 0}]", "point 1: there is no text \"parameter\""},
        {"[{\"time\": 0, \"parameter\": \"gain1\"}]", "point 1: there is no value"},
        {"[1]", "point 1: "},
        {"[{", "no list of points"},
    };
    for (const auto& [text, told] : wrong)
        EXPECT_THAT(ErrorOf(text), HasSubstr(told)) << text;
    const auto dynamics = qoc::components::CreateEffect(qoc::components::kDynamicsComponentID);
    EXPECT_THROW(Automation(*dynamics, "0,lookAhead,1"), krocore::config::Error) << "it sets the latency";
}

// A switch over a constant: the sample at which the gain begins to move is the one that was asked for.
TEST_F(AutomationTest, ARenderChangesAtTheSample) {
    Sound input = Sound::Silent(1000, kromediatypes::AudioChannelLayout::Stereo(), 3000);
    for (auto& channel : input.channels)
        std::fill(channel.begin(), channel.end(), 0.5F);
    for (const std::size_t block : {7, 4096}) {
        const auto output = RenderOffline(
            *fAmplify, input,
            {.blockFrames = block, .automation = Automation(*fAmplify, "1.234,gain,-6\n"), .progress = {}});
        ASSERT_TRUE(output);
        EXPECT_EQ(output->channels[1][1233], 0.5F);
        EXPECT_LT(output->channels[1][1234], 0.5F);
        EXPECT_NEAR(output->channels[0][2999], 0.5 * std::pow(10, -0.3), 1e-6);
        fAmplify->SetParameterValue(2, fAmplify->GetParameterInfo(2)->GetDefault());
        fAmplify->SetParameterValue(3, fAmplify->GetParameterInfo(3)->GetDefault());
    }
}

} // namespace
