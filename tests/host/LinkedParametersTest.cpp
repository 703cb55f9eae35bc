#include "host/LinkedParameters.h"
#include "host/Preset.h"

#include "qoc/components/EffectCatalogue.h"

#include <gtest/gtest.h>

namespace qohost {
namespace {

using kroaudiofilterhost::AudioFilterParameterInfo;

// Whoever names a link must find its switch, in every effect, or the link would be for nothing.
TEST(LinkedParameters, EveryLinkOfEveryEffectHasItsSwitch) {
    for (const auto& effect : qoc::components::AllEffects()) {
        const auto filter = effect.create();
        std::size_t naming = 0;
        for (int index = 0; index < filter->GetParameterCount(); ++index)
            if (const auto* const info = filter->GetParameterInfo(index); info && !info->GetLinkID().empty()) ++naming;
        std::size_t members = 0;
        for (const LinkedParameters& group : FindLinkedParameters(*filter)) {
            EXPECT_EQ(filter->GetParameterInfo(group.linkSwitch)->GetKind(), AudioFilterParameterInfo::Kind::kSwitch);
            members += group.members.size();
        }
        EXPECT_EQ(members, naming) << effect.shortName;
        EXPECT_EQ(naming > 0, effect.shortName == "amplify");
    }
}

TEST(LinkedParameters, APresetForTwoChannelsHoldsForSixWhileItLinksThem) {
    const auto filter = qoc::components::FindEffectByShortName("amplify")->create();
    filter->Prepare(44100, 512, kromediatypes::AudioChannelLayout::ForChannelCount(6));
    constexpr int kFirst = 2;
    constexpr int kLast = 7;
    constexpr float kUnity = 96.0F / 144;
    const auto lastAfter = [&](const char* members) {
        ApplyPreset(*filter, ParsePreset(R"({"effect": "qoc.Amplify", "name": "x", )" + std::string(members) + "}"));
        EXPECT_FLOAT_EQ(filter->GetParameterValue(kFirst), 72.0F / 144);
        return filter->GetParameterValue(kLast);
    };
    EXPECT_FLOAT_EQ(lastAfter(R"("natural": {"gain1": -24, "gain2": -24})"), 72.0F / 144);
    EXPECT_FLOAT_EQ(lastAfter(R"("natural": {"gain1": -24})"), 72.0F / 144);
    EXPECT_FLOAT_EQ(lastAfter(R"("natural": {"gain1": -24, "gain2": 6})"), kUnity);
    EXPECT_FLOAT_EQ(lastAfter(R"("natural": {"gain1": -24, "link": false})"), kUnity);
}

} // namespace
} // namespace qohost
