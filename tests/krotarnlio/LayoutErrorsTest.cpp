#include "LioFixture.h"

#include "orrin/error.h"

using namespace krotarnlio;
using namespace krotarnlio::test;

namespace {

using LayoutErrorsTest = LioTest;

constexpr const char* kCells = "interface: gain: 3; on: true; text: 'a'; output: out0 <== gain;";

TEST_F(LayoutErrorsTest, BrokenLayoutIsRefusedWithItsPlaceAndNothingIsLeft) {
    struct Case {
        const char* widgets; // on the second line
        const char* message;
    };
    const Case cases[] = {
        {"knob();", "layout:2:1: there is no widget 'knob'"},
        {"checkbox(nane: 'a');", "layout:2:10: 'checkbox' has no attribute 'nane'"},
        {"checkbox(name: 3);", "layout:2:10: 'name' needs a string, not a number"},
        {"checkbox(bind: @no);", "layout:2:10: 'bind' needs the name of a cell; the sheet has no 'no'"},
        {"checkbox(bind: 3);", "layout:2:10: 'bind' needs the name of a cell, such as @gain"},
        {"checkbox(bind: @gain);", "layout:2:10: 'bind' needs a bool, not a number"},
        {"checkbox(name: oops);", "layout:2:16: 'oops': Variable lookup failed"},
        {"checkbox() { row(); }", "layout:2:14: 'checkbox' takes no widgets inside"},
        {"row(spacing: -1);", "layout:2:5: 'spacing' needs a length from 0 to 100000"},
        {"row(horizontal: @top);", "layout:2:5: 'horizontal' needs an alignment such as align_left or align_fill"},
        {"reveal(bind: @gain);", "layout:2:8: 'bind' needs a bool, not a number"},
        {"separator(orientation: @slanted);", "layout:2:11: 'orientation' needs @horizontal or @vertical"},
        {"toggle_button(button_style: @sharp);", "layout:2:15: 'button_style' needs @raised, @flat or @round"},
        {"toggle_button(bind: @gain);", "layout:2:15: 'bind' needs a bool, not a number"},
        {"popup(items: 3);", "layout:2:7: 'items' needs an array, not a number"},
        {"popup(items: [{ value: 1 }]);", "layout:2:7: 'items' has an item without a name"},
        {"popup(items: [{ name: 'a', colour: 1 }]);",
         "layout:2:7: 'items' has an item with an entry 'colour'; there are name, value, image and enabled"},
        {"popup(popup_maximum_width_chars: 2.5);",
         "layout:2:7: 'popup_maximum_width_chars' needs a whole number from 0 to 100"},
        {"display_number(value: @text);", "layout:2:16: 'value' needs a number, not a string"},
        {"display_text(value: true);", "layout:2:14: 'value' needs a string, a number or a name, not a bool"},
        {"checkbox(identifier: 'a'); checkbox(identifier: 'a');", "layout:2:28: the identifier 'a' is taken already"},
        {"checkbox(", "layout:2:10: "},
    };
    for (const auto& [widgets, message] : cases) {
        SCOPED_TRACE(widgets);
        try {
            LoadWidgets(kCells, std::string("box(width: 1, value: @gain);\n") + widgets);
            ADD_FAILURE() << "was read";
            Release();
        } catch (const orrin::error_t& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(message));
        }
        EXPECT_EQ(BoxWidget::sAlive, 0) << "the widgets made before are gone";
        Set("gain", 4); // and nobody listens any more
    }
}

TEST_F(LayoutErrorsTest, EmptyScriptGivesARootWithoutWidgets) {
    Load("", "// nothing\n");
    EXPECT_EQ(WholeSize(), kroui::Size());
    EXPECT_EQ(fRoot->GetTopNode()->ChildCount(), 0U);
    fRoot->Refresh();
    EXPECT_EQ(Resizes(), 0);
}

// What a cell holds later on is no mistake of the layout's.
TEST_F(LayoutErrorsTest, ValueThatAWidgetCannotShowLeavesItAsItWas) {
    LoadWidgets("interface: width: 10;", "box(identifier: 'box', value: @width, height: 5);");
    Set("width", -1);
    EXPECT_EQ(FrameInWindow("box").width, 10);
    Set("width", "wide");
    EXPECT_EQ(FrameInWindow("box").width, 10);
    Set("width", 30);
    EXPECT_EQ(FrameInWindow("box").width, 30);
}

} // namespace
