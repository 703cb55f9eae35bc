// The small controls that scripts use: times, and the button with two pictures.

#include "uit/controls/UI_PictureToggleButton.h"
#include "uit/controls/UI_TimecodeDisplay.h"
#include "uit/controls/UI_TimecodeEdit.h"

#include "kroui/controls/UI_TextField.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

namespace uit::controls {
namespace {

using kroui::Size;
using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::limner::RecordingLimner;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

class ScriptControlsTest : public testing::Test {
protected:
    ScriptControlsTest() {
        window.Window().SetContent(root);
        root->UI_SetFrame({0, 0, 400, 300});
    }
    template <class Control>
    boost::intrusive_ptr<Control> Add(const kroui::Rect& frame) {
        boost::intrusive_ptr<Control> control(new Control);
        control->UI_SetFrame(frame);
        root->ChildPushBack(control);
        return control;
    }
    void Listen(kroui::controls::UI_InteractiveControlView& control) {
        control.NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage* message) {
            heard += static_cast<char>('0' + message->GetChangeMessage());
        });
        control.NotifyWhenChanged([this](UI_ControlChangedMessage*) { heard += 'c'; });
    }
    std::string Heard() { return std::exchange(heard, {}); }
    static std::vector<std::string> Drawn(kroui::ui::UI_Node& node) {
        RecordingLimner limner;
        node.UI_Draw(&limner);
        return limner.Operations();
    }
    static TimecodeSettings Frames() {
        TimecodeSettings settings;
        settings.format = TimecodeSettings::kPALFrames;
        return settings;
    }

    kroui::limner::CairoSupplier supplier;
    HeadlessWindow window{supplier, {400, 300}};
    boost::intrusive_ptr<kroui::ui::UI_SubView> root{new kroui::ui::UI_SubView};
    std::string heard;
};

TEST_F(ScriptControlsTest, TimecodeDisplayFollowsTheFormatAndRepaintsOnlyAnotherText) {
    const auto display = Add<UI_TimecodeDisplay>({10, 10, 120, 24});
    display->SetValue(1.5);
    EXPECT_THAT(Drawn(*display), Contains(StartsWith("Text \"0:01.500\"")));
    window.Paint();
    display->SetValue(1.5001);
    EXPECT_FALSE(window.Window().NeedsPaint());
    display->SetTimecodeFormat(Frames());
    EXPECT_TRUE(window.Window().NeedsPaint());
    EXPECT_THAT(Drawn(*display), Contains(StartsWith("Text \"00:00:01:13\"")));
    EXPECT_GE(display->UI_GetNaturalSize().width, supplier.MeasureText(u"23:59:59:24", {}).width);
}

TEST_F(ScriptControlsTest, TimecodeEditStepsByTheUnitOfItsFormat) {
    const auto edit = Add<UI_TimecodeEdit>({10, 10, 120, 24});
    Listen(*edit);
    edit->SetTimecodeFormat(Frames());
    edit->SetValue(1);
    edit->UI_TakeFocus();
    window.PressKey(Key::kUp);
    EXPECT_NEAR(edit->GetValue(), 1.04, 1e-9);
    window.PressKey(Key::kUp, kroui::ui::kShift);
    EXPECT_NEAR(edit->GetValue(), 1.44, 1e-9);
    window.Advance(1);
    EXPECT_EQ(Heard(), "0112c");
    edit->SetTimecodeFormat({});
    window.PressKey(Key::kDown);
    EXPECT_NEAR(edit->GetValue(), 1.34, 1e-9);
}

TEST_F(ScriptControlsTest, TimecodeEditTypesInTheFormatAndRefusesNonsense) {
    const auto edit = Add<UI_TimecodeEdit>({10, 10, 120, 24});
    Listen(*edit);
    edit->SetTimecodeFormat(Frames());
    window.DoubleClick(HeadlessWindow::CentreOf(*edit));
    ASSERT_NE(edit->EntryField(), nullptr);
    EXPECT_EQ(edit->EntryField()->GetText(), u"00:00:00:00");
    window.Type(u"1:30");
    window.PressKey(Key::kEnter);
    ASSERT_NE(edit->EntryField(), nullptr) << "there is no frame 30";
    EXPECT_TRUE(edit->EntryField()->HasError());
    window.Type(u"1:20");
    window.PressKey(Key::kEnter);
    EXPECT_EQ(edit->EntryField(), nullptr);
    EXPECT_NEAR(edit->GetValue(), 1.8, 1e-9);
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(edit->UI_GetAccessibleInfo().value, u"00:00:01:20");
    EXPECT_GE(edit->UI_GetNaturalSize().width, supplier.MeasureText(u"23:59:59:24", {}).width);
}

TEST_F(ScriptControlsTest, PictureToggleButtonShowsThePictureOfItsState) {
    const auto button = Add<UI_PictureToggleButton>({10, 10, 36, 24});
    Listen(*button);
    std::vector<std::string> asked;
    const auto pictures = [&](const krocore::string8& name, bool, float) -> kroui::limner::ImagePtr {
        if (std::string_view(name) == "NONE") return nullptr;
        asked.emplace_back(name);
        return supplier.DrawImage({32, 20}, 1, [](kroui::limner::Limner&) {});
    };
    button->SetImageNames("ON", "OFF");
    button->SetImageSupplier(pictures);
    EXPECT_EQ(button->UI_GetNaturalSize(), (Size{36, 24}));
    EXPECT_THAT(Drawn(*button), ElementsAre("Image 32x20 2 2 32 20 1"));
    EXPECT_EQ(asked.back(), "OFF");
    window.Click(HeadlessWindow::CentreOf(*button));
    EXPECT_EQ(button->GetValue(), 1);
    EXPECT_EQ(Heard(), "012c");
    asked.clear();
    button->SetPictureSize({16, 10});
    EXPECT_THAT(Drawn(*button), Contains("Image 32x20 10 7 16 10 1"));
    button->SetImageNames("ON", "NONE");
    button->SetValue(0);
    const std::vector<std::string> off = Drawn(*button);
    button->SetValue(1);
    EXPECT_NE(Drawn(*button), off) << "with one picture the ground tells the state";
}

} // namespace
} // namespace uit::controls
