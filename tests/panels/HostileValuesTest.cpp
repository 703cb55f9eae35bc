// Panels on a filter that answers with what is no number, or none that a panel can show: they open, paint, are driven
// as by a user, and leave nothing in the filter that is no number either.

#include "PanelHost.h"
#include "kroui/controls/UI_ControlView.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/MultiChannelComponentBase.h"
#include "uit/controls/UI_RulerGridBase.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <optional>

using kroaudiofilterhost::FrequencyAxis;
using kroui::Point;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using kroui::ui::UI_Node;

namespace {

// Describes its parameters as an effect does, and answers what it is told to.
class HostileFilter : public qoc::components::MultiChannelComponentBase {
public:
    explicit HostileFilter(const qoc::components::EffectDescription& description)
        : MultiChannelComponentBase(kMostParameters), fEffect(description.create()) {
        fEffect->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
    }

    krocore::string16 GetComponentID() const override { return fEffect->GetComponentID(); }
    int GetParameterCount() const override { return fEffect->GetParameterCount(); }
    const kroaudiofilterhost::AudioFilterParameterInfo* GetParameterInfo(int index) const override {
        return fEffect->GetParameterInfo(index);
    }
    float GetParameterValue(int index) const override { return value ? *value : fEffect->GetParameterValue(index); }
    void SetParameterValue(int index, float written) override { Note(index, written); }
    void SetParameterValueQuietly(int index, float written) override { Note(index, written); }
    float GetSampleRate() const noexcept override { return sampleRate; }
    bool GetMagnitudeResponse(std::size_t count, const FrequencyAxis&, std::vector<float>& decibels) const override {
        decibels.assign(count, value.value_or(0));
        return true;
    }
    bool GetResponseCurve(int, std::size_t size, std::vector<float>& values) const override {
        values.assign(size, value.value_or(0));
        return true;
    }
    void OnProcess(const kroaudiofilterhost::AudioFilterBlock&) noexcept override {}

    float StoredValue(int index) const { return fEffect->GetParameterValue(index); }
    // So that panels which look at the dirty count look again.
    void Touch() { StoreParameter(0, ++fTouched); }

    std::optional<float> value;
    float sampleRate = 44100;
    int writes = 0;
    std::vector<int> writtenOddly; // parameters

private:
    static constexpr std::size_t kMostParameters = 400;

    void Note(int index, float written) {
        ++writes;
        if (!std::isfinite(written)) writtenOddly.push_back(index);
        fEffect->SetParameterValue(index, written);
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fEffect;
    float fTouched = 0;
};

class HostileValuesTest : public test::PanelHost<testing::TestWithParam<qoc::components::EffectDescription>> {
protected:
    HostileValuesTest() : PanelHost({1000, 800}) {}

    void Open() { ShowPanelOf(fFilter); }
    void Poll() {
        fFilter->Touch();
        fWindow.Advance(0.02);
    }
    void Drive(UI_Node& node) {
        if (!node.UI_IsVisible()) return;
        const boost::intrusive_ptr<UI_Node> keep(&node);
        const bool isControl = dynamic_cast<kroui::controls::UI_ControlView*>(&node) != nullptr ||
                               dynamic_cast<uit::controls::UI_RulerGridBase*>(&node) != nullptr;
        if (isControl) DriveControl(HeadlessWindow::CentreOf(node));
        const std::vector<boost::intrusive_ptr<UI_Node>> children(node.Children().begin(), node.Children().end());
        for (const auto& child : children)
            Drive(*child);
    }
    void DriveControl(Point middle) {
        fWindow.Press(middle);
        fWindow.MoveTo({middle.x + 9, middle.y - 7});
        fWindow.Release();
        fWindow.Wheel(middle, 1);
        for (const Key key : {Key::kUp, Key::kHome, Key::kEscape})
            fWindow.PressKey(key);
    }

    boost::intrusive_ptr<HostileFilter> fFilter{new HostileFilter(GetParam())};
};

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

TEST_P(HostileValuesTest, ValuesThatAreNoneAreShownSomehowAndNeverStored) {
    for (const float value : {kNaN, kInfinity, -kInfinity, kLargest, -kLargest}) {
        SCOPED_TRACE(value);
        fFilter->value = value;
        Open();
        if (std::isnan(value)) Drive(*fView);
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            EXPECT_TRUE(std::isfinite(fFilter->StoredValue(i))) << i;
        Close();
    }
}

TEST_P(HostileValuesTest, SampleRatesThatAreNoneLeaveTheParametersNumbers) {
    for (const float rate : {0.0F, kNaN, kInfinity, -1.0F, kLargest}) {
        SCOPED_TRACE(rate);
        fFilter->sampleRate = rate;
        Open();
        if (rate == 0) Drive(*fView);
        fFilter->sampleRate = 48000;
        Poll();
        fFilter->sampleRate = rate;
        Poll();
        EXPECT_THAT(fFilter->writtenOddly, testing::IsEmpty());
        Close();
    }
}

TEST_P(HostileValuesTest, DrivingReachesTheParameters) {
    Open();
    Drive(*fView);
    EXPECT_GT(fFilter->writes, 0);
}

INSTANTIATE_TEST_SUITE_P(Effects, HostileValuesTest, testing::ValuesIn(qoc::components::AllEffects()),
                         [](const auto& instance) { return std::string(instance.param.shortName); });

} // namespace
