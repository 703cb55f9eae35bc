#include "PanelHost.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

using namespace kroui;
using kroui::controls::UI_HotTextNumber;
using kroui::ui::Key;
using uit::controls::UI_EditNumber;

namespace {

struct Control {
    const char16_t* component;
    const char* id;
    int parameter;
};

// Every number of the panels that shows one parameter in its natural unit.
constexpr Control kControls[] = {
    {qoc::components::kStereoExpanderComponentID, "SE_Slider_Pan", 0},
    {qoc::components::kStereoExpanderComponentID, "SE_Slider_Expand", 1},
    {qoc::components::kPitchShiftComponentID, "PS_Ratio", 0},
    {qoc::components::kDopplerComponentID, "Radius", 1},
    {qoc::components::kDopplerComponentID, "Velocity", 2},
    {qoc::components::kDopplerComponentID, "StartingAngle", 3},
    {qoc::components::kDopplerComponentID, "CenterFront", 4},
    {qoc::components::kDopplerComponentID, "CenterRight", 5},
    {qoc::components::kNotchComponentID, "Frequency1", 0},
    {qoc::components::kNotchComponentID, "Gain1", 6},
    {qoc::components::kPitchCorrectComponentID, "CalibrationID", 3},
    {qoc::components::kPitchCorrectComponentID, "SensitivityID", 6},
    {qoc::components::kPitchCorrectComponentID, "AttackID", 7},
    {qoc::components::kScientificFilterComponentID, "Order", 2},
    {qoc::components::kScientificFilterComponentID, "Cutoff", 3},
    {qoc::components::kScientificFilterComponentID, "MasterGain", 8},
    {qoc::components::kScientificFilterComponentID, "LevelRange", 11},
};

class SweepTest : public test::PanelHost<testing::TestWithParam<Control>> {
protected:
    SweepTest() : PanelHost({900, 500}) {
        fFilter = qoc::components::CreateEffect(GetParam().component);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        ShowPanelOf(fFilter);
        fNode = fView->UI_FindNode(GetParam().id);
    }

    double Shown() const {
        if (const auto* const edit = dynamic_cast<UI_EditNumber*>(fNode)) return edit->GetValue();
        return dynamic_cast<UI_HotTextNumber&>(*fNode).GetValue();
    }
    // Where the number itself stands.
    Point Number() const {
        const auto* const edit = dynamic_cast<UI_EditNumber*>(fNode);
        return edit ? edit->UI_LocalToWindow(edit->Layout().number.Centre()) : ui::HeadlessWindow::CentreOf(*fNode);
    }
    // The filter holds what the control shows, through the parameter's own formula, and the polls leave it alone.
    void ExpectWritten(const std::string& how) {
        fWindow.Advance(1);
        const int index = GetParam().parameter;
        const float expected = fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(Shown()));
        EXPECT_NEAR(fFilter->GetParameterValue(index), expected, 1e-6) << GetParam().id << " " << how;
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    ui::UI_Node* fNode = nullptr;
};

TEST_P(SweepTest, MouseWheelKeysAndTypingEndInTheValueShown) {
    ASSERT_NE(fNode, nullptr);
    const Point number = Number();
    for (const float distance : {40.0F, -90.0F, 2000.0F, -4000.0F, 300.0F}) {
        const double before = Shown();
        fWindow.Drag(number, {number.x + distance, number.y});
        if (distance == 40.0F) {
            EXPECT_NE(Shown(), before) << GetParam().id << " does not move";
        }
        ExpectWritten("dragged by " + std::to_string(distance));
    }
    for (const float notches : {1.0F, -3.0F, 0.5F, 25.0F}) {
        fWindow.Wheel(number, notches);
        ExpectWritten("after wheel notches");
    }
    fNode->UI_TakeFocus();
    for (const Key key : {Key::kHome, Key::kUp, Key::kPageUp, Key::kEnd, Key::kDown, Key::kPageDown, Key::kLeft}) {
        fWindow.PressKey(key);
        ExpectWritten("after a key");
    }
    for (const char16_t* text : {u"1", u"2,5", u".75", u"99999999", u"-99999999", u"450"}) {
        fWindow.DoubleClick(number);
        fWindow.PressKey(Key::kCharacter, ui::kCommand, u'a');
        fWindow.Type(text);
        fWindow.PressKey(Key::kEnter);
        ExpectWritten("typed " + krocore::ToStdString(text));
    }
    fWindow.Click(number, ui::kCommand);
    ExpectWritten("reset");
}

INSTANTIATE_TEST_SUITE_P(Panels, SweepTest, testing::ValuesIn(kControls),
                         [](const auto& instance) { return std::string(instance.param.id); });

} // namespace
