#include "kroaudiofilterhost/AudioFilter.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

using namespace kroaudiofilterhost;
using kromediatypes::AudioChannelLayout;

namespace {

class Info final : public AudioFilterParameterInfo {
public:
    enum class Use { kPlain, kMeasured, kFixed };
    explicit Info(Use use) : fUse(use) {}

    float ToNatural(float normalised) const override { return normalised; }
    float ToNormalised(float natural) const override { return natural; }
    std::string GetID() const override { return "some"; }
    krocore::string16 GetName() const override { return u"Some"; }
    bool IsReadOnly() const override { return fUse == Use::kMeasured; }
    bool IsAutomatable() const override { return fUse == Use::kPlain; }
    bool NeedsPrepare() const override { return fUse == Use::kFixed; }

private:
    Use fUse;
};

// Four parameters, of which the third is read only and the last can't be automated. The sound comes out negative,
// kLatency samples late.
class TestFilter final : public AudioFilter {
public:
    static constexpr std::size_t kLatency = 10;

    TestFilter() : AudioFilter(4) {}
    krocore::string16 GetComponentID() const override { return u"test"; }
    const AudioFilterParameterInfo* GetParameterInfo(int index) const override {
        if (fOnQuestion) fOnQuestion();
        if (index < 2) return nullptr;
        return index == 2 ? &fMeasured : &fFixed;
    }
    std::size_t Latency() const noexcept override { return kLatency; }
    void Measure(float value) { StoreParameter(2, value); }
    using AudioFilter::ReleaseParameters;
    using AudioFilter::TryHoldParameters;

    std::size_t fPreparedBlock = 0;
    std::function<void()> fOnQuestion; // asked for a description, as before each change
    std::vector<std::size_t> fChangesAtOnce;

protected:
    void OnProcess(const AudioFilterBlock& block) noexcept override {
        for (std::size_t i = 0; i < block.frames; ++i) {
            fPast.push_back(block.inputs[0][i]);
            for (float* const output : block.outputs)
                output[i] = -fPast.front();
            fPast.pop_front();
        }
    }
    void OnReset() noexcept override { fPast.assign(kLatency, 0.0F); }
    void OnParametersChanged(ParameterIndices changed) override { fChangesAtOnce.push_back(changed.size()); }
    AudioChannelLayout OutputLayoutFor(const AudioChannelLayout& input) const override {
        return input.size() == 1 ? AudioChannelLayout::Stereo() : input;
    }
    void OnPrepare(std::size_t maximumBlock) override {
        fPreparedBlock = maximumBlock;
        OnReset();
    }

private:
    Info fMeasured{Info::Use::kMeasured};
    Info fFixed{Info::Use::kFixed};
    std::deque<float> fPast;
};

class Recorder : public AudioFilterListener {
public:
    void ParameterChanged(AudioFilter& filter, const AudioFilterParameterChange& change) override {
        fChanges.push_back(change);
        if (fOnChange) fOnChange(filter);
    }
    void ParameterEditBegun(AudioFilter& /*filter*/, int index) override { fBegun.push_back(index); }
    void ParameterEditEnded(AudioFilter& /*filter*/, int index) override { fEnded.push_back(index); }

    void PrepareNeeded(AudioFilter& /*filter*/) override { ++fPreparesNeeded; }

    std::vector<AudioFilterParameterChange> fChanges;
    int fPreparesNeeded = 0;
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
                                            {-1, 1.0F},      {4, 1.0F},     {2, 0.5F}};
    for (const auto& [index, value] : writes) {
        fFilter->SetParameterValue(index, value);
        fFilter->SetParameterValueQuietly(index, value);
    }
    EXPECT_EQ(fFilter->GetParameterValue(0), 0.25F);
    EXPECT_EQ(fFilter->GetParameterValue(2), 0.0F);
    EXPECT_EQ(fFilter->GetParameterValue(4), 0.0F);
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
        std::vector<AudioFilterParameterValue>{{0, 0.25F}, {4, 1}, {-1, 1}, {2, 1}, {1, notANumber}, {1, 0.75F}});
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

TEST_F(AudioFilterTest, AutomationStoresAtOnceAndIsServedTogether) {
    fFilter->SetParameterValue(1, 0.5F);
    fRecorder.fChanges.clear();
    fFilter->fChangesAtOnce.clear();
    EXPECT_FALSE(fFilter->ServeAutomation());
    const std::int32_t dirtyCount = fFilter->GetParameterDirtyCount();
    fFilter->Automate(0, 0.25F);
    fFilter->Automate(0, 0.75F);
    fFilter->Automate(1, 1.5F);
    EXPECT_EQ(fFilter->GetParameterValue(0), 0.75F);
    EXPECT_EQ(fFilter->GetParameterValue(1), 1.5F);
    EXPECT_NE(fFilter->GetParameterDirtyCount(), dirtyCount);
    EXPECT_TRUE(fFilter->fChangesAtOnce.empty()) << "not on the sound thread";
    EXPECT_TRUE(fFilter->ServeAutomation());
    EXPECT_THAT(fFilter->fChangesAtOnce, testing::ElementsAre(2U));
    EXPECT_FALSE(fFilter->ServeAutomation());
    EXPECT_TRUE(fRecorder.fChanges.empty()) << "it is no edit";
    const std::int32_t after = fFilter->GetParameterDirtyCount();
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const std::pair<int, float> refused[] = {{0, notANumber}, {0, 0.75F}, {-1, 1.0F}, {4, 1.0F}, {2, 1.0F}, {3, 1.0F}};
    for (const auto& [index, value] : refused)
        fFilter->Automate(index, value);
    EXPECT_EQ(fFilter->GetParameterDirtyCount(), after);
    EXPECT_FALSE(fFilter->ServeAutomation());
}

TEST_F(AudioFilterTest, WhatOnlyAPreparationTakesOverIsTold) {
    fFilter->SetParameterValue(3, 0.5F);
    EXPECT_FALSE(fFilter->NeedsPrepare()) << "nothing is prepared";
    fFilter->Prepare(48000, 64, AudioChannelLayout::Stereo());
    fFilter->SetParameterValue(0, 0.5F);
    EXPECT_FALSE(fFilter->NeedsPrepare());
    fFilter->SetParameterValue(3, 0.75F);
    EXPECT_TRUE(fFilter->NeedsPrepare());
    EXPECT_EQ(fRecorder.fPreparesNeeded, 1);
    fFilter->Prepare(48000, 64, AudioChannelLayout::Stereo());
    EXPECT_FALSE(fFilter->NeedsPrepare());
}

// A constant comes out as -1 from the effect and as 1 around it.
TEST_F(AudioFilterTest, BypassFadesWithinFiveMilliseconds) {
    constexpr std::size_t kFade = 240;
    fFilter->Prepare(48000, 100, AudioChannelLayout::ForChannelCount(1));
    const std::vector<float> input(3000, 1.0F);
    std::vector<float> left(input.size());
    std::vector<float> right(input.size());
    const std::size_t blocks[] = {1, 100, 37};
    std::size_t turn = 0;
    for (std::size_t start = 0; start < input.size();) {
        const bool bypassed = start >= 1000 && start < 2000;
        const std::size_t next = start < 1000 ? 1000 : start < 2000 ? 2000 : 3000;
        const std::size_t frames = std::min(blocks[turn++ % 3], next - start);
        fFilter->SetBypassed(bypassed);
        const float* const inputs[] = {input.data() + start};
        float* const outputs[] = {left.data() + start, right.data() + start};
        fFilter->Process({inputs, outputs, frames});
        start += frames;
    }
    EXPECT_EQ(left, right) << "an output without an input of its own takes the last one";
    for (std::size_t i = TestFilter::kLatency; i < input.size(); ++i) {
        const double on = i < 1000   ? 0
                          : i < 2000 ? std::min(1.0, (i - 999.0) / kFade)
                                     : std::max(0.0, 1 - (i - 1999.0) / kFade);
        EXPECT_NEAR(left[i], 2 * on - 1, 1e-4) << i;
    }
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
    for (const int index : {0, AudioFilter::kAllParameters, 4, -2}) {
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
