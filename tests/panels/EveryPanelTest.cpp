// What holds for the panel of every effect, each driven with the effect itself.

#include "AllocationCounter.h"
#include "PanelHost.h"
#include "kroui/limner/Image.h"
#include "qoc/components/EffectCatalogue.h"

#include <gmock/gmock.h>

#include <random>

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterChange;
using kroaudiofilterhost::AudioFilterParameterInfo;

namespace {

// Notes which parameters are written, quietly or not.
class WriteRecorder : public kroaudiofilterhost::AudioFilterListener {
public:
    explicit WriteRecorder(AudioFilter& filter) : fFilter(filter) { fFilter.AddListener(*this); }
    ~WriteRecorder() override { fFilter.RemoveListener(*this); }
    void ParameterChanged(AudioFilter&, const AudioFilterParameterChange& change) override {
        written.push_back(change.index);
    }
    void ParameterEditBegun(AudioFilter&, int index) override { written.push_back(index); }
    void ParameterEditEnded(AudioFilter&, int index) override { written.push_back(index); }

    std::vector<int> written;

private:
    AudioFilter& fFilter;
};

class EveryPanelTest : public test::PanelHost<testing::TestWithParam<qoc::components::EffectDescription>> {
protected:
    EveryPanelTest() : PanelHost({1200, 800}) {
        fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Stereo());
    }

    void Open() { ShowPanelOf(fFilter); }
    void Poll() { fWindow.Advance(0.1); }

    // As a preset or automation does it: most parameters, some of them to outside their range.
    void ChangeParameters() {
        // How the pitch shifter's panel splits the ratio depends on the semitones that it shows.
        const int first = GetParam().shortName == "pitchshift" ? 1 : 0;
        for (int i = first; i < fFilter->GetParameterCount(); ++i) {
            const AudioFilterParameterInfo* const info = fFilter->GetParameterInfo(i);
            if (info && Random(3) > 0) fFilter->SetParameterValue(i, AnyValue(*info));
        }
    }
    float AnyValue(const AudioFilterParameterInfo& info) {
        if (info.GetKind() == AudioFilterParameterInfo::Kind::kChoice)
            return info.FromItem(Random(info.GetItemCount()));
        if (info.GetKind() == AudioFilterParameterInfo::Kind::kSwitch) return static_cast<float>(Random(2));
        return static_cast<float>(Random(1201) - 100) / 1000.0F;
    }
    int Random(int count) { return static_cast<int>(fRandom() % static_cast<unsigned>(count)); }

    // What a user can see and hear of the panel.
    std::string Description() const {
        std::string text;
        Describe(*fView, text);
        return text;
    }
    static void Describe(const kroui::ui::UI_Node& node, std::string& text) {
        if (!node.UI_IsVisible()) return;
        const kroui::ui::AccessibleInfo info = node.UI_GetAccessibleInfo();
        text += krocore::ToStdString(info.name + u" = " + info.value) + (info.enabled ? "\n" : " (disabled)\n");
        for (const auto& child : node.Children())
            Describe(*child, text);
    }
    std::vector<std::uint32_t> Picture() {
        fWindow.Window().InvalidateAll();
        const kroui::limner::ImagePtr picture = fWindow.Snapshot();
        return {picture->Pixels().begin(), picture->Pixels().end()};
    }

    boost::intrusive_ptr<AudioFilter> fFilter = GetParam().create();
    std::mt19937 fRandom{1};
};

TEST_P(EveryPanelTest, FollowsChangesFromElsewhereAsIfItHadBeenOpenedAfterThemAndWritesNothing) {
    for (int round = 0; round < 5; ++round) {
        Open();
        ChangeParameters();
        const WriteRecorder recorder(*fFilter);
        Poll();
        const std::string description = Description();
        const std::vector<std::uint32_t> picture = Picture();
        Open();
        EXPECT_EQ(description, Description());
        EXPECT_TRUE(picture == Picture());
        EXPECT_THAT(recorder.written, testing::IsEmpty());
    }
}

TEST_P(EveryPanelTest, PollsWithoutAChangeAllocateNothing) {
    Open();
    const std::size_t before = AllocationCount();
    for (int i = 0; i < 10; ++i)
        Poll();
    EXPECT_EQ(AllocationCount(), before);
}

INSTANTIATE_TEST_SUITE_P(Effects, EveryPanelTest, testing::ValuesIn(qoc::components::AllEffects()),
                         [](const auto& instance) { return std::string(instance.param.shortName); });

} // namespace
