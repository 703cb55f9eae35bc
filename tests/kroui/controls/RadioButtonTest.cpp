#include "ControlsFixture.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_RadioButton.h"

using namespace kroui;
using namespace kroui::controls;
using ui::Key;

namespace {

// A check box, a group of three in a view of their own, and another check box.
class RadioButtonTest : public test::ControlsTest {
protected:
    RadioButtonTest() {
        fBefore = Add<UI_Checkbox>({10, 10, 100, 24});
        const auto group = Add<ui::UI_SubView>({10, 40, 100, 90});
        for (std::size_t i = 0; i < 3; ++i) {
            fRadios[i] = Add<UI_RadioButton>({0, 30 * static_cast<float>(i), 100, 24}, group.get());
            Listen(*fRadios[i]);
        }
        fOther = Add<UI_RadioButton>({10, 140, 100, 24});
        fOther->SetValue(1);
        fAfter = Add<UI_Checkbox>({10, 170, 100, 24});
    }

    std::string States() const {
        std::string states;
        for (const auto& radio : fRadios)
            states += radio->IsChecked() ? 'x' : '-';
        return states;
    }

    boost::intrusive_ptr<UI_Checkbox> fBefore;
    boost::intrusive_ptr<UI_RadioButton> fRadios[3];
    boost::intrusive_ptr<UI_RadioButton> fOther; // of another group
    boost::intrusive_ptr<UI_Checkbox> fAfter;
};

TEST_F(RadioButtonTest, ClickChoosesInItsGroupAndOnlyTheClickedOneTells) {
    fRadios[0]->SetValue(1);
    fWindow.Click(Middle(*fRadios[2]));
    EXPECT_EQ(States(), "--x");
    EXPECT_EQ(Heard(), "012c");
    EXPECT_TRUE(fOther->IsChecked());
    EXPECT_TRUE(fRadios[2]->UI_HasFocus());
    fWindow.Click(Middle(*fRadios[2]));
    EXPECT_EQ(States(), "--x");
    EXPECT_EQ(Heard(), "02") << "it was on before";
}

TEST_F(RadioButtonTest, SetValueLeavesTheOthersAlone) {
    fRadios[0]->SetValue(1);
    fRadios[1]->SetValue(1);
    EXPECT_EQ(States(), "xx-");
    EXPECT_EQ(Heard(), "");
}

TEST_F(RadioButtonTest, ArrowsGoRoundTheGroupAndChoose) {
    struct Case {
        Key key;
        std::string states;
    };
    fRadios[0]->SetValue(1);
    fRadios[0]->UI_TakeFocus();
    for (const Case& c : {Case{Key::kDown, "-x-"}, Case{Key::kRight, "--x"}, Case{Key::kDown, "x--"},
                          Case{Key::kUp, "--x"}, Case{Key::kLeft, "-x-"}}) {
        EXPECT_TRUE(fWindow.PressKey(c.key));
        EXPECT_EQ(States(), c.states);
        EXPECT_EQ(Heard(), "012c");
        EXPECT_TRUE(fRadios[c.states.find('x')]->UI_HasFocus());
    }
    fRadios[2]->SetEnabled(false);
    fWindow.PressKey(Key::kDown);
    EXPECT_EQ(States(), "x--") << "a disabled one is passed over";
    EXPECT_FALSE(fWindow.PressKey(Key::kDown, ui::kShift));
}

TEST_F(RadioButtonTest, TabStopsOnceInTheGroupAtTheChosenOne) {
    fRadios[1]->SetValue(1);
    fBefore->UI_TakeFocus();
    fWindow.PressKey(Key::kTab);
    EXPECT_TRUE(fRadios[1]->UI_HasFocus());
    fWindow.PressKey(Key::kTab);
    EXPECT_TRUE(fOther->UI_HasFocus());
    fWindow.PressKey(Key::kTab);
    EXPECT_TRUE(fAfter->UI_HasFocus());

    fRadios[1]->SetValue(0);
    fRadios[0]->SetEnabled(false);
    fBefore->UI_TakeFocus();
    fWindow.PressKey(Key::kTab);
    EXPECT_TRUE(fRadios[1]->UI_HasFocus()) << "none is on: the first that can be chosen";
}

} // namespace
