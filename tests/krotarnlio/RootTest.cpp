#include "LioFixture.h"

#include "kroui/controls/UI_Checkbox.h"
#include "kroui/limner/RecordingLimner.h"

using namespace krotarnlio;
using namespace krotarnlio::test;
using kroui::controls::UI_Checkbox;

namespace {

using RootTest = LioTest;

TEST_F(RootTest, UsersChangeIsWrittenAndFollowedByAllWidgetsOfTheCell) {
    LoadWidgets("interface: on: false; output: out0 <== on ? 1 : 0;",
                "checkbox(identifier: 'one', bind: @on); checkbox(identifier: 'two', bind: @on);");
    Click("one");
    EXPECT_EQ(Get("out0"), 1);
    EXPECT_TRUE(The<UI_Checkbox>("two").IsChecked());
}

TEST_F(RootTest, CellThatTakesAnotherValuePutsTheWidgetBack) {
    LoadWidgets("input: locked: true; interface: unlink on: false <== locked ? false : on;",
                "checkbox(identifier: 'box', bind: @on);");
    Click("box");
    EXPECT_EQ(Get("on"), false);
    EXPECT_FALSE(The<UI_Checkbox>("box").IsChecked());
}

TEST_F(RootTest, ComputedCellDisablesItsWidget) {
    LoadWidgets("interface: gain: 3; output: loud <== gain > 2;", "checkbox(identifier: 'box', bind: @loud);");
    EXPECT_TRUE(The<UI_Checkbox>("box").IsChecked());
    EXPECT_FALSE(The<UI_Checkbox>("box").IsEnabled());
    Set("gain", 1);
    EXPECT_FALSE(The<UI_Checkbox>("box").IsChecked());
}

TEST_F(RootTest, FalseInvariantFramesTheWidgetsAtFaultUntilItHolds) {
    LoadWidgets("interface: low: false; high: true; other: false; invariant: ordered <== !low || high;",
                "checkbox(identifier: 'low', name: 'Low', bind: @low);"
                "checkbox(identifier: 'high', name: 'High', bind: @high);"
                "checkbox(identifier: 'other', name: 'Other', bind: @other);");
    const auto framed = [this] {
        kroui::limner::RecordingLimner recording;
        fRoot->GetTopNode()->UI_DrawOver(&recording);
        return std::ranges::count_if(recording.Operations(), [](const std::string& operation) {
            return operation.starts_with("FrameRoundRect");
        });
    };
    EXPECT_EQ(framed(), 0);
    Set("high", false);
    Click("low");
    EXPECT_EQ(framed(), 2) << "both contribute, the other one does not";
    Click("high");
    EXPECT_EQ(framed(), 0);
}

TEST_F(RootTest, SeveralPartsThatComeChangeTheSizeOnce) {
    LoadWidgets("interface: more: false; wide: 10;", "checkbox(identifier: 'more', bind: @more);"
                                                     "optional(bind: @more) { box(width: 100, height: 20); }"
                                                     "optional(bind: @more) { box(value: @wide, height: 30); }");
    const float before = WholeSize().height;
    Click("more");
    EXPECT_EQ(Resizes(), 1);
    EXPECT_EQ(WholeSize().height, before + 8 + 20 + 8 + 30);
    Set("wide", 200);
    EXPECT_EQ(Resizes(), 1);
    EXPECT_EQ(WholeSize().width, 200);
    Set("wide", 200);
    fRoot->Refresh();
    EXPECT_EQ(Resizes(), 0);
    Click("more");
    EXPECT_EQ(Resizes(), 1);
    EXPECT_EQ(WholeSize().height, before);
}

TEST_F(RootTest, NodesThatOutliveTheRootDoNothingAnyMore) {
    LoadWidgets("interface: on: false; open: false;",
                "checkbox(identifier: 'box', bind: @on); reveal(identifier: 'more', bind: @open);"
                "popup(identifier: 'popup', name: 'A:', bind: @on, items: ['a', 'b']);");
    const auto middle = kroui::ui::HeadlessWindow::CentreOf(Node("box"));
    const auto reveal = kroui::ui::HeadlessWindow::CentreOf(Node("more"));
    Release();
    fWindow.Click(middle);
    fWindow.Click(reveal);
    Set("on", true);
    fWindow.Paint();
    EXPECT_EQ(Get("open"), false);
}

TEST_F(RootTest, ListenerThatReleasesThePanelDuringAClickIsSafe) {
    LoadWidgets("interface: on: false;", "checkbox(identifier: 'box', bind: @on);");
    fSheet->subscribe(orrin::name_t("on"), [this](const orrin::any_regular_t& value) {
        if (value != orrin::any_regular_t(true)) return;
        Release();
        fSheet.reset();
    });
    Click("box");
    EXPECT_EQ(fRoot, nullptr);
}

TEST_F(RootTest, ListenerThatThrowsLeavesTheLayoutAlive) {
    LoadWidgets("interface: on: false;",
                "checkbox(identifier: 'box', bind: @on); optional(bind: @on) { box(width: 5, height: 50); }");
    const float before = WholeSize().height;
    bool throws = true;
    fSheet->subscribe(orrin::name_t("on"), [&](const orrin::any_regular_t& value) {
        if (throws && value == orrin::any_regular_t(true)) throw std::runtime_error("host");
    });
    EXPECT_THROW(Click("box"), std::runtime_error);
    throws = false;
    Click("box");
    Click("box");
    EXPECT_EQ(WholeSize().height, before + 58);
}

TEST_F(RootTest, LocalizeGivesTheTextBehindAKeyInsideExpressions) {
    LoadWidgets("interface: on: false;",
                "checkbox(identifier: 'one', name: localize('$$$/Lio/One=One') + '!', bind: @on);"
                "checkbox(identifier: 'two', name: '$$$/Lio/Two=Two', alt: '$$$/Lio/Tip=Tip', bind: @on);");
    EXPECT_EQ(The<UI_Checkbox>("one").Text(), u"One!");
    EXPECT_EQ(The<UI_Checkbox>("two").Text(), u"Two");
    EXPECT_EQ(Node("two").UI_GetTooltip(), u"Tip");
    EXPECT_EQ(fTop->UI_FindNode("two"), &Node("two"));
}

} // namespace
