// What the panels of the delay effects show beside their parameters: other units, and sides that are not there.

#include "PanelHost.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_Popup.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

using namespace kroui;
using namespace qoc::components;
using uit::controls::UI_EditNumber;

namespace {

struct Host : kroaudiofilterhost::AudioFilterHost {
    kroaudiofilterhost::AudioFilterTimeFormat GetTimeFormat() const override { return {}; }
    kroaudiofilterhost::AudioFilterTempo GetTempo() const override { return {.beatsPerMinute = 90}; }
};

class DelayPanelsTest : public test::PanelHost<> {
protected:
    DelayPanelsTest() : PanelHost({1100, 600}) {}
    ~DelayPanelsTest() override { fFilter->SetAudioFilterHost(nullptr); }

    void Open(const char16_t* component, std::size_t channels = 2) {
        fFilter = CreateEffect(component);
        fFilter->SetAudioFilterHost(&fHost);
        fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
        ShowPanelOf(fFilter);
    }
    UI_EditNumber& Number(const char* identifier) {
        return dynamic_cast<UI_EditNumber&>(*fView->UI_FindNode(identifier));
    }
    // Whether it takes part in the layout.
    bool IsThere(const char* identifier) {
        const ui::UI_Node* const node = fView->UI_FindNode(identifier);
        return node != nullptr && node->UI_IsVisibleInWindow();
    }
    void Type(const char* identifier, const char16_t* text) {
        UI_EditNumber& number = Number(identifier);
        fWindow.DoubleClick(number.UI_LocalToWindow(number.Layout().number.Centre()));
        fWindow.Type(text);
        fWindow.PressKey(ui::Key::kEnter);
        Poll();
    }
    double Natural(int index) const {
        return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index));
    }
    void Choose(int index, float value) {
        fFilter->SetParameterValue(index, value);
        Poll();
    }

    Host fHost;
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
};

// 250 ms are 12000 samples at 48 kHz and three eighths of a beat at 90 beats a minute.
TEST_F(DelayPanelsTest, EchoShowsAndTakesTimesInEveryUnit) {
    Open(kEchoComponentID);
    const float stored = 0.025F;
    Choose(kEchoLeftTime, stored);
    EXPECT_NEAR(Number("LeftTime").GetValue(), 250, 1e-3);
    EXPECT_FALSE(IsThere("LeftBeats"));

    Choose(kEchoTimeUnit, 0.5F);
    EXPECT_FALSE(IsThere("LeftTime"));
    EXPECT_NEAR(Number("LeftBeats").GetValue(), 0.375, 1e-5);
    EXPECT_EQ(fFilter->GetParameterValue(kEchoLeftTime), stored) << "another unit is another view only";
    Type("LeftBeats", u"1.5");
    EXPECT_NEAR(Natural(kEchoLeftTime), 1000, 1e-2);

    Choose(kEchoTimeUnit, 1);
    EXPECT_NEAR(Number("LeftSamples").GetValue(), 48000, 0.5);
    Type("LeftSamples", u"12");
    EXPECT_NEAR(Natural(kEchoLeftTime), 0.25, 1e-3);
}

TEST_F(DelayPanelsTest, EchoHidesTheRightSideWhereItIsLockedOrNotThere) {
    Open(kEchoComponentID);
    EXPECT_TRUE(IsThere("RightTime"));
    Choose(kEchoLock, 1);
    EXPECT_FALSE(IsThere("RightTime"));
    Open(kEchoComponentID, 1);
    EXPECT_FALSE(IsThere("RightTime"));
    EXPECT_TRUE(IsThere("LeftTime"));
}

TEST_F(DelayPanelsTest, DelayShowsSamplesAndHidesTheRightSideOfAMonoSound) {
    Open(kDelayComponentID);
    EXPECT_TRUE(IsThere("RightMix"));
    Choose(kDelayShowSamples, 1);
    EXPECT_NEAR(Number("LeftSamples").GetValue(), 4800, 0.1);
    Type("LeftSamples", u"-240");
    EXPECT_NEAR(Natural(kDelayLeftTime), -5, 1e-3);
    Open(kDelayComponentID, 1);
    EXPECT_FALSE(IsThere("RightMix"));
}

TEST_F(DelayPanelsTest, FlangerTakesThePeriodInPlaceOfTheRate) {
    Open(kFlangerComponentID);
    Choose(kFlangerShowPeriod, 1);
    EXPECT_FALSE(IsThere("Rate"));
    EXPECT_NEAR(Number("Period").GetValue(), 5, 1e-3);
    Type("Period", u"20");
    EXPECT_NEAR(Natural(kFlangerRate), 0.05, 1e-4);
}

} // namespace
