#include "ControlsFixture.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_DisclosureTriangleButton.h"
#include "kroui/controls/UI_PictureButton.h"
#include "kroui/controls/UI_TextButton.h"
#include "kroui/limner/RecordingLimner.h"

using namespace kroui;
using namespace kroui::controls;
using ui::Key;

namespace {

constexpr Rect kFrame{20, 20, 100, 24};
constexpr Point kOutside{200, 200};

class ButtonTest : public test::ControlsTest {};

TEST_F(ButtonTest, CheckboxClickTurnsOverBeforeListenersAreTold) {
    const auto box = Add<UI_Checkbox>(kFrame);
    std::string values;
    box->NotifyWhenChangedInteractively(
        [&](UI_InteractiveControlChangedMessage*) { values += box->IsChecked() ? '1' : '0'; });
    box->NotifyWhenChanged([&](UI_ControlChangedMessage* message) {
        EXPECT_EQ(message->GetControl(), box.get());
        values += box->IsChecked() ? '1' : '0';
    });
    fWindow.Click(Middle(*box));
    EXPECT_EQ(values, "0111");
    box->SetValue(0);
    EXPECT_EQ(values, "0111") << "code sends nothing";
}

TEST_F(ButtonTest, ButtonActsOnlyOnAReleaseInside) {
    struct Case {
        const char* name;
        std::vector<Point> path;
        std::string heard;
        int value;
    };
    const Point inside{70, 32};
    const Case cases[] = {
        {"released inside", {}, "012c", 1},
        {"dragged out", {kOutside}, "03", 0},
        {"dragged out and in again", {kOutside, inside}, "012c", 1},
        {"just beyond the right edge", {{120, 32}}, "03", 0},
        {"just within it", {{119, 32}}, "012c", 1},
    };
    for (const Case& c : cases) {
        const auto box = Add<UI_Checkbox>(kFrame);
        Listen(*box);
        fWindow.Press(inside);
        EXPECT_TRUE(box->IsPressed()) << c.name;
        for (const Point& point : c.path)
            fWindow.MoveTo(point);
        fWindow.Release();
        EXPECT_EQ(Heard(), c.heard) << c.name;
        EXPECT_EQ(box->GetValue(), c.value) << c.name;
        EXPECT_FALSE(box->IsPressed()) << c.name;
        fRoot->ChildRemoveAll();
    }
}

TEST_F(ButtonTest, ButtonPressIsAbandonedWhenItCannotBeReleased) {
    const auto box = Add<UI_Checkbox>(kFrame);
    Listen(*box);
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"Escape", [&] { fWindow.PressKey(Key::kEscape); }},
        {"disabled", [&] { box->SetEnabled(false); }},
        {"hidden", [&] { box->UI_Show(false); }},
        {"taken out", [&] { fRoot->ChildRemove(box.get()); }},
        {"window lost the pointer", [&] { fWindow.Window().Deactivated(); }},
    };
    for (const auto& [name, end] : ends) {
        fWindow.Press(Middle(*box));
        end();
        fWindow.Release();
        EXPECT_EQ(Heard(), "03") << name;
        EXPECT_FALSE(box->IsChecked()) << name;
        EXPECT_FALSE(box->IsPressed()) << name;
        box->SetEnabled(true);
        box->UI_Show(true);
        if (!box->UI_GetParent()) fRoot->ChildPushBack(box);
    }
}

TEST_F(ButtonTest, ButtonDisabledTakesNothing) {
    const auto box = Add<UI_Checkbox>(kFrame);
    Listen(*box);
    box->SetEnabled(false);
    fWindow.Click(Middle(*box));
    box->UI_TakeFocus();
    EXPECT_FALSE(box->UI_HasFocus());
    EXPECT_FALSE(fWindow.PressKey(Key::kSpace));
    EXPECT_EQ(Heard(), "");
}

TEST_F(ButtonTest, ButtonKeysClickAndOthersGoOn) {
    const auto box = Add<UI_Checkbox>(kFrame);
    Listen(*box);
    box->UI_TakeFocus();
    EXPECT_TRUE(fWindow.PressKey(Key::kSpace));
    EXPECT_TRUE(fWindow.PressKey(Key::kEnter));
    EXPECT_EQ(Heard(), "012c012c");
    EXPECT_FALSE(fWindow.PressKey(Key::kSpace, ui::kCommand));
    EXPECT_FALSE(fWindow.PressKey(Key::kDown));
    EXPECT_FALSE(fWindow.PressKey(Key::kEscape));
    EXPECT_TRUE(fWindow.Window().KeyPressed({Key::kSpace, 0, 0, true})) << "a repeat is swallowed";
    EXPECT_EQ(Heard(), "");
}

TEST_F(ButtonTest, TextButtonSpringsBackOrLatches) {
    for (const bool springs : {true, false}) {
        const auto button = Add<UI_TextButton>(kFrame);
        Listen(*button);
        button->SetSpringLoaded(springs);
        fWindow.Press(Middle(*button));
        EXPECT_EQ(button->DownState(), springs);
        fWindow.Release();
        EXPECT_EQ(button->GetValue(), springs ? 0 : 1);
        fWindow.Click(Middle(*button));
        EXPECT_EQ(button->GetValue(), 0);
        EXPECT_EQ(Heard(), "012c012c");
        fRoot->ChildRemoveAll();
    }
}

TEST_F(ButtonTest, TextButtonKeyFlashesAPushButton) {
    const auto button = Add<UI_TextButton>(kFrame);
    button->UI_TakeFocus();
    fWindow.PressKey(Key::kEnter);
    EXPECT_TRUE(button->IsPressed());
    fWindow.Advance(0.5);
    EXPECT_FALSE(button->IsPressed());
    EXPECT_FALSE(button->DownState());
}

TEST_F(ButtonTest, ButtonCanActAtThePress) {
    const auto button = Add<UI_TextButton>(kFrame);
    button->SetNotificationOnMouseDown(true);
    Listen(*button);
    fWindow.Press(Middle(*button));
    EXPECT_EQ(Heard(), "012c");
    fWindow.MoveTo(kOutside);
    fWindow.Release();
    EXPECT_EQ(Heard(), "");
    EXPECT_FALSE(button->IsPressed());
}

TEST_F(ButtonTest, ButtonClickTakesTheFocusUnlessTold) {
    const auto first = Add<UI_Checkbox>(kFrame);
    const auto second = Add<UI_Checkbox>({20, 60, 100, 24});
    second->SetChangeFocusOnClick(false);
    fWindow.Click(Middle(*first));
    fWindow.Click(Middle(*second));
    EXPECT_TRUE(first->UI_HasFocus());
    EXPECT_TRUE(second->IsChecked());
}

TEST_F(ButtonTest, ButtonListenerMayRemoveIt) {
    auto button = Add<UI_TextButton>(kFrame);
    int calls = 0;
    button->NotifyWhenChanged([&](UI_ControlChangedMessage*) {
        ++calls;
        fRoot->ChildRemoveAll();
    });
    const Point middle = Middle(*button);
    button.reset();
    fWindow.Click(middle);
    fWindow.Click(middle);
    EXPECT_EQ(calls, 1);
}

TEST_F(ButtonTest, DisclosureTriangleDownStateIsNewWhenTheChangeIsTold) {
    const auto triangle = Add<UI_DisclosureTriangleButton>(kFrame);
    std::string states;
    triangle->NotifyWhenChangedInteractively([&](UI_InteractiveControlChangedMessage* message) {
        states += static_cast<char>('0' + message->GetChangeMessage());
        states += triangle->DownState() ? '+' : '-';
    });
    fWindow.Click(Middle(*triangle));
    EXPECT_EQ(states, "0-1+2+");
    states.clear();
    fWindow.Drag(Middle(*triangle), kOutside);
    EXPECT_EQ(states, "0+3+");
}

TEST_F(ButtonTest, CheckboxDownStateOfAnArchiveLeavesItsTick) {
    const auto box = Add<UI_Checkbox>(kFrame);
    UI_Checkbox::PropertiesOfCheckbox().Find("checked")->set(*box, true);
    UI_ControlView::PropertiesOfControlView().Find("downState")->set(*box, false);
    EXPECT_TRUE(box->IsChecked());
}

TEST_F(ButtonTest, SettersRepaintOnlyWhatIsAnotherNow) {
    const auto box = Add<UI_Checkbox>(kFrame);
    const auto button = Add<UI_TextButton>({20, 60, 100, 24});
    box->SetText(u"Ultra Quiet");
    box->SetValue(1);
    fWindow.Paint();
    box->SetText(u"Ultra Quiet");
    box->SetValue(1);
    box->SetCheckSize(14);
    box->SetEnabled(true);
    button->SetValue(0);
    button->SetCornerRadius(4);
    EXPECT_EQ(fWindow.Paint(), 0);
    box->SetValue(0);
    EXPECT_EQ(fWindow.Paint(), 100 * 24);
}

TEST_F(ButtonTest, ButtonNumbersOutOfBoundsAreHeld) {
    const auto box = Add<UI_Checkbox>(kFrame);
    box->SetFontSize(std::nanf(""));
    EXPECT_EQ(box->FontSize(), 1);
    box->SetCheckSize(1e9F);
    EXPECT_EQ(box->CheckSize(), 100);
    box->SetCornerRadius(-3);
    EXPECT_EQ(box->CornerRadius(), 0);
    const auto text = Add<UI_TextButton>(kFrame);
    text->SetTextAlignment(static_cast<limner::TextAlignment>(77));
    EXPECT_EQ(text->TextAlignment(), limner::TextAlignment::kLeft);
    fWindow.Paint();
}

TEST_F(ButtonTest, PictureButtonAsksForThePictureOnceAState) {
    const auto button = Add<UI_PictureButton>({20, 20, 30, 24});
    button->SetImageName("Reset");
    std::vector<std::string> asked;
    button->SetImageSupplier([&](const krocore::string8& name, bool enabled, float) -> limner::ImagePtr {
        asked.push_back(std::string(name) + (enabled ? " on" : " off"));
        if (!enabled) return nullptr;
        return fSupplier.DrawImage({40, 16}, 1, [](limner::Limner&) {});
    });
    EXPECT_TRUE(asked.empty());
    limner::RecordingLimner context;
    button->UI_Draw(&context);
    button->UI_Draw(&context);
    EXPECT_THAT(asked, testing::ElementsAre("Reset on"));
    // 40 x 16 in the 26 x 20 inside the margin: 26 x 10.4, on whole pixels.
    EXPECT_THAT(context.Operations(), testing::Contains(testing::HasSubstr("2 7 26 10")));

    button->SetEnabled(false);
    context.Clear();
    button->UI_Draw(&context);
    EXPECT_THAT(asked, testing::ElementsAre("Reset on", "Reset off", "Reset on"));
    EXPECT_THAT(context.Operations(), testing::Contains(testing::HasSubstr("0.4")));
}

TEST_F(ButtonTest, ButtonsSayWhatTheyAre) {
    const auto box = Add<UI_Checkbox>(kFrame);
    box->SetTextReference("($$$/Test/Quiet=Ultra Quiet)");
    box->SetValue(1);
    const ui::AccessibleInfo info = box->UI_GetAccessibleInfo();
    EXPECT_EQ(info.role, ui::Role::kCheckBox);
    EXPECT_EQ(info.name, u"Ultra Quiet");
    EXPECT_EQ(info.value, u"on");
    const auto picture = Add<UI_PictureButton>(kFrame);
    picture->UI_SetTooltip(u"Reset");
    EXPECT_EQ(picture->UI_GetAccessibleInfo().name, u"Reset");
}

} // namespace
