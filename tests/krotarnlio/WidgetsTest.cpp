#include "LioFixture.h"

#include "kroui/controls/TextMeasure.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_DisplayNumber.h"
#include "kroui/controls/UI_Menu.h"
#include "kroui/controls/UI_PictureButton.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TextButton.h"
#include "kroui/limner/RecordingLimner.h"
#include "orrin/dictionary.h"

#include <cmath>
#include <fstream>
#include <iterator>

using namespace krotarnlio;
using namespace krotarnlio::test;
using namespace kroui::controls;
using kroui::Rect;
using orrin::any_regular_t;
using orrin::name_t;

namespace {

class WidgetsTest : public LioTest {
protected:
    // The pop-up of a widget, behind its label if it has one.
    UI_Popup& Popup(std::string_view identifier) const {
        kroui::ui::UI_Node& node = Node(identifier);
        auto* const itself = dynamic_cast<UI_Popup*>(&node);
        return itself ? *itself : dynamic_cast<UI_Popup&>(*node.Child(0));
    }
    void Choose(std::string_view identifier, int row) {
        UI_Popup& popup = Popup(identifier);
        popup.Open();
        ASSERT_TRUE(popup.IsOpen());
        fWindow.Click(popup.Menu()->ItemRectInWindow(row).Centre());
    }
    std::u16string Shown(std::string_view identifier) const {
        return Popup(identifier).UI_GetAccessibleInfo().value.c_str();
    }
    // The bytes of a picture of that many pixels.
    std::vector<std::uint8_t> PNG(kroui::Size size) const {
        const auto image = fSupplier.DrawImage(size, 1, [](kroui::limner::Limner&) {});
        const std::string file = testing::TempDir() + "lio_picture.png";
        kroui::limner::WritePNG(*image, file);
        std::ifstream bytes(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(bytes), {}};
    }
    float TextWidth(std::u16string_view text) const { return std::ceil(fSupplier.MeasureText(text, {}).width); }
};

TEST_F(WidgetsTest, CheckboxWritesABoolAndFollowsItsCells) {
    LoadWidgets("interface: on: false; label: 'Off';", "checkbox(identifier: 'box', bind: @on, name: @label);");
    Click("box");
    EXPECT_EQ(Get("on"), true);
    fWindow.PressKey(kroui::ui::Key::kSpace);
    EXPECT_EQ(Get("on"), false);
    Set("on", true);
    Set("label", "A longer label");
    EXPECT_TRUE(The<UI_Checkbox>("box").IsChecked());
    EXPECT_EQ(The<UI_Checkbox>("box").Text(), u"A longer label");
    EXPECT_GT(FrameInWindow("box").width, TextWidth(u"A longer label")) << "laid out again";
}

TEST_F(WidgetsTest, RadioButtonsOfOneCellAreAGroupWhateverStandsBesideThem) {
    LoadWidgets(
        "interface: a: 1; b: @x;",
        "radio_button(identifier: 'a1', bind: @a, value: 1); radio_button(identifier: 'bx', bind: @b, value: @x);"
        "radio_button(identifier: 'a2', bind: @a, value: 2); radio_button(identifier: 'by', bind: @b, value: @y);");
    Click("a2");
    EXPECT_EQ(Get("a"), 2);
    EXPECT_FALSE(The<UI_RadioButton>("a1").IsChecked());
    EXPECT_TRUE(The<UI_RadioButton>("bx").IsChecked());
    fWindow.PressKey(kroui::ui::Key::kDown);
    EXPECT_EQ(Get("a"), 1);
    EXPECT_EQ(Get("b"), name_t("x"));
    Set("a", 3);
    EXPECT_FALSE(The<UI_RadioButton>("a1").IsChecked() || The<UI_RadioButton>("a2").IsChecked());
}

TEST_F(WidgetsTest, ToggleButtonIsAChoiceWithAValueAndASwitchWithout) {
    LoadWidgets("interface: mode: 'low'; on: false;",
                "toggle_button(identifier: 'low', name: 'Low', bind: @mode, value: 'low', button_style: @flat);"
                "toggle_button(identifier: 'high', name: 'High', bind: @mode, value: 'high', button_style: 2);"
                "toggle_button(identifier: 'on', name: 'On', bind: @on);");
    EXPECT_EQ(The<UI_TextButton>("low").GetButtonStyle(), UI_TextButton::ButtonStyle::kFlat);
    EXPECT_EQ(The<UI_TextButton>("high").GetButtonStyle(), UI_TextButton::ButtonStyle::kRound);
    Click("high");
    EXPECT_EQ(Get("mode"), "high");
    EXPECT_FALSE(The<UI_TextButton>("low").IsChecked());
    Click("high");
    EXPECT_EQ(Get("mode"), "high");
    EXPECT_TRUE(The<UI_TextButton>("high").IsChecked()) << "a choice that is made stays made";
    Click("on");
    EXPECT_EQ(Get("on"), true);
    Click("on");
    EXPECT_EQ(Get("on"), false);
}

TEST_F(WidgetsTest, ButtonSetsItsValueOrTurnsABoolOver) {
    LoadWidgets("interface: gain: 5; start: 3; on: true;",
                "button(identifier: 'reset', name: 'Reset', bind: @gain, value: @start);"
                "button(identifier: 'link', name: 'Link', bind: @on); button(identifier: 'idle', name: 'Idle');");
    Click("reset");
    EXPECT_EQ(Get("gain"), 3);
    EXPECT_FALSE(The<UI_TextButton>("reset").DownState());
    Set("start", 4);
    Click("reset");
    EXPECT_EQ(Get("gain"), 4);
    EXPECT_TRUE(The<UI_TextButton>("link").DownState());
    Click("link");
    EXPECT_EQ(Get("on"), false);
    Click("idle");
    EXPECT_FALSE(The<UI_TextButton>("idle").DownState());
}

TEST_F(WidgetsTest, ButtonWithAPictureGetsItFromTheResources) {
    fResources["RESET"] = PNG({40, 30});
    fResources["RESET_2X"] = PNG({80, 60});
    LoadWidgets("interface: on: false;", "button(identifier: 'both', image: 'RESET', name: 'Reset', bind: @on);"
                                         "button(identifier: 'picture', image: 'RESET', alt: 'Reset', bind: @on);");
    EXPECT_EQ(FrameInWindow("picture").width, 44) << "the picture and 2 around it";
    EXPECT_GT(FrameInWindow("both").width, 40 + TextWidth(u"Reset"));
    kroui::limner::RecordingLimner limner;
    Node("picture").UI_Draw(&limner);
    EXPECT_THAT(limner.Operations(), testing::Contains(testing::StartsWith("Image 40x30 2 2 40 30")));
    kroui::limner::RecordingLimner sharpLimner({0, 0, 100, 100}, 2);
    Node("picture").UI_Draw(&sharpLimner);
    EXPECT_THAT(sharpLimner.Operations(), testing::Contains(testing::StartsWith("Image 80x60 2 2 40 30")));
    EXPECT_EQ(Node("picture").UI_GetAccessibleInfo().name, u"Reset");
    Click("picture");
    EXPECT_EQ(Get("on"), true);
}

TEST_F(WidgetsTest, PopupChoosesTheValuesOfItsItems) {
    LoadWidgets("interface: mode: 'fast'; at: 1;",
                "popup(identifier: 'mode', bind: @mode, items: [{ name: 'Slow', value: 'slow' }, '-',"
                "      { name: 'Fast', value: 'fast' }, { name: 'Never', value: 'never', enabled: false }]);"
                "popup(identifier: 'at', bind: @at, items: ['Zero', '$$$/Lio/First=First']);");
    EXPECT_EQ(Shown("mode"), u"Fast");
    EXPECT_EQ(Shown("at"), u"First");
    Choose("mode", 0);
    EXPECT_EQ(Get("mode"), "slow");
    Popup("mode").UI_TakeFocus();
    fWindow.PressKey(kroui::ui::Key::kEnd);
    EXPECT_EQ(Get("mode"), "fast") << "the last one can't be chosen";
    Choose("at", 0);
    EXPECT_EQ(Get("at"), 0);
    Set("mode", "never");
    EXPECT_EQ(Shown("mode"), u"Never");
    Set("mode", "other");
    EXPECT_EQ(Shown("mode"), u"");
}

TEST_F(WidgetsTest, PopupFollowsACellWithItsItems) {
    LoadWidgets("interface: channels: [{ name: 'L', value: 0 }, { name: 'R', value: 1 }]; channel: 1;",
                "popup(identifier: 'channel', bind: @channel, items: @channels);");
    orrin::array_t items;
    items.emplace_back(orrin::dictionary_t{{name_t("name"), "Centre"}, {name_t("value"), 1}});
    Set("channels", items);
    EXPECT_EQ(Shown("channel"), u"Centre");
    EXPECT_EQ(Get("channel"), 1) << "new items choose nothing";
    Set("channels", orrin::array_t{});
    EXPECT_EQ(Shown("channel"), u"");
}

TEST_F(WidgetsTest, PopupExtrasCustomItemSearchAndWidth) {
    LoadWidgets("interface: preset: 7;",
                "popup(identifier: 'preset', bind: @preset, items: ['A first long item of many letters', 'B', 'C'],"
                "      include_custom_item: true, is_searchable: true, popup_maximum_width_chars: 10);");
    EXPECT_EQ(Shown("preset"), u"Custom");
    EXPECT_LT(FrameInWindow("preset").width, TextWidth(u"A first long item of many letters"));
    Popup("preset").Open();
    ASSERT_TRUE(Popup("preset").Menu()->SearchField());
    fWindow.Type(u"b");
    fWindow.PressKey(kroui::ui::Key::kEnter);
    EXPECT_EQ(Get("preset"), 1);
    EXPECT_EQ(Shown("preset"), u"B");
}

TEST_F(WidgetsTest, TabGroupChangesByKeysFromAControlOfItsPage) {
    LoadWidgets("interface: page: 0; on: false;",
                "tab_group(bind: @page, items: ['A', 'B']) { panel() { checkbox(identifier: 'box', bind: @on); }"
                "                                            panel() { checkbox(identifier: 'other', bind: @on); } }");
    Click("box");
    fWindow.PressKey(kroui::ui::Key::kTab, kroui::ui::kCommand);
    EXPECT_EQ(Get("page"), 1);
    EXPECT_FALSE(IsShown("box"));
    Click("other");
    EXPECT_EQ(Get("on"), false) << "turned on and off again";
}

TEST_F(WidgetsTest, TabGroupWithoutTabsShowsNoPage) {
    LoadWidgets("interface: on: false;", "tab_group() { panel(value: 1) { checkbox(identifier: 'box', bind: @on); } }");
    EXPECT_FALSE(IsShown("box"));
}

TEST_F(WidgetsTest, LabelsWithColonsEndAtTheSamePlace) {
    LoadWidgets("interface: n: 1;",
                "popup(identifier: 'popup', name: 'Window:', bind: @n, items: ['a', 'b']);"
                "display_text(identifier: 'text', name: 'A long label:', value: 'x');"
                "display_number(identifier: 'number', name: 'Cents:', value: @n);"
                "static_text(identifier: 'label', name: 'Hint:'); static_text(identifier: 'plain', name: 'Hint');");
    const float guide = TextWidth(u"A long label:");
    EXPECT_EQ(FrameInWindow("text").left, 0);
    EXPECT_EQ(FrameInWindow("popup").left + TextWidth(u"Window:"), guide);
    EXPECT_EQ(FrameInWindow("number").left + TextWidth(u"Cents:"), guide);
    EXPECT_EQ(FrameInWindow("label").Right(), guide);
    EXPECT_EQ(FrameInWindow("plain").left, 0);
    EXPECT_EQ(Popup("popup").UI_LocalToWindow({}).x, guide + 12);
}

TEST_F(WidgetsTest, LabelledPopupIsDisabledAsAWhole) {
    LoadWidgets("interface: n: 1;", "popup(identifier: 'Popup_Size', name: 'Size:', bind: @n, items: ['a', 'b']);");
    The<UI_ControlView>("Popup_Size").SetDisabled(true);
    EXPECT_TRUE(Popup("Popup_Size").IsDisabled());
    fWindow.Click(kroui::ui::HeadlessWindow::CentreOf(Popup("Popup_Size")));
    EXPECT_FALSE(Popup("Popup_Size").IsOpen());
    The<UI_ControlView>("Popup_Size").SetDisabled(false);
    Choose("Popup_Size", 0);
    EXPECT_EQ(Get("n"), 0);
}

TEST_F(WidgetsTest, DisplaysShowValuesAsTheyAreRead) {
    struct Case {
        const char* widget;
        std::u16string shown;
    };
    const Case cases[] = {
        {"display_text(value: '$$$/Lio/None=None')", u"None"},
        {"display_text(value: 0.25)", u"0.25"},
        {"display_text(value: @low)", u"low"},
        {"display_number(value: 3)", u"3"},
        {"display_number(value: 1/3, units: 'dB')", u"0.33 dB"},
        {"display_number(value: 123.456, digits: 4)", u"123.5"},
        {"display_number(value: 1.5, digits: 4)", u"1.5"},
        {"display_number(value: -12345.6, digits: 3)", u"-12346"},
        {"display_number(value: 1.5, digits: 4, decimal_places: 2)", u"1.50"},
    };
    std::string widgets;
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const std::string_view widget = cases[i].widget;
        widgets += std::string(widget.substr(0, widget.size() - 1)) + ", identifier: 'd" + std::to_string(i) + "');";
    }
    LoadWidgets("", widgets);
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(ValueOf("d" + std::to_string(i)), cases[i].shown) << cases[i].widget;
}

TEST_F(WidgetsTest, DisplayTextFollowsItsCellInTheRoomThatItHas) {
    LoadWidgets("interface: state: ''; ", "display_text(identifier: 'free', value: @state);"
                                          "display_text(identifier: 'fixed', value: @state, characters: 10);");
    const float fixed = FrameInWindow("fixed").width;
    Set("state", "Analysing the whole file");
    EXPECT_GE(FrameInWindow("free").width, TextWidth(u"Analysing the whole file"));
    EXPECT_EQ(FrameInWindow("fixed").width, fixed);
    EXPECT_GE(fixed, TextWidth(u"0000000000"));
}

TEST_F(WidgetsTest, StaticTextLongerThanItsCharactersGoesOnInFurtherLines) {
    LoadWidgets("", "static_text(identifier: 'one', name: 'Short', characters: 20);"
                    "static_text(identifier: 'more', name: 'A text of many words that no line of that width can hold',"
                    "            characters: 20);"
                    "static_text(identifier: 'broken', name: '$$$/Lio/Lines=Two#{endl}lines');");
    EXPECT_EQ(FrameInWindow("one"), (Rect{0, 0, TextWidth(u"Short"), 24}));
    EXPECT_EQ(FrameInWindow("more").width, TextWidth(u"00000000000000000000"));
    EXPECT_GT(FrameInWindow("more").height, 40);
    EXPECT_EQ(FrameInWindow("broken").width, TextWidth(u"lines"));
    EXPECT_TRUE(The<UI_StaticText>("more").MultiLine());
    EXPECT_FALSE(The<UI_StaticText>("one").MultiLine());
}

} // namespace
