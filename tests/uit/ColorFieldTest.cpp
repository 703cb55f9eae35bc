#include "uit/controls/ColorField.h"

#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

namespace uit::controls {

namespace {

using kroui::limner::Color;
using kroui::ui::Key;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string Hex(const Color& color) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02X%02X%02X", static_cast<unsigned>(std::lround(color.red * 255)),
                  static_cast<unsigned>(std::lround(color.green * 255)),
                  static_cast<unsigned>(std::lround(color.blue * 255)));
    return text;
}

class ColorFieldTest : public ::testing::Test {
protected:
    ColorFieldTest() : fWindow(fSupplier, {400, 400}), fField(new ColorField) {
        const boost::intrusive_ptr<kroui::ui::UI_SubView> root(new kroui::ui::UI_SubView);
        root->UI_SetFrame({0, 0, 400, 400});
        fField->UI_SetFrame({20, 20, 40, 20});
        fField->SetAllowUserColorChange(true);
        fField->SetColor(Color::FromRGB(0x400000));
        fField->NotifyWhenChangedInteractively(
            [this](auto* message) { fLog.push_back(std::to_string(message->GetChangeMessage()) + " " + Now()); });
        fField->NotifyWhenChanged([this](auto*) { fLog.push_back("done " + Now()); });
        root->ChildPushBack(fField);
        fWindow.Window().SetContent(root);
    }

    std::string Now() const { return Hex(fField->GetColor()); }
    void Open() { fWindow.Click({40, 30}); }
    bool IsOpen() { return fWindow.Window().HasModalOverlay(); }
    // A place on the panel, which opens at (20, 42) with a margin of 12: the field of shades is 184 by 120.
    static kroui::Point Shade(float saturation, float value) { return {32 + 184 * saturation, 54 + 120 * (1 - value)}; }

    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow;
    boost::intrusive_ptr<ColorField> fField;
    std::vector<std::string> fLog;
};

} // namespace

TEST_F(ColorFieldTest, OpensOnAClickOnlyWhereTheUserMayChangeIt) {
    Open();
    EXPECT_TRUE(IsOpen());
    fWindow.PressKey(Key::kEscape);
    EXPECT_FALSE(IsOpen());
    fField->SetAllowUserColorChange(false);
    Open();
    EXPECT_FALSE(IsOpen());
    fField->SetAllowUserColorChange(true);
    fField->SetEnabled(false);
    Open();
    EXPECT_FALSE(IsOpen());
    fField->SetEnabled(true);
    fWindow.Press({40, 30});
    fWindow.MoveTo({200, 300});
    fWindow.Release();
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(fLog, IsEmpty());
}

TEST_F(ColorFieldTest, DragOverTheShadesIsOneGesture) {
    Open();
    fWindow.Press(Shade(1, 1));
    fWindow.MoveTo(Shade(0, 1));
    fWindow.MoveTo({-100, 500}); // held at the corner: no saturation, no value
    fWindow.Release();
    EXPECT_THAT(fLog, ElementsAre("0 #400000", "1 #FF0000", "1 #FFFFFF", "1 #000000", "2 #000000", "done #000000"));
    EXPECT_TRUE(IsOpen());
}

TEST_F(ColorFieldTest, EscapeInADragRestoresTheColour) {
    Open();
    fWindow.Press(Shade(1, 1));
    fWindow.PressKey(Key::kEscape);
    fWindow.Release();
    EXPECT_THAT(fLog, ElementsAre("0 #400000", "1 #FF0000", "3 #400000"));
    EXPECT_TRUE(IsOpen());
}

TEST_F(ColorFieldTest, DetachingInADragAbandonsItAndClosesThePanel) {
    Open();
    fWindow.Press(Shade(1, 1));
    fWindow.Window().SetContent(nullptr);
    EXPECT_THAT(fLog, ElementsAre("0 #400000", "1 #FF0000", "3 #400000"));
    EXPECT_FALSE(IsOpen());
}

TEST_F(ColorFieldTest, DisablingInAChoiceEndsItsGesture) {
    fField->NotifyWhenChangedInteractively([this](auto*) { fField->SetEnabled(false); });
    Open();
    fWindow.Type(u"00FF00");
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(fLog, ElementsAre("0 #400000", "3 #400000"));
}

TEST_F(ColorFieldTest, PaletteTypedNumberAndKeysAreGesturesOfTheirOwn) {
    Open();
    fWindow.Click({32 + 8, 56 + 120 + 8 + 12 + 12 + 8}); // the first colour of the palette
    EXPECT_THAT(fLog, ElementsAre("0 #400000", "1 #FF6B57", "2 #FF6B57", "done #FF6B57"));
    fLog.clear();
    fWindow.Type(u"#0x8g0");
    EXPECT_THAT(fLog, IsEmpty());
    fWindow.Type(u"fF7");
    EXPECT_THAT(fLog, ElementsAre("0 #FF6B57", "1 #080FF7", "2 #080FF7", "done #080FF7"));
    fLog.clear();
    fField->SetColor(Color::FromRGB(0x800000));
    fWindow.PressKey(Key::kUp); // a fiftieth more of the value: 128 + 5.1
    EXPECT_THAT(fLog, ElementsAre("0 #800000", "1 #850000", "2 #850000", "done #850000"));
}

TEST_F(ColorFieldTest, PressElsewhereClosesAndKeysOpen) {
    Open();
    fWindow.Click({390, 390});
    EXPECT_FALSE(IsOpen());
    fWindow.PressKey(Key::kSpace);
    EXPECT_TRUE(IsOpen());
    fWindow.PressKey(Key::kEnter);
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(fLog, IsEmpty());
}

TEST_F(ColorFieldTest, SettingTheSameColourPaintsNothing) {
    fWindow.Paint();
    fField->SetColor(Color::FromRGB(0x400000));
    EXPECT_EQ(fWindow.Paint(), 0);
    fField->SetColor(Color::FromRGB(0x400001));
    EXPECT_EQ(fWindow.Paint(), 40 * 20);
    EXPECT_EQ(fField->UI_GetAccessibleInfo().value, u"#400001");
    EXPECT_THAT(fLog, IsEmpty());
}

} // namespace uit::controls
