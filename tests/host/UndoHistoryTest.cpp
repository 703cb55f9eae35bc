#include "host/UndoHistory.h"

#include "EchoFilter.h"
#include "host/FactoryPresets.h"
#include "host/Preset.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <vector>

using qohost::UndoHistory;

namespace {

class UndoHistoryTest : public testing::Test {
protected:
    int CountSteps() {
        int steps = 0;
        while (fHistory.Undo())
            ++steps;
        return steps;
    }
    float Value(int index) const { return fFilter->GetParameterValue(index); }

    boost::intrusive_ptr<EchoFilter> fFilter{new EchoFilter(0)};
    UndoHistory fHistory{fFilter, 3};
};

TEST_F(UndoHistoryTest, InterleavedBracketsAreOneStep) {
    fFilter->BeginParameterEdit(0);
    fFilter->SetParameterValue(0, 0.1F);
    fFilter->BeginParameterEdit(1);
    fFilter->SetParameterValue(1, 0.1F);
    fFilter->SetParameterValue(0, 0.2F);
    fFilter->EndParameterEdit(0);
    fFilter->SetParameterValue(1, 0.2F);
    fFilter->SetParameterValue(2, 0.9F); // changed along with the others, without a bracket of its own
    EXPECT_FALSE(fHistory.CanUndo());
    fFilter->EndParameterEdit(1);
    ASSERT_TRUE(fHistory.Undo());
    EXPECT_EQ(Value(0), 0.0F);
    EXPECT_EQ(Value(1), 0.0F);
    EXPECT_EQ(Value(2), 0.0F);
    EXPECT_FALSE(fHistory.CanUndo());
    ASSERT_TRUE(fHistory.Redo());
    EXPECT_EQ(Value(0), 0.2F);
    EXPECT_EQ(Value(1), 0.2F);
    EXPECT_EQ(Value(2), 0.9F);
}

TEST_F(UndoHistoryTest, BracketForAllParametersHoldsNestedOnes) {
    fFilter->BeginParameterEdit(-1);
    for (int i = 0; i < 2; ++i) {
        fFilter->BeginParameterEdit(0);
        fFilter->SetParameterValue(0, 0.5F + static_cast<float>(i));
        fFilter->EndParameterEdit(0);
    }
    fFilter->EndParameterEdit(-1);
    EXPECT_EQ(CountSteps(), 1);
}

// What a drag in a curve does: no brackets, its number of points written quietly.
TEST_F(UndoHistoryTest, OnePieceOfInputIsOneStepAndTakesItsQuietChangesAlong) {
    fHistory.InputBegins();
    fFilter->SetParameterValueQuietly(0, 0.5F);
    fFilter->SetParameterValue(1, 0.25F);
    fFilter->SetParameterValue(1, 0.5F);
    EXPECT_FALSE(fHistory.CanUndo());
    fHistory.InputEnds();
    fHistory.InputBegins();
    fFilter->SetParameterValueQuietly(2, 0.75F);
    fHistory.InputEnds();
    ASSERT_TRUE(fHistory.Undo());
    EXPECT_EQ(Value(0), 0.0F);
    EXPECT_EQ(Value(1), 0.0F);
    EXPECT_EQ(Value(2), 0.75F) << "quiet changes alone are no step";
    EXPECT_FALSE(fHistory.CanUndo());
    ASSERT_TRUE(fHistory.Redo());
    EXPECT_EQ(Value(0), 0.5F);
    EXPECT_EQ(Value(1), 0.5F);
}

TEST_F(UndoHistoryTest, ABracketThatOutlastsTheInputKeepsTheStepOpen) {
    fHistory.InputBegins();
    fFilter->BeginParameterEdit(0);
    fFilter->SetParameterValue(0, 0.5F);
    fHistory.InputEnds();
    EXPECT_FALSE(fHistory.CanUndo());
    fFilter->SetParameterValue(0, 0.75F);
    fFilter->EndParameterEdit(0);
    EXPECT_EQ(CountSteps(), 1);
}

TEST_F(UndoHistoryTest, OnlyWhatChangedAndIsNotQuietLeavesAStep) {
    fFilter->SetParameterValueQuietly(0, 0.5F);
    fFilter->EndParameterEdit(0); // without a beginning
    fFilter->BeginParameterEdit(1);
    fFilter->EndParameterEdit(1);
    fFilter->BeginParameterEdit(1);
    fFilter->SetParameterValue(1, 0.5F);
    fFilter->SetParameterValue(1, 0.0F); // abandoned
    fFilter->EndParameterEdit(1);
    EXPECT_FALSE(fHistory.CanUndo());
    EXPECT_EQ(Value(0), 0.5F);
}

TEST_F(UndoHistoryTest, UndoInAnOpenGestureIsIgnored) {
    fFilter->SetParameterValue(0, 0.5F);
    fFilter->BeginParameterEdit(0);
    fFilter->SetParameterValue(0, 0.7F);
    EXPECT_FALSE(fHistory.Undo());
    EXPECT_EQ(Value(0), 0.7F);
    fFilter->EndParameterEdit(0);
    EXPECT_EQ(CountSteps(), 2);
    EXPECT_EQ(Value(0), 0.0F);
}

TEST_F(UndoHistoryTest, NewChangeForgetsWhatCouldBeRedone) {
    fFilter->SetParameterValue(0, 0.1F);
    fFilter->SetParameterValue(0, 0.2F);
    fHistory.Undo();
    fFilter->SetParameterValue(1, 0.3F);
    EXPECT_FALSE(fHistory.CanRedo());
    EXPECT_EQ(CountSteps(), 2);
}

TEST_F(UndoHistoryTest, OldestStepsGoAtTheLimit) {
    for (int i = 1; i <= 5; ++i)
        fFilter->SetParameterValue(0, 0.1F * static_cast<float>(i));
    EXPECT_EQ(CountSteps(), 3);
    EXPECT_EQ(Value(0), 0.2F);
    EXPECT_EQ(fHistory.UndoName(), u"");
    EXPECT_NE(fHistory.RedoName(), u"");
}

// What a drag in a panel that sends no brackets does.
TEST(UndoHistory, ChangesOfOneNumberInQuickSuccessionAreOneStep) {
    constexpr int kGain = qoc::components::kAmplifyFirstGain;
    constexpr int kLink = qoc::components::kAmplifyLinkChannels;
    const auto filter = qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
    const float start = filter->GetParameterValue(kGain);
    double time = 0;
    UndoHistory history(filter, 100, [&] { return time; });
    const auto drag = [&](float from, float to) {
        for (int i = 0; i <= 10; ++i, time += 0.02)
            filter->SetParameterValue(kGain, from + (to - from) * static_cast<float>(i) / 10);
    };

    drag(0.1F, 0.4F);
    time += 1;
    drag(0.4F, 0.8F);
    ASSERT_TRUE(history.Undo());
    EXPECT_FLOAT_EQ(filter->GetParameterValue(kGain), 0.4F);
    ASSERT_TRUE(history.Redo());
    filter->SetParameterValue(kGain, 0.3F); // soon after, but not the same move
    ASSERT_TRUE(history.Undo());
    EXPECT_FLOAT_EQ(filter->GetParameterValue(kGain), 0.8F);
    history.Undo();
    history.Undo();
    EXPECT_EQ(filter->GetParameterValue(kGain), start);

    filter->SetParameterValue(kLink, 0);
    filter->SetParameterValue(kLink, 1);
    filter->SetParameterValue(kLink, 0);
    ASSERT_TRUE(history.Undo());
    EXPECT_EQ(filter->GetParameterValue(kLink), 1) << "switches are steps of their own";
    history.Undo();
    history.Undo();

    drag(0.2F, 0.5F);
    filter->SetParameterValue(kGain, start);
    EXPECT_FALSE(history.CanUndo()) << "back where it began";
}

// Looks at all of a filter whenever it tells of a change.
struct SettingsWatch final : kroaudiofilterhost::AudioFilterListener {
    explicit SettingsWatch(kroaudiofilterhost::AudioFilter& filter) : fFilter(filter) { filter.AddListener(*this); }
    SettingsWatch(const SettingsWatch&) = delete;
    SettingsWatch& operator=(const SettingsWatch&) = delete;
    ~SettingsWatch() override { fFilter.RemoveListener(*this); }
    void ParameterChanged(kroaudiofilterhost::AudioFilter& filter,
                          const kroaudiofilterhost::AudioFilterParameterChange& /*change*/) override {
        fSeen.insert(Settings(filter));
        ++fChanges;
    }
    void ParameterEditBegun(kroaudiofilterhost::AudioFilter& /*filter*/, int /*index*/) override {}
    void ParameterEditEnded(kroaudiofilterhost::AudioFilter& /*filter*/, int /*index*/) override {}

    // What can be set.
    static std::vector<float> Settings(const kroaudiofilterhost::AudioFilter& filter) {
        std::vector<float> settings;
        for (int index = 0; index < filter.GetParameterCount(); ++index) {
            const auto* const info = filter.GetParameterInfo(index);
            settings.push_back(info != nullptr && info->IsReadOnly() ? 0 : filter.GetParameterValue(index));
        }
        return settings;
    }

    kroaudiofilterhost::AudioFilter& fFilter;
    std::set<std::vector<float>> fSeen;
    int fChanges = 0;
};

// Presets, undo, redo: nobody ever sees, hears or designs half of the old settings and half of the new.
TEST(UndoHistory, EveryEffectGoesFromTheOldSettingsToTheNewAsOneChange) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        SCOPED_TRACE(std::string(effect.shortName));
        const auto filter = effect.create();
        filter->Prepare(48000, 512, kromediatypes::AudioChannelLayout::Stereo());
        UndoHistory history(filter);
        const auto before = SettingsWatch::Settings(*filter);
        int changes = 0;
        const auto expectOneChange = [&](const auto& act, const std::vector<float>* wanted) {
            const SettingsWatch watch(*filter);
            act();
            changes = watch.fChanges;
            const auto after = SettingsWatch::Settings(*filter);
            EXPECT_LE(watch.fSeen.size(), 1U);
            if (!watch.fSeen.empty()) {
                EXPECT_EQ(*watch.fSeen.begin(), after);
            }
            if (wanted != nullptr) {
                EXPECT_EQ(after, *wanted);
            }
        };
        expectOneChange([&] { qohost::ApplyPreset(*filter, qohost::FactoryPresets(effect).at(1)); }, nullptr);
        EXPECT_GT(changes, 0);
        const auto preset = SettingsWatch::Settings(*filter);
        expectOneChange([&] { EXPECT_TRUE(history.Undo()); }, &before);
        EXPECT_FALSE(history.CanUndo()) << "a preset is one step";
        expectOneChange([&] { EXPECT_TRUE(history.Redo()); }, &preset);
    }
}

// Each case: what happens between two changes of the same number, and whether they are one step.
TEST(UndoHistory, ChangesJoinByTimeAndPlaceOnly) {
    constexpr int kGain = qoc::components::kAmplifyFirstGain;
    struct Case {
        const char* what;
        double seconds;
        std::function<void(kroaudiofilterhost::AudioFilter&, UndoHistory&)> between;
        std::size_t steps;
    };
    const auto nothing = [](auto&, auto&) {};
    const auto otherNumber = [](auto& filter, auto&) { filter.SetParameterValue(kGain + 1, 0.3F); };
    const auto gesture = [](auto& filter, auto&) {
        filter.BeginParameterEdit(kGain);
        filter.SetParameterValue(kGain, 0.3F);
        filter.EndParameterEdit(kGain);
    };
    const auto emptyGesture = [](auto& filter, auto&) {
        filter.BeginParameterEdit(kGain);
        filter.EndParameterEdit(kGain);
    };
    const auto undoneAndRedone = [](auto&, auto& history) {
        history.Undo();
        history.Redo();
    };
    const auto input = [](auto& filter, auto& history) {
        history.InputBegins();
        filter.SetParameterValue(kGain, 0.3F);
        filter.SetParameterValue(kGain + 1, 0.3F);
        history.InputEnds();
    };
    const Case cases[] = {
        {"at once", 0, nothing, 1},
        {"just in time", 0.75, nothing, 1},
        {"just too late", 0.76, nothing, 2},
        {"another number", 0, otherNumber, 3},
        {"a gesture", 0, gesture, 3},
        {"a gesture about nothing", 0, emptyGesture, 1},
        {"undo and redo", 0, undoneAndRedone, 2},
        {"one input, two numbers", 0, input, 3},
    };
    for (const Case& c : cases) {
        double time = 0;
        const auto filter = qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
        filter->SetParameterValue(qoc::components::kAmplifyLinkChannels, 0);
        UndoHistory history(filter, 100, [&] { return time; });
        filter->SetParameterValue(kGain, 0.1F);
        time += c.seconds;
        c.between(*filter, history);
        filter->SetParameterValue(kGain, 0.2F);
        std::size_t steps = 0;
        for (; history.Undo(); ++steps) {
        }
        EXPECT_EQ(steps, c.steps) << c.what;
        for (std::size_t i = 0; i < steps; ++i)
            EXPECT_TRUE(history.Redo()) << c.what;
        EXPECT_EQ(filter->GetParameterValue(kGain), 0.2F) << c.what;
        EXPECT_FALSE(history.CanRedo()) << c.what;
    }
}

TEST_F(UndoHistoryTest, BracketsOfOneParameterNest) {
    fFilter->BeginParameterEdit(0);
    fFilter->BeginParameterEdit(0);
    fFilter->SetParameterValue(0, 0.5F);
    fFilter->EndParameterEdit(0);
    EXPECT_TRUE(fHistory.IsGestureOpen(0));
    EXPECT_FALSE(fHistory.IsGestureOpen(1));
    fFilter->SetParameterValue(1, 0.5F);
    fFilter->EndParameterEdit(0);
    EXPECT_FALSE(fHistory.IsGestureOpen(0));
    EXPECT_EQ(CountSteps(), 1);
}

TEST_F(UndoHistoryTest, WhatIsUndoneIsNoNewStepAndNamesFollow) {
    fFilter->SetParameterValue(0, 0.5F);
    fHistory.InputBegins(); // Ctrl+Z is a piece of input
    EXPECT_TRUE(fHistory.Undo());
    fHistory.InputEnds();
    EXPECT_FALSE(fHistory.CanUndo());
    EXPECT_TRUE(fHistory.CanRedo());
    EXPECT_EQ(fHistory.UndoName(), u"");
    EXPECT_NE(fHistory.RedoName(), u"");
}

} // namespace
