#include "kroaudiofilterhost/AudioFilter.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

using namespace kroaudiofilterhost;
using kromediatypes::AudioChannelLayout;

namespace {

class ReadOnlyInfo final : public AudioFilterParameterInfo {
public:
    float ToNatural(float normalised) const override { return normalised; }
    float ToNormalised(float natural) const override { return natural; }
    std::string GetID() const override { return "measured"; }
    krocore::string16 GetName() const override { return u"Measured"; }
    bool IsReadOnly() const override { return true; }
};

// Three parameters, of which the last is read only.
class TestFilter final : public AudioFilter {
public:
    TestFilter() : AudioFilter(3) {}
    krocore::string16 GetComponentID() const override { return u"test"; }
    const AudioFilterParameterInfo* GetParameterInfo(int index) const override {
        if (fOnQuestion) fOnQuestion();
        return index == 2 ? &fReadOnly : nullptr;
    }
    void Process(const AudioFilterBlock& /*block*/) noexcept override {}
    void Measure(float value) { StoreParameter(2, value); }
    using AudioFilter::ReleaseParameters;
    using AudioFilter::TryHoldParameters;

    std::size_t fPreparedBlock = 0;
    std::function<void()> fOnQuestion; // asked for a description, as before each change
    std::vector<std::size_t> fChangesAtOnce;

protected:
    void OnParametersChanged(ParameterChanges changes) override { fChangesAtOnce.push_back(changes.size()); }
    AudioChannelLayout OutputLayoutFor(const AudioChannelLayout& input) const override {
        return input.size() == 1 ? AudioChannelLayout::Stereo() : input;
    }
    void OnPrepare(std::size_t maximumBlock) override { fPreparedBlock = maximumBlock; }

private:
    ReadOnlyInfo fReadOnly;
};

class Recorder : public AudioFilterListener {
public:
    void ParameterChanged(AudioFilter& filter, const AudioFilterParameterChange& change) override {
        fChanges.push_back(change);
        if (fOnChange) fOnChange(filter);
    }
    void ParameterEditBegun(AudioFilter& /*filter*/, int index) override { fBegun.push_back(index); }
    void ParameterEditEnded(AudioFilter& /*filter*/, int index) override { fEnded.push_back(index); }

    std::vector<AudioFilterParameterChange> fChanges;
    std::vector<int> fBegun;
    std::vector<int> fEnded;
    std::function<void(AudioFilter&)> fOnChange;
};

class AudioFilterTest : public testing::Test {
protected:
    void SetUp() override { fFilter->AddListener(fRecorder); }
    void TearDown() override { fFilter->RemoveListener(fRecorder); }

    boost::intrusive_ptr<TestFilter> fFilter{new TestFilter};
    Recorder fRecorder;
};

TEST_F(AudioFilterTest, SettersKeepValuesOutsideTheRangeAndTellBothKinds) {
    fFilter->SetParameterValue(0, 1.2F);
    fFilter->SetParameterValueQuietly(1, -0.1F);
    EXPECT_EQ(fFilter->GetParameterValue(0), 1.2F);
    EXPECT_EQ(fFilter->GetParameterValue(1), -0.1F);
    ASSERT_EQ(fRecorder.fChanges.size(), 2U);
    EXPECT_EQ(fRecorder.fChanges[0].oldValue, 0.0F);
    EXPECT_EQ(fRecorder.fChanges[0].newValue, 1.2F);
    EXPECT_FALSE(fRecorder.fChanges[0].quiet);
    EXPECT_EQ(fRecorder.fChanges[1].index, 1);
    EXPECT_TRUE(fRecorder.fChanges[1].quiet);
}

TEST_F(AudioFilterTest, RefusedWritesChangeNothing) {
    fFilter->SetParameterValue(0, 0.25F);
    fRecorder.fChanges.clear();
    const std::int32_t dirtyCount = fFilter->GetParameterDirtyCount();
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const std::pair<int, float> writes[] = {{0, notANumber}, {0, infinity}, {0, -infinity}, {0, 0.25F},
                                            {-1, 1.0F},      {3, 1.0F},     {2, 0.5F}};
    for (const auto& [index, value] : writes) {
        fFilter->SetParameterValue(index, value);
        fFilter->SetParameterValueQuietly(index, value);
    }
    EXPECT_EQ(fFilter->GetParameterValue(0), 0.25F);
    EXPECT_EQ(fFilter->GetParameterValue(2), 0.0F);
    EXPECT_EQ(fFilter->GetParameterValue(3), 0.0F);
    EXPECT_EQ(fFilter->GetParameterDirtyCount(), dirtyCount);
    EXPECT_TRUE(fRecorder.fChanges.empty());
}

TEST_F(AudioFilterTest, ManyValuesAreOneChange) {
    fFilter->SetParameterValue(1, 0.5F);
    fRecorder.fChanges.clear();
    fFilter->fChangesAtOnce.clear();
    std::vector<std::pair<float, float>> seen;
    fRecorder.fOnChange = [&](AudioFilter& filter) {
        EXPECT_EQ(fRecorder.fEnded.size(), 0U);
        EXPECT_TRUE(fFilter->fChangesAtOnce.empty()) << "nothing is made before all know";
        seen.emplace_back(filter.GetParameterValue(0), filter.GetParameterValue(1));
    };
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    fFilter->SetParameterValues(
        std::vector<AudioFilterParameterValue>{{0, 0.25F}, {3, 1}, {-1, 1}, {2, 1}, {1, notANumber}, {1, 0.75F}});
    EXPECT_THAT(seen, testing::ElementsAre(std::pair(0.25F, 0.75F), std::pair(0.25F, 0.75F)));
    ASSERT_EQ(fRecorder.fChanges.size(), 2U);
    EXPECT_EQ(fRecorder.fChanges[1].oldValue, 0.5F);
    EXPECT_FALSE(fRecorder.fChanges[1].quiet);
    EXPECT_THAT(fFilter->fChangesAtOnce, testing::ElementsAre(2U));
    EXPECT_THAT(fRecorder.fBegun, testing::ElementsAre(AudioFilter::kAllParameters));
    EXPECT_THAT(fRecorder.fEnded, testing::ElementsAre(AudioFilter::kAllParameters));
    fFilter->SetParameterValues(std::vector<AudioFilterParameterValue>{{0, 0.25F}});
    fFilter->SetParameterValues({});
    EXPECT_EQ(fRecorder.fChanges.size(), 2U);
    EXPECT_EQ(fFilter->fChangesAtOnce.size(), 1U);
}

TEST_F(AudioFilterTest, WhileManyValuesAreStoredTheSoundThreadLeavesThemAlone) {
    int refused = 0;
    fFilter->fOnQuestion = [&] { refused += fFilter->TryHoldParameters() ? 0 : 1; };
    fFilter->SetParameterValues(std::vector<AudioFilterParameterValue>{{0, 0.25F}, {1, 0.75F}});
    EXPECT_EQ(refused, 2);
    fFilter->fOnQuestion = {};
    EXPECT_TRUE(fFilter->TryHoldParameters());
    EXPECT_FALSE(fFilter->TryHoldParameters());
    fFilter->ReleaseParameters();
    EXPECT_TRUE(fFilter->TryHoldParameters());
    fFilter->ReleaseParameters();
}

TEST_F(AudioFilterTest, DirtyCountMovesWithEveryKindOfChange) {
    std::int32_t before = fFilter->GetParameterDirtyCount();
    const auto hasMoved = [&] { return std::exchange(before, fFilter->GetParameterDirtyCount()) != before; };
    fFilter->SetParameterValue(0, 0.5F);
    EXPECT_TRUE(hasMoved());
    fFilter->SetParameterValueQuietly(0, 0.6F);
    EXPECT_TRUE(hasMoved());
    fFilter->Measure(0.7F);
    EXPECT_TRUE(hasMoved());
}

TEST_F(AudioFilterTest, BracketsReachListenersForParametersAndForAll) {
    for (const int index : {0, AudioFilter::kAllParameters, 3, -2}) {
        fFilter->BeginParameterEdit(index);
        fFilter->EndParameterEdit(index);
    }
    EXPECT_THAT(fRecorder.fBegun, testing::ElementsAre(0, -1));
    EXPECT_THAT(fRecorder.fEnded, testing::ElementsAre(0, -1));
}

TEST_F(AudioFilterTest, ListenersMayBeAddedAndRemovedWhileTheyAreTold) {
    Recorder second;
    Recorder late;
    fFilter->AddListener(second);
    fRecorder.fOnChange = [&](AudioFilter& filter) {
        filter.RemoveListener(fRecorder);
        filter.RemoveListener(second);
        filter.AddListener(late);
    };
    fFilter->SetParameterValue(0, 0.5F);
    fFilter->SetParameterValue(0, 0.6F);
    EXPECT_EQ(fRecorder.fChanges.size(), 1U);
    EXPECT_TRUE(second.fChanges.empty());
    EXPECT_EQ(late.fChanges.size(), 1U);
    fFilter->RemoveListener(late);
}

TEST_F(AudioFilterTest, PrepareSetsBusesOrRefusesAndLeavesEverything) {
    fFilter->Prepare(48000, 256, AudioChannelLayout::Mono());
    const auto expectUntouched = [&] {
        EXPECT_EQ(fFilter->GetNumberOfInputChannels(), 1U);
        EXPECT_EQ(fFilter->GetNumberOfOutputChannels(), 2U);
        EXPECT_EQ(fFilter->GetSampleRate(), 48000.0F);
        EXPECT_EQ(fFilter->fPreparedBlock, 256U);
    };
    expectUntouched();
    EXPECT_THROW(fFilter->Prepare(48000, 1, AudioChannelLayout()), krocore::config::Error);
    EXPECT_THROW(fFilter->Prepare(48000, 1, AudioChannelLayout::Discrete(33)), krocore::config::Error);
    EXPECT_THROW(fFilter->Prepare(0, 1, AudioChannelLayout::Stereo()), krocore::config::Error);
    EXPECT_THROW(fFilter->Prepare(std::nanf(""), 1, AudioChannelLayout::Stereo()), krocore::config::Error);
    expectUntouched();
    try {
        fFilter->Prepare(999.5F, 1, AudioChannelLayout::Stereo());
        ADD_FAILURE();
    } catch (const krocore::config::Error& error) {
        EXPECT_STREQ(error.what(), "An effect can't work at a sample rate of 999.5 Hz.");
    }
}

} // namespace
