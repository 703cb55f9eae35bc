#include "qoc/components/EffectCatalogue.h"

#include "qoc/components/ComponentIDs.h"

#include <gtest/gtest.h>

#include <set>

using namespace qoc::components;

namespace {

TEST(EffectCatalogue, NamesEveryEffectOnceAndMakesWhatItNames) {
    std::set<std::u16string_view> ids;
    std::set<std::string_view> shortNames;
    std::set<krocore::string16> names;
    for (const EffectDescription& effect : AllEffects()) {
        ids.insert(effect.componentID);
        shortNames.insert(effect.shortName);
        names.insert(effect.DisplayName());
        const auto filter = CreateEffect(effect.componentID);
        ASSERT_EQ(filter != nullptr, effect.create != nullptr);
        if (filter != nullptr) {
            EXPECT_EQ(filter->GetComponentID(), effect.componentID);
        }
    }
    EXPECT_EQ(ids.size(), AllEffects().size());
    EXPECT_EQ(shortNames.size(), AllEffects().size());
    EXPECT_EQ(names.size(), AllEffects().size());
}

TEST(EffectCatalogue, FindsByShortNameInAnyCaseAndByExactIdentifier) {
    EXPECT_EQ(FindEffectByShortName("IntraClip")->componentID, kIntraClipComponentComponentID);
    EXPECT_EQ(FindEffectByShortName("AMPLIFY")->componentID, kAmplifyComponentID);
    EXPECT_EQ(FindEffectByShortName("amp"), nullptr);
    EXPECT_EQ(FindEffect(kDopplerComponentID)->shortName, "doppler");
    EXPECT_EQ(FindEffect(u"qoc.doppler"), nullptr);
    EXPECT_EQ(CreateEffect(u""), nullptr);
}

} // namespace
