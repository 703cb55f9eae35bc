// What controls offer to those who cannot see them, and what a window's observer hears.

#include "ControlsFixture.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_DisclosureTriangleButton.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TabGroup.h"
#include "kroui/controls/UI_TextButton.h"
#include "kroui/controls/UI_TextField.h"
#include "kroui/ui/UI_NodeManager.h"

#include <cmath>

namespace kroui::test {
namespace {

using namespace controls;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using ui::AccessibleAction;
using ui::AccessibleRequest;

class AccessibilityTest : public ControlsTest, public ui::AccessibilityObserver {
protected:
    ~AccessibilityTest() override { fWindow.Window().SetAccessibilityObserver(nullptr); }

    bool Do(ui::UI_Node& node, const AccessibleRequest& request) {
        return fWindow.Window().DoAccessibleAction(node, request);
    }
    bool Do(ui::UI_Node& node, AccessibleAction action, double value = 0) {
        return Do(node, {.action = action, .value = value});
    }

    void Observe() { fWindow.Window().SetAccessibilityObserver(this); }
    // What has been told since the last call: "id:changes", with "#part" where it is a part's.
    std::vector<std::string> Told() {
        fWindow.Advance(0.01);
        return std::exchange(fTold, {});
    }
    void AccessibleChanged(ui::UI_Node& node, int part, std::uint8_t changes) override {
        std::string text = NameOf(node);
        if (part >= 0) text += "#" + std::to_string(part);
        text += ":";
        constexpr std::string_view kLetters = "nvstc"; // name, value, state, text, children
        for (std::size_t bit = 0; bit < kLetters.size(); ++bit)
            if ((changes >> bit & 1U) != 0) text += kLetters[bit];
        fTold.push_back(text);
        if (fOnChange) std::exchange(fOnChange, {})();
    }
    void AccessibleFocusMoved(ui::UI_Node* node) override {
        fTold.push_back("focus " + (node ? NameOf(*node) : "nowhere"));
    }
    void AccessibleRootsChanged() override { fTold.emplace_back("roots"); }
    void AccessibleGone(ui::UI_Node& node) override { fGone.push_back(NameOf(node)); }
    static std::string NameOf(const ui::UI_Node& node) { return std::string(std::string_view(node.UI_GetID())); }

    template <class Control>
    boost::intrusive_ptr<Control> Named(std::string_view id, ui::UI_Node* parent = nullptr) {
        const auto control = Add<Control>({150, 10, 100, 24}, parent);
        control->UI_SetID(id);
        return control;
    }

    std::vector<std::string> fTold;
    std::vector<std::string> fGone;
    boost::function<void()> fOnChange;
};

TEST_F(AccessibilityTest, NumbersTellTheirRangeAndTakeValuesAsIfTheyWereTyped) {
    const auto number = Add<UI_HotTextNumber>({0, 0, 100, 24});
    number->SetMinMaxValue(-20, 40, 5);
    number->SetIncrement(0.5);
    number->SetDecimalPlaces(1);
    number->SetTextLabel(u"dB");
    number->SetValue(1);
    EXPECT_EQ(number->UI_GetAccessibleInfo().range, (ui::AccessibleRange{1, -20, 40, 0.5}));
    Listen(*number);
    const struct {
        AccessibleRequest request;
        double value;
    } kCases[] = {
        {{.action = AccessibleAction::kSetValue, .value = 2.125}, 2.125},
        {{.action = AccessibleAction::kSetValue, .value = 1000}, 40},
        {{.action = AccessibleAction::kReset}, 5},
        {{.action = AccessibleAction::kSetText, .text = u"-3.5 dB"}, -3.5},
    };
    for (const auto& [request, value] : kCases) {
        EXPECT_TRUE(Do(*number, request));
        EXPECT_EQ(number->GetValue(), value);
        EXPECT_EQ(Heard(), "012c");
    }
    EXPECT_FALSE(Do(*number, {.action = AccessibleAction::kSetText, .text = u"loud"}));
    EXPECT_FALSE(Do(*number, AccessibleAction::kSetValue, std::nan("")));
    EXPECT_FALSE(Do(*number, AccessibleAction::kPress)) << "not offered";
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(number->GetValue(), -3.5);
}

TEST_F(AccessibilityTest, StepsRunAsThoseOfTheArrowKeys) {
    const auto number = Add<UI_HotTextNumber>({0, 0, 100, 24});
    number->SetIncrement(2);
    Listen(*number);
    EXPECT_TRUE(Do(*number, AccessibleAction::kIncrease));
    EXPECT_TRUE(Do(*number, AccessibleAction::kIncrease));
    EXPECT_TRUE(Do(*number, AccessibleAction::kDecrease));
    EXPECT_EQ(number->GetValue(), 2);
    EXPECT_EQ(Heard(), "0111");
    fWindow.Advance(0.6);
    EXPECT_EQ(Heard(), "2c");
}

TEST_F(AccessibilityTest, ButtonsArePressedAndTellWhetherTheyAreOn) {
    const auto box = Add<UI_Checkbox>({0, 0, 100, 24});
    const auto radio = Add<UI_RadioButton>({0, 30, 100, 24});
    const auto push = Add<UI_TextButton>({0, 60, 100, 24});
    const auto triangle = Add<UI_DisclosureTriangleButton>({0, 90, 100, 24});
    EXPECT_EQ(push->UI_GetAccessibleInfo().checked, std::nullopt);
    for (UI_Button* const button : std::initializer_list<UI_Button*>{box.get(), radio.get()}) {
        EXPECT_EQ(button->UI_GetAccessibleInfo().checked, false);
        Listen(*button);
        EXPECT_TRUE(Do(*button, AccessibleAction::kPress));
        EXPECT_EQ(button->UI_GetAccessibleInfo().checked, true);
        EXPECT_EQ(Heard(), "012c");
    }
    Listen(*triangle);
    EXPECT_EQ(triangle->UI_GetAccessibleInfo().expanded, false);
    EXPECT_FALSE(Do(*triangle, AccessibleAction::kCollapse));
    EXPECT_TRUE(Do(*triangle, AccessibleAction::kExpand));
    EXPECT_FALSE(Do(*triangle, AccessibleAction::kExpand)) << "it is open";
    EXPECT_EQ(triangle->UI_GetAccessibleInfo().expanded, true);
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(AccessibilityTest, ChoicesAreParts) {
    const auto popup = Add<UI_Popup>({0, 0, 100, 24});
    for (const char16_t* const item : {u"Hann", u"Hamming", u"Blackman"})
        popup->AddItem(item);
    popup->SetItemEnabled(2, false);
    popup->SetValue(0);
    Listen(*popup);
    ASSERT_EQ(popup->UI_GetAccessiblePartCount(), 3);
    EXPECT_EQ(popup->UI_GetAccessiblePart(1).info.name, u"Hamming");
    EXPECT_TRUE(popup->UI_GetAccessiblePart(0).info.selected);
    EXPECT_TRUE(Do(*popup, {.action = AccessibleAction::kPress, .part = 1}));
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(popup->GetValue(), 1);
    EXPECT_FALSE(Do(*popup, {.action = AccessibleAction::kPress, .part = 2})) << "disabled";
    EXPECT_FALSE(Do(*popup, {.action = AccessibleAction::kPress, .part = 3})) << "there is none";
    EXPECT_FALSE(Do(*popup, AccessibleAction::kIncrease)) << "the last that can be chosen";
    EXPECT_TRUE(Do(*popup, AccessibleAction::kSetValue, 0));
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_TRUE(Do(*popup, AccessibleAction::kExpand));
    EXPECT_EQ(popup->UI_GetAccessibleInfo().expanded, true);
    EXPECT_FALSE(Do(*popup, AccessibleAction::kDecrease)) << "behind its menu";
    popup->Close();

    const auto tabs = Add<UI_TabGroup>({0, 100, 300, 100});
    tabs->AddTab(u"Settings");
    tabs->AddTab(u"Advanced");
    EXPECT_EQ(tabs->UI_GetAccessiblePart(1).info.role, ui::Role::kTab);
    EXPECT_TRUE(Do(*tabs, {.action = AccessibleAction::kPress, .part = 1}));
    EXPECT_EQ(tabs->GetValue(), 1);
    EXPECT_FALSE(Do(*tabs, AccessibleAction::kIncrease));
}

TEST_F(AccessibilityTest, TextIsReplacedInOneEntry) {
    const auto field = Add<UI_TextField>({0, 0, 100, 24});
    field->SetText(u"Sharp");
    Listen(*field);
    EXPECT_TRUE(Do(*field, {.action = AccessibleAction::kSetText, .text = u"Warm"}));
    EXPECT_EQ(field->GetText(), u"Warm");
    EXPECT_EQ(Heard(), "012c");
    EXPECT_EQ(field->UI_GetAccessibleInfo().caret, (ui::AccessibleCaret{4, 4, 4}));
    EXPECT_TRUE(Do(*field, {.action = AccessibleAction::kSetText}));
    EXPECT_EQ(field->GetText(), u"");
}

TEST_F(AccessibilityTest, NothingIsDoneThatAUserCouldNotDo) {
    const auto box = Add<UI_Checkbox>({0, 0, 100, 24});
    Listen(*box);
    const auto refused = [&](const char* why) {
        EXPECT_FALSE(Do(*box, AccessibleAction::kPress)) << why;
        EXPECT_EQ(Heard(), "") << why;
    };
    box->SetEnabled(false);
    refused("disabled");
    box->SetEnabled(true);
    fRoot->UI_Show(false);
    refused("hidden");
    fRoot->UI_Show(true);
    const boost::intrusive_ptr<ui::UI_SubView> dialog(new ui::UI_SubView);
    fWindow.Window().ShowOverlay(dialog, {200, 200, 50, 50}, true);
    refused("behind a dialog");
    fWindow.Window().HideOverlay(dialog.get());
    fRoot->ChildRemove(box.get());
    refused("elsewhere");
}

TEST_F(AccessibilityTest, AnActionIsOneThingTheUserDoes) {
    const auto box = Add<UI_Checkbox>({0, 0, 100, 24});
    Listen(*box);
    fWindow.Window().SetInputObserver([this](bool begins) { fHeard += begins ? '(' : ')'; });
    Do(*box, AccessibleAction::kPress);
    EXPECT_EQ(Heard(), "(012c)");
}

TEST_F(AccessibilityTest, AnActionMayCloseThePanelAtEachOfItsMessages) {
    for (const int at : {0, 1, 2}) {
        auto number = Add<UI_HotTextNumber>({0, 0, 100, 24});
        number->NotifyWhenChangedInteractively([&, at](UI_InteractiveControlChangedMessage* message) {
            if (message->GetChangeMessage() != at) return;
            number.reset();
            fRoot->ChildRemoveAll();
        });
        Observe();
        Do(*number, AccessibleAction::kSetValue, 7);
        EXPECT_EQ(number, nullptr);
        EXPECT_EQ(fRoot->ChildCount(), 0U);
        Told();
    }
}

TEST_F(AccessibilityTest, ChangesAreToldTogetherAndOnce) {
    const auto number = Named<UI_HotTextNumber>("number");
    const auto box = Named<UI_Checkbox>("box");
    const auto popup = Named<UI_Popup>("popup");
    popup->AddItem(u"A");
    popup->AddItem(u"B");
    popup->SetValue(0);
    Observe();
    EXPECT_THAT(Told(), IsEmpty()) << "what was there before";
    for (const double value : {3, 4, 5})
        number->SetValue(value);
    number->UI_Invalidate();
    box->SetEnabled(false);
    box->SetChecked(true);
    box->SetName(u"Bypass");
    popup->SetValue(1);
    EXPECT_THAT(fTold, IsEmpty()) << "not before the loop turns";
    EXPECT_THAT(Told(), ElementsAre("number:v", "box:nvs", "popup:v", "popup#0:s", "popup#1:s"));
    number->SetValue(9);
    number->SetValue(5);
    EXPECT_THAT(Told(), IsEmpty()) << "taken back";
    popup->AddItem(u"C");
    EXPECT_THAT(Told(), ElementsAre("popup:c"));
}

TEST_F(AccessibilityTest, FocusTextAndLabelsAreTold) {
    const auto field = Named<UI_TextField>("field");
    const auto other = Named<UI_HotTextNumber>("other");
    other->UI_SetFrame({150, 50, 100, 24});
    const auto label = Add<UI_StaticText>({40, 50, 100, 24});
    label->UI_SetID("label");
    label->SetText(u"Gain");
    Observe();
    field->UI_TakeFocus();
    EXPECT_THAT(Told(), ElementsAre("focus field"));
    fWindow.Type(u"ab");
    EXPECT_THAT(Told(), ElementsAre("field:vt"));
    fWindow.PressKey(ui::Key::kLeft);
    EXPECT_THAT(Told(), ElementsAre("field:t"));
    label->SetText(u"Level");
    EXPECT_THAT(Told(), ElementsAre("label:n", "other:n"));
    fRoot->ChildRemove(field.get());
    EXPECT_THAT(Told(), testing::Contains("focus nowhere"));
}

TEST_F(AccessibilityTest, ComingAndGoingIsToldByTheParentAndByTheOneThatGoes) {
    fRoot->UI_SetID("root");
    const auto group = Named<ui::UI_SubView>("group");
    const auto box = Named<UI_Checkbox>("box", group.get());
    const auto neighbour = Named<UI_Checkbox>("neighbour");
    Observe();
    group->UI_Show(false);
    box->SetChecked(true);
    EXPECT_THAT(Told(), ElementsAre("root:c"));
    group->UI_Show(true);
    EXPECT_THAT(Told(), ElementsAre("root:c")) << "what changed out of sight is asked for anew";
    box->SetChecked(false);
    EXPECT_THAT(Told(), ElementsAre("box:vs"));
    fRoot->ChildRemove(group.get());
    EXPECT_THAT(fGone, ElementsAre("box", "group"));
    EXPECT_THAT(Told(), ElementsAre("root:c"));
    fRoot->ChildPushBack(group);
    box->SetChecked(true);
    EXPECT_THAT(Told(), ElementsAre("root:c")) << "new ones have no change to tell";
    const boost::intrusive_ptr<ui::UI_SubView> dialog(new ui::UI_SubView);
    fWindow.Window().ShowOverlay(dialog, {0, 0, 10, 10}, true);
    EXPECT_THAT(Told(), ElementsAre("roots"));
    fWindow.Window().SetContent(nullptr);
    EXPECT_THAT(Told(), ElementsAre("roots"));
}

TEST_F(AccessibilityTest, AnObserverMayTakeNodesOutAndStopObservingWhileItIsTold) {
    const auto first = Named<UI_Checkbox>("first");
    auto second = Named<UI_Checkbox>("second");
    const auto third = Named<UI_Checkbox>("third");
    Observe();
    const auto change = [&] {
        for (UI_Checkbox* const box : {first.get(), second.get(), third.get()})
            if (box) box->SetChecked(!box->IsChecked());
    };
    change();
    fOnChange = [&] {
        fRoot->ChildRemove(second.get());
        second.reset();
    };
    fWindow.Advance(0.0011);
    EXPECT_THAT(std::exchange(fTold, {}), UnorderedElementsAre("first:vs", "third:vs"));
    change();
    fOnChange = [this] { fWindow.Window().SetAccessibilityObserver(nullptr); };
    EXPECT_EQ(Told().size(), 1U);
    change();
    EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(AccessibilityTest, WithoutAnObserverNothingIsScheduled) {
    const auto box = Named<UI_Checkbox>("box");
    const std::size_t timers = ui::UI_NodeManager::Get().TimerCount();
    box->SetChecked(true);
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), timers);
    Observe();
    box->SetChecked(false);
    fWindow.Window().SetAccessibilityObserver(nullptr);
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), timers);
}

} // namespace
} // namespace kroui::test
