#include "host/ParameterText.h"

#include "krocore/config/Error.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace qohost;

namespace {

class ParameterTextTest : public testing::Test {
protected:
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fAmplify =
        qoc::components::CreateEffect(qoc::components::kAmplifyComponentID); // stereo: channels, link, gain1, gain2
};

TEST_F(ParameterTextTest, ReadsNamesAndValuesInEveryForm) {
    struct Case {
        const char* text;
        int index;
        float value;
    };
    const Case cases[] = {
        {"gain1=-24", 2, 0.5F},         {"Gain 2 = -24 dB", 3, 0.5F},
        {"GAIN_1=+48", 2, 1.0F},        {"3=-96dB", 3, 0.0F},
        {"gain2=-inf", 3, 0.0F},        {"link=off", 1, 0.0F},
        {"Link Channels=yes", 1, 1.0F}, {"gain1=n:0.25", 2, 0.25F},
        {"gain1=n:1.2", 2, 1.2F},       {"1=n:1", 1, 1.0F},
    };
    for (const Case& c : cases) {
        const auto settings = ParseParameterText(*fAmplify, c.text);
        ASSERT_EQ(settings.size(), 1U) << c.text;
        EXPECT_EQ(settings[0].index, c.index) << c.text;
        EXPECT_FLOAT_EQ(settings[0].value, c.value) << c.text;
    }
}

TEST_F(ParameterTextTest, AnIDMeansItsOwnParameterAlone) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        const auto filter = effect.create();
        for (int i = 0; i < filter->GetParameterCount(); ++i) {
            const auto* const info = filter->GetParameterInfo(i);
            if (info == nullptr || info->IsReadOnly()) continue;
            const auto settings = ParseParameterText(*filter, info->GetID() + "=n:0.5");
            ASSERT_EQ(settings.size(), 1U) << effect.shortName << " " << info->GetID();
            EXPECT_EQ(settings.front().index, i) << effect.shortName << " " << info->GetID();
        }
    }
}

TEST_F(ParameterTextTest, FamilyNameSetsAllOfIt) {
    const auto settings = ParseParameterText(*fAmplify, "gain=0");
    ASSERT_EQ(settings.size(), 2U);
    EXPECT_EQ(settings[0].index, 2);
    EXPECT_EQ(settings[1].index, 3);
    EXPECT_FLOAT_EQ(settings[1].value, 2.0F / 3);
}

TEST_F(ParameterTextTest, RefusesWithTheReason) {
    struct Case {
        const char* text;
        const char* reason;
    };
    const Case cases[] = {
        {"gain1", "PARAM=VALUE"},
        {"", "PARAM=VALUE"},
        {"gain3=0", "gain1, gain2"},
        {"=1", "gain1"},
        {"99=1", "gain1"},
        {"-1=1", "gain1"},
        {"gain1=60", "-96 dB ... 48 dB"},
        {"gain1=loud", "48 dB"},
        {"link=maybe", "On, Off"},
        {"channels=2", "can't be set"},
        {"gain1=n:", "n:0.5"},
        {"gain1=n:inf", "n:0.5"},
    };
    for (const Case& c : cases) {
        try {
            ParseParameterText(*fAmplify, c.text);
            ADD_FAILURE() << c.text << " was taken";
        } catch (const krocore::config::Error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(c.reason)) << c.text;
        }
    }
}

TEST_F(ParameterTextTest, WhatIsWrittenReadsBack) {
    fAmplify->SetParameterValue(2, 0.5F);
    EXPECT_EQ(WriteParameterText(*fAmplify, 2), "gain1=-24 dB");
    EXPECT_EQ(WriteParameterText(*fAmplify, 1), "link=On");
    EXPECT_EQ(ParseParameterText(*fAmplify, WriteParameterText(*fAmplify, 2)).front().value, 0.5F);
    EXPECT_EQ(WriteParameterText(*fAmplify, 4), "");
}

} // namespace
